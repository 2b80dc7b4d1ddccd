#include "host/model/tables/default_drawing.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>

#include "base/encoding.h"
#include "host/model/core/database_state.h"
#include "host/model/core/object_access.h"
#include "host/model/tables/dim_style_table.h"
#include "host/model/tables/header_variables.h"
#include "host/model/tables/layout.h"
#include "host/model/tables/reg_app_table.h"
#include "host/model/tables/styles.h"
#include "host/model/tables/view_tables.h"
#include "platform/db/database.h"

namespace sg::model {
namespace {

constexpr const wchar_t* kApplication = L"ACAD";

void require(Acad::ErrorStatus status) {
    if (status == Acad::eOk) return;
    throw std::logic_error("a new drawing cannot be built: " + toUtf8(acadErrorStatusText(status)));
}

class Builder {
  public:
    explicit Builder(AcDbDatabase& database)
        : database_(database), state_(DatabaseState::of(database)), roots_(state_.roots) {}

    void build() {
        completeTables();
        completeDictionaries();
    }
    void completeTables() {
        makeTables();
        makeRecords();
        nameThemInHeader();
    }
    void completeDictionaries() {
        makeDictionaries();
        makeLayouts();
    }

  private:
    // Gives an object to the database and closes it.
    template <class Object>
    AcDbObjectId add(std::unique_ptr<Object> object, AcDbObjectId owner = {}) {
        AcDbObjectId id;
        require(database_.addAcDbObject(id, object.get()));
        Object* const given = object.release();
        given->setOwnerId(owner);
        given->close();
        return id;
    }

    template <class Table>
    void table(AcDbObjectId& root) {
        if (root.isNull()) root = add(std::make_unique<Table>());
    }

    // In the order in which drawing files have them.
    void makeTables() {
        table<AcDbViewportTable>(roots_.viewportTable);
        table<AcDbLinetypeTable>(roots_.linetypeTable);
        table<AcDbLayerTable>(roots_.layerTable);
        table<AcDbTextStyleTable>(roots_.textStyleTable);
        table<AcDbViewTable>(roots_.viewTable);
        table<AcDbUCSTable>(roots_.ucsTable);
        table<AcDbRegAppTable>(roots_.regAppTable);
        table<AcDbDimStyleTable>(roots_.dimStyleTable);
        table<AcDbBlockTable>(roots_.blockTable);
    }

    // The record of this name, which is made when there is none.
    template <class Record>
    AcDbObjectId record(AcDbObjectId table, const wchar_t* name, std::unique_ptr<Record> record) {
        AcDbSymbolTable* opened = nullptr;
        require(acdbOpenObject(opened, table, AcDb::kForWrite));
        AcDbObjectId id;
        if (opened->getAt(name, id) != Acad::eOk) {
            require(record->setName(name));
            require(opened->add(id, record.get()));
            record.release()->close();
        }
        opened->close();
        return id;
    }
    template <class Record>
    AcDbObjectId record(AcDbObjectId table, const wchar_t* name) {
        return record(table, name, std::make_unique<Record>());
    }

    // The first record of the table, "Standard" where it has none.
    template <class Record>
    AcDbObjectId anyRecord(AcDbObjectId table, std::unique_ptr<Record> standard) {
        AcDbSymbolTable* opened = nullptr;
        require(acdbOpenObject(opened, table));
        const AcDbObjectId first = opened->newIterator()->getRecordId();
        opened->close();
        return first.isNull() ? record(table, L"Standard", std::move(standard)) : first;
    }

    void makeRecords() {
        record<AcDbRegAppTableRecord>(roots_.regAppTable, kApplication);
        roots_.byBlockLinetype = record<AcDbLinetypeTableRecord>(roots_.linetypeTable, L"ByBlock");
        roots_.byLayerLinetype = record<AcDbLinetypeTableRecord>(roots_.linetypeTable, L"ByLayer");
        auto continuous = std::make_unique<AcDbLinetypeTableRecord>();
        continuous->setComments(L"Solid line");
        roots_.continuousLinetype =
            record(roots_.linetypeTable, L"Continuous", std::move(continuous));
        auto layer = std::make_unique<AcDbLayerTableRecord>();
        layer->setLinetypeObjectId(roots_.continuousLinetype);
        roots_.layerZero = record(roots_.layerTable, L"0", std::move(layer));
        auto style = std::make_unique<AcDbTextStyleTableRecord>();
        style->setFileName(L"txt");
        textStyle_ = anyRecord(roots_.textStyleTable, std::move(style));
        auto dimStyle = std::make_unique<AcDbDimStyleTableRecord>();
        dimStyle->setValue(*findDimVariable(L"DIMTXSTY"), textStyle_);
        dimStyle_ = anyRecord(roots_.dimStyleTable, std::move(dimStyle));
        record<AcDbViewportTableRecord>(roots_.viewportTable, L"*Active");
        roots_.modelSpace = record<AcDbBlockTableRecord>(roots_.blockTable, ACDB_MODEL_SPACE);
        roots_.paperSpace = record<AcDbBlockTableRecord>(roots_.blockTable, ACDB_PAPER_SPACE);
        if (roots_.currentSpace.isNull()) roots_.currentSpace = roots_.modelSpace;
    }

    // What a damaged file has in the place of a dictionary gets another name.
    static void makeRoom(AcDbDictionary& dictionary, const std::wstring& name) {
        AcDbObjectId id;
        if (dictionary.getAt(name.c_str(), id) != Acad::eOk ||
            peek<AcDbDictionary>(id) != nullptr) {
            return;
        }
        std::wstring other = name;
        while (!dictionary.setName(name.c_str(), (other += L"_").c_str())) {
        }
    }

    // What the dictionary has under the name, which is made when there is nothing.
    template <class Object>
    AcDbObjectId entry(AcDbObjectId dictionary, const wchar_t* name,
                       std::unique_ptr<Object> object) {
        AcDbDictionary* opened = nullptr;
        require(acdbOpenObject(opened, dictionary, AcDb::kForWrite));
        AcDbObjectId id;
        if constexpr (std::is_base_of_v<AcDbDictionary, Object>) makeRoom(*opened, name);
        if (opened->getAt(name, id) != Acad::eOk) {
            require(opened->setAt(name, object.get(), id));
            object.release()->close();
        }
        opened->close();
        return id;
    }

    AcDbObjectId dictionary(const wchar_t* name) {
        return entry(roots_.namedObjects, name, std::make_unique<AcDbDictionary>());
    }

    void makeDictionaries() {
        if (roots_.namedObjects.isNull()) {
            roots_.namedObjects = add(std::make_unique<AcDbDictionary>());
        }
        roots_.groups = dictionary(L"ACAD_GROUP");
        roots_.layouts = dictionary(L"ACAD_LAYOUT");
        const AcDbObjectId mlineStyles = dictionary(L"ACAD_MLINESTYLE");
        auto standard = std::make_unique<AcDbMlineStyle>();
        standard->setName(L"STANDARD");
        standard->setElements({{0.5, AcCmColor(), {}}, {-0.5, AcCmColor(), {}}});
        entry(mlineStyles, L"Standard", std::move(standard));
        dictionary(L"ACAD_PLOTSETTINGS");
        makePlotStyles();
    }

    void makePlotStyles() {
        roots_.plotStyleNames = entry(roots_.namedObjects, L"ACAD_PLOTSTYLENAME",
                                      std::make_unique<AcDbDictionaryWithDefault>());
        const AcDbObjectId normal =
            entry(roots_.plotStyleNames, L"Normal", std::make_unique<AcDbPlaceHolder>());
        AcDbDictionaryWithDefault* names = nullptr;
        if (acdbOpenObject(names, roots_.plotStyleNames, AcDb::kForWrite) == Acad::eOk) {
            if (names->defaultId().isNull()) names->setDefaultId(normal);
            names->close();
        }
        AcDbLayerTableRecord* layer = nullptr;
        require(acdbOpenObject(layer, roots_.layerZero, AcDb::kForWrite));
        if (layer->plotStyleNameId().isNull()) layer->takePlotStyle(normal);
        layer->close();
    }

    // A space that has no layout gets one, under a name that no other has.
    void makeLayout(std::wstring name, AcDbObjectId block, bool model) {
        AcDbBlockTableRecord* space = nullptr;
        require(acdbOpenObject(space, block, AcDb::kForWrite));
        if (space->getLayoutId().isValid()) {
            space->close();
            return;
        }
        AcDbDictionary* layouts = nullptr;
        require(acdbOpenObject(layouts, roots_.layouts));
        while (layouts->has(name.c_str()))
            name += L"_";
        const auto tabOrder = static_cast<int32_t>(model ? 0 : layouts->numEntries());
        layouts->close();
        auto layout = std::make_unique<AcDbLayout>();
        layout->setLayout(name.c_str(), tabOrder, block);
        // What is printed of the model is scaled to the paper.
        if (model) layout->plotFields().set(70, int32_t(1024 + 688));
        space->setLayoutId(entry(roots_.layouts, name.c_str(), std::move(layout)));
        space->close();
    }

    void makeLayouts() {
        makeLayout(L"Model", roots_.modelSpace, true);
        makeLayout(L"Layout1", roots_.paperSpace, false);
    }

    void nameThemInHeader() {
        HeaderVariables& header = state_.changeHeader();
        const auto name = [&](const wchar_t* variable, AcDbObjectId id) {
            if (header.get<AcDbObjectId>(variable).isNull()) header.set(variable, id);
        };
        name(L"CLAYER", roots_.layerZero);
        name(L"CELTYPE", roots_.byLayerLinetype);
        name(L"TEXTSTYLE", textStyle_);
        name(L"DIMSTYLE", dimStyle_);
        name(L"DIMTXSTY", textStyle_);
    }

    AcDbDatabase& database_;
    DatabaseState& state_;
    DatabaseRoots& roots_;
    AcDbObjectId textStyle_, dimStyle_;
};

}  // namespace

void buildDefaultDrawing(AcDbDatabase& database) {
    Builder(database).build();
}

void completeTables(AcDbDatabase& database) {
    Builder(database).completeTables();
}

void completeDictionaries(AcDbDatabase& database) {
    Builder(database).completeDictionaries();
}

}  // namespace sg::model
