#include "platform/db/database.h"

#include "base/text.h"
#include "host/model/core/database_state.h"
#include "host/model/core/database_table.h"
#include "host/model/core/object_access.h"
#include "host/model/tables/default_drawing.h"
#include "host/model/tables/header_variables.h"
#include "host/system/files.h"
#include "host/system/paths.h"

using sg::model::DatabaseState;

AcDbDatabase::AcDbDatabase(bool buildDefaultDrawing, bool noDocument)
    : state_(std::make_unique<DatabaseState>(*this, noDocument)) {
    if (buildDefaultDrawing) sg::model::buildDefaultDrawing(*this);
}

AcDbDatabase::~AcDbDatabase() = default;

Acad::ErrorStatus AcDbDatabase::getFilename(std::wstring& name) const {
    name = state_->filename;
    return name.empty() ? Acad::eFileNotFound : Acad::eOk;
}

void AcDbDatabase::setFilename(const std::wstring& name) {
    state_->filename = name;
}

// ---- Roots --------------------------------------------------------------------------------------

AcDbObjectId AcDbDatabase::blockTableId() const {
    return state_->roots.blockTable;
}
AcDbObjectId AcDbDatabase::layerTableId() const {
    return state_->roots.layerTable;
}
AcDbObjectId AcDbDatabase::linetypeTableId() const {
    return state_->roots.linetypeTable;
}
AcDbObjectId AcDbDatabase::textStyleTableId() const {
    return state_->roots.textStyleTable;
}
AcDbObjectId AcDbDatabase::dimStyleTableId() const {
    return state_->roots.dimStyleTable;
}
AcDbObjectId AcDbDatabase::viewTableId() const {
    return state_->roots.viewTable;
}
AcDbObjectId AcDbDatabase::viewportTableId() const {
    return state_->roots.viewportTable;
}
AcDbObjectId AcDbDatabase::UCSTableId() const {
    return state_->roots.ucsTable;
}
AcDbObjectId AcDbDatabase::regAppTableId() const {
    return state_->roots.regAppTable;
}
AcDbObjectId AcDbDatabase::namedObjectsDictionaryId() const {
    return state_->roots.namedObjects;
}
AcDbObjectId AcDbDatabase::groupDictionaryId() const {
    return state_->roots.groups;
}
AcDbObjectId AcDbDatabase::layoutDictionaryId() const {
    return state_->roots.layouts;
}
AcDbObjectId AcDbDatabase::plotStyleNameDictionaryId() const {
    return state_->roots.plotStyleNames;
}
AcDbObjectId AcDbDatabase::modelSpaceId() const {
    return state_->roots.modelSpace;
}
AcDbObjectId AcDbDatabase::paperSpaceId() const {
    return state_->roots.paperSpace;
}
AcDbObjectId AcDbDatabase::currentSpaceId() const {
    const AcDbObjectId current = state_->roots.currentSpace;
    return current.isNull() ? state_->roots.modelSpace : current;
}
AcDbObjectId AcDbDatabase::layerZero() const {
    return state_->roots.layerZero;
}
AcDbObjectId AcDbDatabase::continuousLinetype() const {
    return state_->roots.continuousLinetype;
}
AcDbObjectId AcDbDatabase::byLayerLinetype() const {
    return state_->roots.byLayerLinetype;
}
AcDbObjectId AcDbDatabase::byBlockLinetype() const {
    return state_->roots.byBlockLinetype;
}

// ---- Objects ------------------------------------------------------------------------------------

Acad::ErrorStatus AcDbDatabase::addAcDbObject(AcDbObjectId& id, AcDbObject* object) {
    id.setNull();
    if (object == nullptr) return Acad::eNullObjectPointer;
    const Acad::ErrorStatus status = state_->add(*object);
    if (status == Acad::eOk) id = object->objectId();
    return status;
}

Acad::ErrorStatus AcDbDatabase::addAcDbObject(AcDbObject* object) {
    AcDbObjectId id;
    return addAcDbObject(id, object);
}

Acad::ErrorStatus AcDbDatabase::getAcDbObjectId(AcDbObjectId& id, bool createIfNotFound,
                                                const AcDbHandle& handle) {
    id.setNull();
    if (handle.isNull()) return Acad::eNullHandle;
    id = state_->findHandle(handle);
    if (createIfNotFound) {
        if (id.isNull()) id = state_->makeRecord(handle);
        return Acad::eOk;
    }
    if (id.isValid()) return Acad::eOk;
    id.setNull();
    return Acad::eUnknownHandle;
}

int64_t AcDbDatabase::approxNumObjects() const {
    return state_->records.count();
}

AcDbTransactionManager* AcDbDatabase::transactionManager() const {
    return &state_->transactions;
}

AcDbHandle AcDbDatabase::handseed() const {
    return AcDbHandle(state_->nextHandle());
}

// ---- Header variables ---------------------------------------------------------------------------

double AcDbDatabase::dimscale() const {
    return state_->header().get<double>(L"DIMSCALE");
}
Acad::ErrorStatus AcDbDatabase::setDimscale(double scale) {
    if (!(scale >= 0)) return Acad::eOutOfRange;
    state_->changeHeader().set(L"DIMSCALE", scale);
    return Acad::eOk;
}

AcDbObjectId AcDbDatabase::clayer() const {
    return state_->header().get<AcDbObjectId>(L"CLAYER");
}
Acad::ErrorStatus AcDbDatabase::setClayer(AcDbObjectId layer) {
    const auto* const record = sg::model::peek<AcDbLayerTableRecord>(layer);
    if (record == nullptr || layer.database() != this || record->isErased()) {
        return Acad::eInvalidInput;
    }
    if (record->isFrozen()) return Acad::eInvalidLayer;
    state_->changeHeader().set(L"CLAYER", layer);
    return Acad::eOk;
}

AcCmColor AcDbDatabase::cecolor() const {
    return state_->header().get<AcCmColor>(L"CECOLOR");
}
Acad::ErrorStatus AcDbDatabase::setCecolor(const AcCmColor& color) {
    state_->changeHeader().set(L"CECOLOR", color);
    return Acad::eOk;
}

AcDbObjectId AcDbDatabase::celtype() const {
    return state_->header().get<AcDbObjectId>(L"CELTYPE");
}
Acad::ErrorStatus AcDbDatabase::setCeltype(AcDbObjectId linetype) {
    if (linetype.isErased() || linetype.database() != this) return Acad::eInvalidInput;
    state_->changeHeader().set(L"CELTYPE", linetype);
    return Acad::eOk;
}

double AcDbDatabase::celtscale() const {
    return state_->header().get<double>(L"CELTSCALE");
}
AcDb::LineWeight AcDbDatabase::celweight() const {
    return static_cast<AcDb::LineWeight>(state_->header().get<int32_t>(L"CELWEIGHT"));
}

AcDbObjectId AcDbDatabase::textstyle() const {
    return state_->header().get<AcDbObjectId>(L"TEXTSTYLE");
}
Acad::ErrorStatus AcDbDatabase::setTextstyle(AcDbObjectId style) {
    if (style.isErased() || style.database() != this) return Acad::eInvalidInput;
    state_->changeHeader().set(L"TEXTSTYLE", style);
    return Acad::eOk;
}

double AcDbDatabase::textsize() const {
    return state_->header().get<double>(L"TEXTSIZE");
}
AcDbObjectId AcDbDatabase::dimstyle() const {
    return state_->header().get<AcDbObjectId>(L"DIMSTYLE");
}
double AcDbDatabase::ltscale() const {
    return state_->header().get<double>(L"LTSCALE");
}

AcGePoint3d AcDbDatabase::insbase() const {
    return state_->header().get<AcGePoint3d>(L"INSBASE");
}
Acad::ErrorStatus AcDbDatabase::setInsbase(const AcGePoint3d& point) {
    state_->changeHeader().set(L"INSBASE", point);
    return Acad::eOk;
}

bool AcDbDatabase::plotStyleMode() const {
    return state_->header().get<int32_t>(L"PSTYLEMODE") != 0;
}

// ---- Files --------------------------------------------------------------------------------------

namespace {

using sg::model::DrawingReaders;

// Who reads the file; null when nobody knows such files, or it cannot be read at all.
DrawingReaders::Read readerOf(const std::wstring& file, Acad::ErrorStatus& status) {
    const auto start = sg::readFileStart(file, DrawingReaders::kStartBytes);
    status = start ? Acad::eOk : Acad::eFileAccessErr;
    return start ? sg::model::DatabaseTable::the()->readers().find(*start) : nullptr;
}

// The interchange file that stands in for a drawing file: the one of the same name beside it.
std::wstring exchangeFileBeside(const std::wstring& file) {
    constexpr std::wstring_view kDrawing = L".dwg";
    if (file.size() <= kDrawing.size()) return {};
    const std::wstring stem = file.substr(0, file.size() - kDrawing.size());
    if (!sg::equalIgnoringCase(file.substr(stem.size()), kDrawing)) return {};
    const sg::ResolvedPath found = sg::resolvePath(stem + L".dxf");
    return found.exists && sg::isFile(found.path) ? found.path : std::wstring();
}

}  // namespace

Acad::ErrorStatus AcDbDatabase::readDwgFile(const wchar_t* path, int, bool,
                                            const wchar_t* password) {
    if (path == nullptr || (password != nullptr && *password != L'\0')) {
        return Acad::eInvalidInput;
    }
    const sg::ResolvedPath found = sg::resolvePath(sg::absolutePath(path));
    std::wstring file = found.path;
    if (found.exists && !sg::isFile(file)) return Acad::eFileAccessErr;
    const std::wstring other = exchangeFileBeside(file);
    if (!found.exists && other.empty()) return Acad::eFileNotFound;
    if (!found.exists) file = other;
    Acad::ErrorStatus start = Acad::eOk;
    DrawingReaders::Read read = readerOf(file, start);
    if (read == nullptr && start == Acad::eOk && !other.empty()) {
        file = other;
        read = readerOf(file, start);
    }
    if (start != Acad::eOk) return start;
    const Acad::ErrorStatus status = read == nullptr ? Acad::eUnknownFileType : read(*this, file);
    if (status == Acad::eOk) {
        setFilename(file);
    } else {
        state_ = std::make_unique<DatabaseState>(*this, state_->noDocument);
    }
    return status;
}
