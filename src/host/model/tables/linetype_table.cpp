#include "platform/db/linetype_table.h"

#include <cmath>

#include "host/model/tables/filing.h"

using sg::model::FieldReader;
using Dash = AcDbLinetypeTableRecord::Dash;

ACRX_DXF_DEFINE_MEMBERS(AcDbLinetypeTableRecord, AcDbSymbolTableRecord, 0, 0, L"LTYPE", nullptr)
ACRX_CONS_DEFINE_MEMBERS(AcDbLinetypeTable, AcDbSymbolTable, 0)

namespace {

constexpr int16_t kText = 2;
constexpr int16_t kShape = 4;

bool isComplex(const Dash& dash) {
    return (dash.flags & (kText | kShape)) != 0;
}

void writeDash(AcDbDxfFiler* filer, const Dash& dash) {
    filer->writeDouble(49, dash.length);
    filer->writeInt16(74, dash.flags);
    if (!isComplex(dash)) return;
    filer->writeInt16(75, dash.shapeNumber);
    filer->writeObjectId(340, dash.style);
    filer->writeDouble(46, dash.scale);
    filer->writeDouble(50, dash.rotation);
    filer->writeDouble(44, dash.offset.x);
    filer->writeDouble(45, dash.offset.y);
    if ((dash.flags & kText) != 0) filer->writeString(9, dash.text);
}

void readDash(const FieldReader& fields, Dash& dash) {
    switch (fields.code()) {
        case 74:
            dash.flags = static_cast<int16_t>(fields.integer());
            break;
        case 75:
            dash.shapeNumber = static_cast<int16_t>(fields.integer());
            break;
        case 340:
            dash.style = fields.objectId();
            break;
        case 46:
            dash.scale = fields.real();
            break;
        case 50:
            dash.rotation = fields.real();
            break;
        case 44:
            dash.offset.x = fields.real();
            break;
        case 45:
            dash.offset.y = fields.real();
            break;
        case 9:
            dash.text = fields.text();
            break;
        default:
            break;
    }
}

}  // namespace

AcDbLinetypeTable::AcDbLinetypeTable() = default;
AcDbLinetypeTable::~AcDbLinetypeTable() = default;

std::span<const wchar_t* const> AcDbLinetypeTable::fixedRecords() const {
    static constexpr const wchar_t* kBorrowed[] = {L"ByBlock", L"ByLayer"};
    return kBorrowed;
}

AcDbLinetypeTableRecord::AcDbLinetypeTableRecord() = default;
AcDbLinetypeTableRecord::~AcDbLinetypeTableRecord() = default;

void AcDbLinetypeTableRecord::setComments(const wchar_t* comments) {
    assertWriteEnabled();
    comments_ = comments == nullptr ? L"" : comments;
}

void AcDbLinetypeTableRecord::setDashes(std::vector<Dash> dashes) {
    assertWriteEnabled();
    dashes_ = std::move(dashes);
    patternLength_ = 0;
    for (const Dash& dash : dashes_)
        patternLength_ += std::abs(dash.length);
}

Acad::ErrorStatus AcDbLinetypeTableRecord::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbSymbolTableRecord::dwgOutFields(filer);
    if (filer->dwgForm() != nullptr) return writeFile(*filer);
    filer->writeString(comments_);
    filer->writeDouble(patternLength_);
    filer->writeUInt32(static_cast<uint32_t>(dashes_.size()));
    for (const Dash& dash : dashes_) {
        filer->writeDouble(dash.length);
        filer->writeInt16(dash.flags);
        filer->writeInt16(dash.shapeNumber);
        filer->writeHardPointerId(dash.style);
        filer->writeDouble(dash.scale);
        filer->writeDouble(dash.rotation);
        filer->writeVector2d(dash.offset);
        filer->writeString(dash.text);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbLinetypeTableRecord::dwgInFields(AcDbDwgFiler* filer) {
    AcDbSymbolTableRecord::dwgInFields(filer);
    if (filer->dwgForm() != nullptr) return readFile(*filer);
    uint32_t count = 0;
    filer->readString(comments_);
    filer->readDouble(&patternLength_);
    filer->readUInt32(&count);
    dashes_.clear();
    for (uint32_t i = 0; i < count && filer->filerStatus() == Acad::eOk; ++i) {
        Dash& dash = dashes_.emplace_back();
        filer->readDouble(&dash.length);
        filer->readInt16(&dash.flags);
        filer->readInt16(&dash.shapeNumber);
        filer->readHardPointerId(&dash.style);
        filer->readDouble(&dash.scale);
        filer->readDouble(&dash.rotation);
        filer->readVector2d(&dash.offset);
        filer->readString(dash.text);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbLinetypeTableRecord::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbSymbolTableRecord::dxfOutFields(filer);
    filer->writeString(100, L"AcDbLinetypeTableRecord");
    filer->writeString(2, name());
    filer->writeInt16(70, standardFlags_);
    filer->writeString(3, comments_);
    filer->writeInt16(72, 65);
    filer->writeInt16(73, static_cast<int16_t>(dashes_.size()));
    filer->writeDouble(40, patternLength_);
    for (const Dash& dash : dashes_)
        writeDash(filer, dash);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbLinetypeTableRecord::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbSymbolTableRecord::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(L"AcDbLinetypeTableRecord")) return Acad::eBadDxfSequence;
    FieldReader fields(filer);
    bool first = true;
    while (fields.next()) {
        switch (fields.code()) {
            case 2:
                takeName(fields.text());
                break;
            case 70:
                standardFlags_ = static_cast<int16_t>(fields.integer());
                break;
            case 3:
                comments_ = fields.text();
                break;
            case 40:
                patternLength_ = fields.real();
                break;
            case 49:
                if (first) dashes_.clear();
                first = false;
                dashes_.emplace_back().length = fields.real();
                break;
            default:
                if (!dashes_.empty() && !first) readDash(fields, dashes_.back());
                break;
        }
    }
    return filer->filerStatus();
}
