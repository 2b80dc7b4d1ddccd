#include "host/model/tables/layout.h"

#include <vector>

#include "host/model/core/dwg_form.h"
#include "host/model/core/object_access.h"
#include "host/model/tables/view_steps.h"
#include "platform/db/viewport.h"

using sg::model::FieldReader;
using sg::model::FieldRow;
using sg::model::Reference;

ACRX_DXF_DEFINE_MEMBERS(AcDbPlotSettings, AcDbObject, 0, 0, L"PLOTSETTINGS", nullptr)
ACRX_DXF_DEFINE_MEMBERS(AcDbLayout, AcDbPlotSettings, 0, 0, L"LAYOUT", nullptr)

namespace {

enum : int { kName = 1, kTabOrder = 71, kBlock = 330 };

FieldRow text(int code, const wchar_t* initial) {
    return {static_cast<int16_t>(code), std::wstring(initial)};
}
FieldRow whole(int code, int initial) {
    return {static_cast<int16_t>(code), int32_t(initial)};
}
FieldRow real(int code, double initial) {
    return {static_cast<int16_t>(code), initial};
}
FieldRow point(int code, double x, double y, double z, bool flat = false) {
    return {static_cast<int16_t>(code), AcGePoint3d(x, y, z), false, Reference::hardPointer, flat};
}
FieldRow object(int code, Reference kind) {
    return {static_cast<int16_t>(code), AcDbObjectId(), true, kind};
}

std::span<const FieldRow> plotRows() {
    static const std::vector<FieldRow> kRows = {text(1, L""),
                                                text(2, L"none_device"),
                                                text(4, L""),
                                                text(6, L""),
                                                real(40, 0),
                                                real(41, 0),
                                                real(42, 0),
                                                real(43, 0),
                                                real(44, 0),
                                                real(45, 0),
                                                real(46, 0),
                                                real(47, 0),
                                                real(48, 0),
                                                real(49, 0),
                                                real(140, 0),
                                                real(141, 0),
                                                real(142, 1),
                                                real(143, 1),
                                                whole(70, 688),
                                                whole(72, 0),
                                                whole(73, 0),
                                                whole(74, 5),
                                                text(7, L""),
                                                whole(75, 16),
                                                whole(76, 0),
                                                whole(77, 2),
                                                whole(78, 300),
                                                real(147, 1),
                                                real(148, 0),
                                                real(149, 0),
                                                object(333, Reference::softPointer)};
    return kRows;
}

std::span<const FieldRow> layoutRows() {
    static const std::vector<FieldRow> kRows = {text(kName, L""),
                                                whole(70, 1),
                                                whole(kTabOrder, 0),
                                                point(10, 0, 0, 0, true),
                                                point(11, 12, 9, 0, true),
                                                point(12, 0, 0, 0),
                                                point(14, 1e20, 1e20, 1e20),
                                                point(15, -1e20, -1e20, -1e20),
                                                real(146, 0),
                                                point(13, 0, 0, 0),
                                                point(16, 1, 0, 0),
                                                point(17, 0, 1, 0),
                                                whole(76, 0),
                                                object(kBlock, Reference::softPointer),
                                                object(331, Reference::softPointer),
                                                object(345, Reference::hardPointer),
                                                object(346, Reference::hardPointer)};
    return kRows;
}

// The groups of one subclass into its fields.
Acad::ErrorStatus takeSubclass(AcDbDxfFiler* filer, const wchar_t* marker,
                               sg::model::RecordFields& fields) {
    if (!filer->atSubclassData(marker)) return Acad::eBadDxfSequence;
    FieldReader groups(filer);
    while (groups.next())
        fields.takeDxf(groups);
    return filer->filerStatus();
}

// Files from release 2004 on list the viewports of a sheet's block.
bool listsViewports(AcDbDwgFiler& filer) {
    return filer.dwgForm() != nullptr && !sg::model::isBefore(&filer, AcDb::kDHL_1018);
}

std::vector<AcDbObjectId> viewportsOf(AcDbObjectId blockId) {
    std::vector<AcDbObjectId> found;
    const auto* const block = sg::model::peek<AcDbBlockTableRecord>(blockId);
    if (block == nullptr) return found;
    for (const AcDbObjectId id : block->entityIds()) {
        if (!id.isErased() && sg::model::peek<AcDbViewport>(id) != nullptr) found.push_back(id);
    }
    return found;
}

}  // namespace

AcDbPlotSettings::AcDbPlotSettings() : plot_(plotRows()) {}
AcDbPlotSettings::~AcDbPlotSettings() = default;

sg::model::RecordFields& AcDbPlotSettings::plotFields() {
    assertWriteEnabled();
    return plot_;
}

Acad::ErrorStatus AcDbPlotSettings::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbObject::dwgOutFields(filer);
    return plot_.writeDwg(filer, sg::model::plotSteps());
}

Acad::ErrorStatus AcDbPlotSettings::dwgInFields(AcDbDwgFiler* filer) {
    AcDbObject::dwgInFields(filer);
    return plot_.readDwg(filer, sg::model::plotSteps());
}

Acad::ErrorStatus AcDbPlotSettings::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbObject::dxfOutFields(filer);
    filer->writeString(100, L"AcDbPlotSettings");
    plot_.writeDxf(filer);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbPlotSettings::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbObject::dxfInFields(filer);
    return status != Acad::eOk ? status : takeSubclass(filer, L"AcDbPlotSettings", plot_);
}

AcDbLayout::AcDbLayout() : fields_(layoutRows()) {}
AcDbLayout::~AcDbLayout() = default;

const std::wstring& AcDbLayout::getLayoutName() const {
    return fields_.get<std::wstring>(kName);
}

int32_t AcDbLayout::getTabOrder() const {
    return fields_.get<int32_t>(kTabOrder);
}

AcDbObjectId AcDbLayout::getBlockTableRecordId() const {
    return fields_.get<AcDbObjectId>(kBlock);
}

void AcDbLayout::setLayout(const wchar_t* name, int32_t tabOrder, AcDbObjectId block) {
    assertWriteEnabled();
    fields_.set(kName, std::wstring(name));
    fields_.set(kTabOrder, tabOrder);
    fields_.set(kBlock, block);
}

sg::model::RecordFields& AcDbLayout::fields() {
    assertWriteEnabled();
    return fields_;
}

Acad::ErrorStatus AcDbLayout::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbPlotSettings::dwgOutFields(filer);
    fields_.writeDwg(filer, sg::model::layoutSteps());
    if (!listsViewports(*filer)) return filer->filerStatus();
    const std::vector<AcDbObjectId> viewports = viewportsOf(getBlockTableRecordId());
    filer->writeUInt32(static_cast<uint32_t>(viewports.size()));
    for (const AcDbObjectId viewport : viewports)
        filer->writeSoftPointerId(viewport);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbLayout::dwgInFields(AcDbDwgFiler* filer) {
    AcDbPlotSettings::dwgInFields(filer);
    fields_.readDwg(filer, sg::model::layoutSteps());
    if (!listsViewports(*filer)) return filer->filerStatus();
    uint32_t count = 0;
    filer->readUInt32(&count);
    while (count-- > 0 && filer->filerStatus() == Acad::eOk)
        sg::model::readReference(*filer, Reference::softPointer);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbLayout::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbPlotSettings::dxfOutFields(filer);
    filer->writeString(100, L"AcDbLayout");
    fields_.writeDxf(filer);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbLayout::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbPlotSettings::dxfInFields(filer);
    return status != Acad::eOk ? status : takeSubclass(filer, L"AcDbLayout", fields_);
}
