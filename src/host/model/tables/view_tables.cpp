#include "host/model/tables/view_tables.h"

#include "host/model/tables/view_steps.h"

using sg::model::FieldRow;
using sg::model::Reference;

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbFieldsTableRecord, AcDbSymbolTableRecord)
ACRX_DXF_DEFINE_MEMBERS(AcDbViewTableRecord, AcDbFieldsTableRecord, 0, 0, L"VIEW", nullptr)
ACRX_DXF_DEFINE_MEMBERS(AcDbViewportTableRecord, AcDbFieldsTableRecord, 0, 0, L"VPORT", nullptr)
ACRX_DXF_DEFINE_MEMBERS(AcDbUCSTableRecord, AcDbFieldsTableRecord, 0, 0, L"UCS", nullptr)
ACRX_CONS_DEFINE_MEMBERS(AcDbViewTable, AcDbSymbolTable, 0)
ACRX_CONS_DEFINE_MEMBERS(AcDbViewportTable, AcDbSymbolTable, 0)
ACRX_CONS_DEFINE_MEMBERS(AcDbUCSTable, AcDbSymbolTable, 0)

namespace {

FieldRow whole(int code, int initial, bool optional = false) {
    return {static_cast<int16_t>(code), int32_t(initial), optional};
}
FieldRow real(int code, double initial, bool optional = false) {
    return {static_cast<int16_t>(code), initial, optional};
}
FieldRow point(int code, double x, double y, double z, bool optional = false) {
    return {static_cast<int16_t>(code), AcGePoint3d(x, y, z), optional};
}
FieldRow flat(int code, double x, double y) {
    return {static_cast<int16_t>(code), AcGePoint3d(x, y, 0), false, Reference::hardPointer, true};
}
FieldRow object(int code, Reference kind = Reference::hardPointer) {
    return {static_cast<int16_t>(code), AcDbObjectId(), true, kind};
}

std::span<const FieldRow> viewRows() {
    static const std::vector<FieldRow> kRows = {real(40, 1),
                                                flat(10, 0, 0),
                                                real(41, 1),
                                                point(11, 0, 0, 1),
                                                point(12, 0, 0, 0),
                                                real(42, 50),
                                                real(43, 0),
                                                real(44, 0),
                                                real(50, 0),
                                                whole(71, 0),
                                                whole(281, 0),
                                                whole(72, 0),
                                                whole(73, 0, true),
                                                point(110, 0, 0, 0, true),
                                                point(111, 1, 0, 0, true),
                                                point(112, 0, 1, 0, true),
                                                whole(79, 0, true),
                                                real(146, 0, true),
                                                object(345),
                                                object(346),
                                                object(332, Reference::softPointer),
                                                object(334, Reference::softPointer),
                                                object(348),
                                                object(361, Reference::hardOwnership)};
    return kRows;
}

std::span<const FieldRow> viewportRows() {
    static const std::vector<FieldRow> kRows = {flat(10, 0, 0),
                                                flat(11, 1, 1),
                                                flat(12, 6, 4.5),
                                                flat(13, 0, 0),
                                                flat(14, 0.5, 0.5),
                                                flat(15, 0.5, 0.5),
                                                point(16, 0, 0, 1),
                                                point(17, 0, 0, 0),
                                                real(40, 9),
                                                real(41, 4.0 / 3),
                                                real(42, 50),
                                                real(43, 0),
                                                real(44, 0),
                                                real(50, 0),
                                                real(51, 0),
                                                whole(71, 0),
                                                whole(72, 1000),
                                                whole(73, 1),
                                                whole(74, 3),
                                                whole(75, 0),
                                                whole(76, 0),
                                                whole(77, 0),
                                                whole(78, 0),
                                                whole(281, 0),
                                                whole(65, 1),
                                                point(110, 0, 0, 0),
                                                point(111, 1, 0, 0),
                                                point(112, 0, 1, 0),
                                                whole(79, 0),
                                                real(146, 0),
                                                object(345),
                                                object(346),
                                                object(332, Reference::softPointer),
                                                object(348),
                                                object(361, Reference::hardOwnership),
                                                whole(60, 3, true),
                                                whole(61, 5, true),
                                                whole(292, 1, true),
                                                whole(282, 1, true),
                                                real(141, 0, true),
                                                real(142, 0, true),
                                                whole(63, 250, true),
                                                whole(421, 3355443, true)};
    return kRows;
}

std::span<const FieldRow> ucsRows() {
    static const std::vector<FieldRow> kRows = {point(10, 0, 0, 0), point(11, 1, 0, 0),
                                                point(12, 0, 1, 0), whole(79, 0),
                                                real(146, 0),       object(346)};
    return kRows;
}

}  // namespace

AcDbFieldsTableRecord::AcDbFieldsTableRecord(const wchar_t* marker, std::span<const FieldRow> rows,
                                             std::span<const sg::model::DwgStep> steps)
    : marker_(marker), steps_(steps), fields_(rows) {}
AcDbFieldsTableRecord::~AcDbFieldsTableRecord() = default;

sg::model::RecordFields& AcDbFieldsTableRecord::fields() {
    assertWriteEnabled();
    return fields_;
}

Acad::ErrorStatus AcDbFieldsTableRecord::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbSymbolTableRecord::dwgOutFields(filer);
    return fields_.writeDwg(filer, steps_);
}

Acad::ErrorStatus AcDbFieldsTableRecord::dwgInFields(AcDbDwgFiler* filer) {
    AcDbSymbolTableRecord::dwgInFields(filer);
    return fields_.readDwg(filer, steps_);
}

Acad::ErrorStatus AcDbFieldsTableRecord::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbSymbolTableRecord::dxfOutFields(filer);
    filer->writeString(100, marker_);
    filer->writeString(2, name());
    filer->writeInt16(70, standardFlags_);
    fields_.writeDxf(filer);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbFieldsTableRecord::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbSymbolTableRecord::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(marker_)) return Acad::eBadDxfSequence;
    sg::model::FieldReader groups(filer);
    while (groups.next()) {
        if (groups.code() == 2) {
            takeName(groups.text());
        } else if (groups.code() == 70) {
            standardFlags_ = static_cast<int16_t>(groups.integer());
        } else {
            fields_.takeDxf(groups);
        }
    }
    return filer->filerStatus();
}

AcDbViewTableRecord::AcDbViewTableRecord()
    : AcDbFieldsTableRecord(L"AcDbViewTableRecord", viewRows(), sg::model::viewSteps()) {}
AcDbViewTableRecord::~AcDbViewTableRecord() = default;
AcDbViewportTableRecord::AcDbViewportTableRecord()
    : AcDbFieldsTableRecord(L"AcDbViewportTableRecord", viewportRows(),
                            sg::model::viewportSteps()) {}
AcDbViewportTableRecord::~AcDbViewportTableRecord() = default;
AcDbUCSTableRecord::AcDbUCSTableRecord()
    : AcDbFieldsTableRecord(L"AcDbUCSTableRecord", ucsRows(), sg::model::ucsSteps()) {}
AcDbUCSTableRecord::~AcDbUCSTableRecord() = default;
AcDbViewTable::AcDbViewTable() = default;
AcDbViewTable::~AcDbViewTable() = default;
AcDbViewportTable::AcDbViewportTable() = default;
AcDbViewportTable::~AcDbViewportTable() = default;
AcDbUCSTable::AcDbUCSTable() = default;
AcDbUCSTable::~AcDbUCSTable() = default;
