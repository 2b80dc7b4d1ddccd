#include <sstream>

#include "host/model/dwg_trace.h"
#include "host/model/kept/kept_form.h"
#include "host/model/model_fixture.h"

namespace sg::test {
namespace {

using model::GroupData;
using model::ProxyData;

constexpr AcDb::AcDbDwgVersion kReleases[] = {AcDb::kDHL_1015, AcDb::kDHL_1018, AcDb::kDHL_1021,
                                              AcDb::kDHL_1024, AcDb::kDHL_1027, AcDb::kDHL_1032};

class KeptFormsTest : public ModelTest {
  protected:
    // Groups from text: a code, "=", a value; several are parted by ";". A point has commas, a
    // handle "#".
    GroupData groups(const std::string& text) {
        GroupData made;
        std::istringstream items(text);
        for (std::string item; std::getline(items, item, ';');) {
            const size_t sign = item.find('=');
            append(made, std::stoi(item), item.substr(sign + 1));
        }
        return made;
    }
    static std::string shown(const GroupData& groups) {
        std::ostringstream text;
        for (GroupData::Walk walk(groups); walk.next();) {
            const GroupData::Group& group = walk.group();
            if (text.tellp() > 0) text << ';';
            text << group.code << '=';
            switch (group.kind) {
                case GroupData::Kind::text:
                    text << group.text;
                    break;
                case GroupData::Kind::real:
                    text << group.real;
                    break;
                case GroupData::Kind::whole:
                    text << group.whole;
                    break;
                case GroupData::Kind::point:
                    text << group.real << ',' << group.y << ',' << group.z;
                    break;
                default:
                    text << '#';
                    break;
            }
        }
        return text.str();
    }
    ProxyData kept(const wchar_t* name, const std::string& text) {
        ProxyData data;
        data.dxfName = name;
        data.groups = groups(text);
        return data;
    }
    // The name of the class by which a DWG file tells kinds of one name apart.
    static std::wstring classOf(const GroupData& groups) {
        std::wstring name;
        for (GroupData::Walk walk(groups); walk.next();) {
            if (walk.group().code == 100) name = fromUtf8(walk.group().text);
        }
        return name;
    }

  private:
    void append(GroupData& made, int code, const std::string& value) {
        switch (acdbGroupCodeToType(code)) {
            case RTSTR:
                return made.appendText(code, value);
            case RTREAL:
                return made.appendReal(code, std::stod(value));
            case RT3DPOINT: {
                std::istringstream numbers(value);
                std::string number;
                for (int offset = 0; std::getline(numbers, number, ','); offset += 10)
                    made.appendReal(code + offset, std::stod(number));
                return;
            }
            case RTENAME:
                return made.appendObject(code, database->clayer());
            default:
                return made.appendWhole(code, std::stoll(value));
        }
    }
};

struct Sample {
    const wchar_t* name;
    const char* groups;
    AcDb::AcDbDwgVersion since = AcDb::kDHL_1015;
    AcDb::AcDbDwgVersion until = AcDb::AcDbDwgVersion(99);
};

const Sample kSamples[] = {
    {L"MLINE",
     "100=AcDbMline;2=0;340=#;40=20;70=0;71=3;72=2;73=2;10=3,1,0;210=0,0,1;"
     "11=3,1,0;12=1,0,0;13=0,1,0;74=2;41=0;41=5;75=0;74=1;41=-3;75=2;42=1;42=2;"
     "11=9,1,0;12=1,0,0;13=0,1,0;74=0;75=0;74=1;41=7;75=0"},
    {L"TOLERANCE", "100=AcDbFcf;3=Standard;10=1,2,3;1=%%v1;11=0,1,0"},
    {L"SCALE", "100=AcDbScale;70=0;300=1:2;140=1;141=2;290=0"},
    {L"TABLESTYLE",
     "100=AcDbTableStyle;3=Plain;70=0;71=0;40=1.5;41=1.5;280=0;281=0;"
     "7=Standard;140=4.5;170=2;62=0;63=7;283=0;274=-2;284=1;64=0;275=-2;285=1;65=0;276=-2;286=1;"
     "66=0;277=-2;287=1;67=0;278=-2;288=1;68=0;279=-2;289=1;69=0;"
     "7=Standard;140=6;170=5;62=1;63=7;283=1;274=-2;284=1;64=0;275=-2;285=1;65=0;276=-2;286=1;"
     "66=0;277=-2;287=1;67=0;278=-2;288=1;68=0;279=-2;289=1;69=0;"
     "7=Standard;140=4.5;170=5;62=0;63=7;283=0;274=-2;284=1;64=0;275=-2;285=1;65=0;276=-2;286=1;"
     "66=0;277=-2;287=1;67=0;278=-2;288=1;68=0;279=-2;289=1;69=0",
     AcDb::kDHL_1015, AcDb::kDHL_1024},
    {L"REGION", "100=AcDbModelerGeometry;70=1;1=koo mi n o;1=ni ^ *+0;3=0;1=last"},
};

// Read back from a DWG object the groups are what they were.
TEST_F(KeptFormsTest, GroupsComeBackFromDwgObjects) {
    for (const Sample& sample : kSamples) {
        for (const AcDb::AcDbDwgVersion release : kReleases) {
            if (release < sample.since || release >= sample.until) continue;
            SCOPED_TRACE(std::string(sample.groups).substr(0, 30) + std::to_string(release));
            const ProxyData original = kept(sample.name, sample.groups);
            ASSERT_TRUE(model::canWriteKept(original, release));
            DwgTrace trace(release, database.get());
            ASSERT_TRUE(model::writeKept(trace, original));
            ProxyData copy;
            copy.dxfName = sample.name;
            copy.className = classOf(original.groups);
            ASSERT_TRUE(model::readKept(trace, copy));
            // Long lines go in pieces of another length.
            if (!model::isKeptBody(original)) {
                EXPECT_EQ(shown(copy.groups), sample.groups);
            }
        }
    }
}

// What a description does not know is not written as something else.
TEST_F(KeptFormsTest, OtherGroupsHaveNoDwgForm) {
    const char* const kOthers[] = {
        "100=AcDbScale;70=0;300=1:2;140=1;141=2;290=0;291=1",  // one more
        "100=AcDbScale;70=0;300=1:2;140=1;290=0",              // one less
        "100=AcDbOther;70=0;300=1:2;140=1;141=2;290=0",
        "100=AcDbScale;300=1:2;70=0;140=1;141=2;290=0",  // another order
    };
    for (const char* const other : kOthers) {
        EXPECT_FALSE(model::canWriteKept(kept(L"SCALE", other), AcDb::kDHL_1032)) << other;
    }
    EXPECT_FALSE(model::canWriteKept(kept(L"WHATEVER", "100=AcDbWhatever"), AcDb::kDHL_1032));
    EXPECT_FALSE(model::canWriteKept(kept(L"MLINE",
                                          "100=AcDbMline;40=20;340=#;70=0;71=3;72=9999;73=2;"
                                          "10=3,1,0;210=0,0,1"),
                                     AcDb::kDHL_1032));
}

TEST_F(KeptFormsTest, WhatEndsTooEarlyIsLeftAsItIs) {
    for (const Sample& sample : kSamples) {
        const ProxyData original = kept(sample.name, sample.groups);
        DwgTrace whole(AcDb::kDHL_1015, database.get());
        ASSERT_TRUE(model::writeKept(whole, original));
        if (model::isKeptBody(original)) continue;  // its lines behind the body are not read
        for (size_t left = 0; left < whole.data.size(); ++left) {
            DwgTrace cut = whole;
            cut.data.resize(left);
            ProxyData copy;
            copy.dxfName = sample.name;
            copy.className = classOf(original.groups);
            EXPECT_FALSE(model::readKept(cut, copy));
            EXPECT_TRUE(copy.groups.empty());
        }
    }
}

// Bits of a later release, or of one in which the class was otherwise, are not written.
TEST_F(KeptFormsTest, BitsDoForReleasesInWhichTheClassIsTheSame) {
    const struct {
        const wchar_t* name;
        AcDb::AcDbDwgVersion own, release;
        bool fits;
    } cases[] = {
        {L"ANY", AcDb::kDHL_1015, AcDb::kDHL_1015, true},
        {L"ANY", AcDb::kDHL_1018, AcDb::kDHL_1032, false},
        {L"ANY", AcDb::kDHL_1021, AcDb::kDHL_1032, true},
        {L"ANY", AcDb::kDHL_1032, AcDb::kDHL_1021, false},
        {L"MULTILEADER", AcDb::kDHL_1024, AcDb::kDHL_1032, false},
        {L"MULTILEADER", AcDb::kDHL_1027, AcDb::kDHL_1032, true},
        {L"ACDBASSOCNETWORK", AcDb::kDHL_1024, AcDb::kDHL_1032, false},
    };
    for (const auto& each : cases) {
        ProxyData data;
        data.dxfName = each.name;
        data.bits = std::make_unique<model::KeptBits>();
        data.bits->release = each.own;
        EXPECT_EQ(model::keepsBitsFor(data, each.release), each.fits);
    }
}

}  // namespace
}  // namespace sg::test
