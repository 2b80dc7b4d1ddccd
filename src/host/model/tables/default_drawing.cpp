#include "host/model/tables/default_drawing.h"

#include <memory>
#include <stdexcept>
#include <string>

#include "base/encoding.h"
#include "host/model/core/database_state.h"
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
        makeTables();
        makeRecords();
        makeDictionaries();
        makeLayouts();
        nameThemInHeader();
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

    // In the order in which drawing files have them.
    void makeTables() {
        roots_.viewportTable = add(std::make_unique<AcDbViewportTable>());
        roots_.linetypeTable = add(std::make_unique<AcDbLinetypeTable>());
        roots_.layerTable = add(std::make_unique<AcDbLayerTable>());
        roots_.textStyleTable = add(std::make_unique<AcDbTextStyleTable>());
        roots_.viewTable = add(std::make_unique<AcDbViewTable>());
        roots_.ucsTable = add(std::make_unique<AcDbUCSTable>());
        roots_.regAppTable = add(std::make_unique<AcDbRegAppTable>());
        roots_.dimStyleTable = add(std::make_unique<AcDbDimStyleTable>());
        roots_.blockTable = add(std::make_unique<AcDbBlockTable>());
    }

    template <class Record>
    AcDbObjectId record(AcDbObjectId table, const wchar_t* name, std::unique_ptr<Record> record) {
        AcDbSymbolTable* opened = nullptr;
        require(acdbOpenObject(opened, table, AcDb::kForWrite));
        require(record->setName(name));
        AcDbObjectId id;
        require(opened->add(id, record.get()));
        record.release()->close();
        opened->close();
        return id;
    }
    template <class Record>
    AcDbObjectId record(AcDbObjectId table, const wchar_t* name) {
        return record(table, name, std::make_unique<Record>());
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
        textStyle_ = record(roots_.textStyleTable, L"Standard", std::move(style));
        auto dimStyle = std::make_unique<AcDbDimStyleTableRecord>();
        dimStyle->setValue(*findDimVariable(L"DIMTXSTY"), textStyle_);
        dimStyle_ = record(roots_.dimStyleTable, L"Standard", std::move(dimStyle));
        record<AcDbViewportTableRecord>(roots_.viewportTable, L"*Active");
        roots_.modelSpace = record<AcDbBlockTableRecord>(roots_.blockTable, ACDB_MODEL_SPACE);
        roots_.paperSpace = record<AcDbBlockTableRecord>(roots_.blockTable, ACDB_PAPER_SPACE);
        roots_.currentSpace = roots_.modelSpace;
    }

    template <class Object>
    AcDbObjectId entry(AcDbObjectId dictionary, const wchar_t* name,
                       std::unique_ptr<Object> object) {
        AcDbDictionary* opened = nullptr;
        require(acdbOpenObject(opened, dictionary, AcDb::kForWrite));
        AcDbObjectId id;
        require(opened->setAt(name, object.get(), id));
        object.release()->close();
        opened->close();
        return id;
    }

    AcDbObjectId dictionary(const wchar_t* name) {
        return entry(roots_.namedObjects, name, std::make_unique<AcDbDictionary>());
    }

    void makeDictionaries() {
        roots_.namedObjects = add(std::make_unique<AcDbDictionary>());
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
        require(acdbOpenObject(names, roots_.plotStyleNames, AcDb::kForWrite));
        names->setDefaultId(normal);
        names->close();
        AcDbLayerTableRecord* layer = nullptr;
        require(acdbOpenObject(layer, roots_.layerZero, AcDb::kForWrite));
        layer->takePlotStyle(normal);
        layer->close();
    }

    void makeLayout(const wchar_t* name, int32_t tabOrder, AcDbObjectId block, bool model) {
        auto layout = std::make_unique<AcDbLayout>();
        layout->setLayout(name, tabOrder, block);
        // What is printed of the model is scaled to the paper.
        if (model) layout->plotFields().set(70, int32_t(1024 + 688));
        const AcDbObjectId id = entry(roots_.layouts, name, std::move(layout));
        AcDbBlockTableRecord* space = nullptr;
        require(acdbOpenObject(space, block, AcDb::kForWrite));
        require(space->setLayoutId(id));
        space->close();
    }

    void makeLayouts() {
        makeLayout(L"Model", 0, roots_.modelSpace, true);
        makeLayout(L"Layout1", 1, roots_.paperSpace, false);
    }

    void nameThemInHeader() {
        HeaderVariables& header = state_.changeHeader();
        header.set(L"CLAYER", roots_.layerZero);
        header.set(L"CELTYPE", roots_.byLayerLinetype);
        header.set(L"TEXTSTYLE", textStyle_);
        header.set(L"DIMSTYLE", dimStyle_);
        header.set(L"DIMTXSTY", textStyle_);
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

}  // namespace sg::model
