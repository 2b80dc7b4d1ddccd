#include "host/model/tables/header_variables.h"

#include <set>

#include "host/model/model_fixture.h"
#include "host/model/tables/dim_variables.h"
#include "host/model/tables/references.h"

namespace sg::test {
namespace {

using model::HeaderVariables;

TEST(HeaderVariablesTest, EveryVariableIsFoundByItsName) {
    std::set<std::wstring> names;
    for (size_t place = 0; place < model::headerRows().size(); ++place) {
        const std::wstring name = model::headerRows()[place].name;
        EXPECT_TRUE(names.insert(name).second) << "twice";
        std::wstring lower = name;
        for (wchar_t& c : lower)
            c = static_cast<wchar_t>(std::towlower(static_cast<wint_t>(c)));
        EXPECT_EQ(HeaderVariables::find(lower), place);
    }
    EXPECT_FALSE(HeaderVariables::find(L"NO_SUCH_VARIABLE"));
    EXPECT_FALSE(HeaderVariables::find(L""));
}

TEST(HeaderVariablesTest, TypesAreKept) {
    HeaderVariables header;
    EXPECT_EQ(header.get<int32_t>(L"MEASUREMENT"), 0);
    header.set(L"ltscale", 2.5);
    EXPECT_EQ(header.get<double>(L"LTSCALE"), 2.5);
    EXPECT_THROW(header.set(L"LTSCALE", 2), std::logic_error);
    EXPECT_THROW(header.set(L"NO_SUCH_VARIABLE", 2), std::logic_error);
    EXPECT_THROW(static_cast<void>(header.get<double>(L"MEASUREMENT")), std::bad_variant_access);
}

TEST(DimVariablesTest, EachHasOneCodeAndOneName) {
    const auto rows = model::dimVariableRows();
    std::set<int> codes;
    for (size_t place = 0; place < rows.size(); ++place) {
        EXPECT_TRUE(codes.insert(rows[place].variable.code).second) << rows[place].variable.code;
        EXPECT_EQ(model::findDimVariable(rows[place].variable.code), place);
        EXPECT_EQ(model::findDimVariable(rows[place].variable.name), place);
        EXPECT_TRUE(HeaderVariables::find(rows[place].variable.name));
    }
    EXPECT_FALSE(model::findDimVariable(1));
    EXPECT_FALSE(model::findDimVariable(L"DIMNONE"));
}

class NewDrawingTest : public ModelTest {};

// What every new drawing has.
TEST_F(NewDrawingTest, HasItsTablesAndDictionaries) {
    using model::NamedIn;
    struct Case {
        NamedIn table;
        const wchar_t* name;
    };
    for (const Case& each :
         {Case{NamedIn::layers, L"0"}, Case{NamedIn::linetypes, L"ByLayer"},
          Case{NamedIn::linetypes, L"BYBLOCK"}, Case{NamedIn::linetypes, L"Continuous"},
          Case{NamedIn::textStyles, L"standard"}, Case{NamedIn::dimStyles, L"STANDARD"},
          Case{NamedIn::blocks, L"*Model_Space"}, Case{NamedIn::blocks, L"*PAPER_SPACE"}}) {
        const AcDbObjectId id = model::recordNamed(database.get(), each.table, each.name);
        EXPECT_FALSE(id.isNull());
        EXPECT_FALSE(model::nameOf(id).empty());
    }
    EXPECT_TRUE(model::recordNamed(database.get(), NamedIn::layers, L"none").isNull());
    EXPECT_TRUE(model::recordNamed(nullptr, NamedIn::layers, L"0").isNull());
    EXPECT_TRUE(model::recordNamed(database.get(), NamedIn::nothing, L"0").isNull());
    Opened<AcDbDictionary> names(database->namedObjectsDictionaryId());
    for (const wchar_t* const name : {L"ACAD_GROUP", L"ACAD_LAYOUT", L"ACAD_MLINESTYLE",
                                      L"ACAD_PLOTSETTINGS", L"ACAD_PLOTSTYLENAME"})
        EXPECT_TRUE(names->has(name));
    Opened<AcDbDictionary> layouts(database->layoutDictionaryId());
    EXPECT_TRUE(layouts->has(L"Model"));
    EXPECT_TRUE(layouts->has(L"Layout1"));
    EXPECT_EQ(database->clayer(), database->layerZero());
    EXPECT_EQ(database->currentSpaceId(), database->modelSpaceId());
}

}  // namespace
}  // namespace sg::test
