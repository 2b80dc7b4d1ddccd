#include "host/model/tables/styles.h"

#include <algorithm>
#include <numbers>

#include "host/model/core/database_state.h"
#include "host/model/core/dwg_form.h"
#include "host/model/core/object_access.h"
#include "host/model/core/symbol_records.h"
#include "host/model/tables/filing.h"
#include "host/model/tables/references.h"
#include "platform/db/database.h"

using sg::model::FieldReader;

ACRX_DXF_DEFINE_MEMBERS(AcDbPlaceHolder, AcDbObject, 0, 0, L"ACDBPLACEHOLDER", nullptr)
ACRX_DXF_DEFINE_MEMBERS(AcDbDictionaryVar, AcDbObject, 0, 0, L"DICTIONARYVAR", nullptr)
ACRX_DXF_DEFINE_MEMBERS(AcDbDictionaryWithDefault, AcDbDictionary, 0, 0, L"ACDBDICTIONARYWDFLT",
                        nullptr)
ACRX_DXF_DEFINE_MEMBERS(AcDbMlineStyle, AcDbObject, 0, 0, L"MLINESTYLE", nullptr)

AcDbPlaceHolder::AcDbPlaceHolder() = default;
AcDbPlaceHolder::~AcDbPlaceHolder() = default;
AcDbDictionaryVar::AcDbDictionaryVar() = default;
AcDbDictionaryVar::~AcDbDictionaryVar() = default;

void AcDbDictionaryVar::setValue(const wchar_t* value) {
    assertWriteEnabled();
    value_ = value == nullptr ? L"" : value;
}

Acad::ErrorStatus AcDbDictionaryVar::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbObject::dwgOutFields(filer);
    filer->writeUInt8(static_cast<uint8_t>(schema_));
    return filer->writeString(value_);
}

Acad::ErrorStatus AcDbDictionaryVar::dwgInFields(AcDbDwgFiler* filer) {
    AcDbObject::dwgInFields(filer);
    uint8_t schema = 0;
    filer->readUInt8(&schema);
    schema_ = schema;
    return filer->readString(value_);
}

Acad::ErrorStatus AcDbDictionaryVar::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbObject::dxfOutFields(filer);
    filer->writeString(100, L"DictionaryVariables");
    filer->writeInt16(280, schema_);
    return filer->writeString(1, value_);
}

Acad::ErrorStatus AcDbDictionaryVar::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbObject::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(L"DictionaryVariables")) return Acad::eBadDxfSequence;
    FieldReader fields(filer);
    while (fields.next()) {
        if (fields.code() == 280) schema_ = static_cast<int16_t>(fields.integer());
        if (fields.code() == 1) value_ = fields.text();
    }
    return filer->filerStatus();
}

AcDbDictionaryWithDefault::AcDbDictionaryWithDefault() = default;
AcDbDictionaryWithDefault::~AcDbDictionaryWithDefault() = default;

void AcDbDictionaryWithDefault::setDefaultId(AcDbObjectId id) {
    assertWriteEnabled();
    default_ = id;
}

Acad::ErrorStatus AcDbDictionaryWithDefault::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbDictionary::dwgOutFields(filer);
    return filer->writeHardPointerId(default_);
}

Acad::ErrorStatus AcDbDictionaryWithDefault::dwgInFields(AcDbDwgFiler* filer) {
    AcDbDictionary::dwgInFields(filer);
    return filer->readHardPointerId(&default_);
}

Acad::ErrorStatus AcDbDictionaryWithDefault::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbDictionary::dxfOutFields(filer);
    filer->writeString(100, L"AcDbDictionaryWithDefault");
    return filer->writeObjectId(340, default_);
}

Acad::ErrorStatus AcDbDictionaryWithDefault::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbDictionary::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(L"AcDbDictionaryWithDefault")) return Acad::eBadDxfSequence;
    FieldReader fields(filer);
    while (fields.next()) {
        if (fields.code() == 340) default_ = fields.objectId();
    }
    return filer->filerStatus();
}

AcDbMlineStyle::AcDbMlineStyle()
    : startAngle_(std::numbers::pi / 2), endAngle_(std::numbers::pi / 2) {}
AcDbMlineStyle::~AcDbMlineStyle() = default;

void AcDbMlineStyle::setName(const wchar_t* name) {
    assertWriteEnabled();
    name_ = name;
}

void AcDbMlineStyle::setElements(std::vector<Element> elements) {
    assertWriteEnabled();
    elements_ = std::move(elements);
}

namespace {

constexpr size_t kMostElements = 255;

// A DWG object has three pairs of flags the other way round than groups have them: joints and
// fill, and of each end the round cap and the inner arcs.
int16_t reordered(int16_t flags) {
    constexpr std::pair<int, int> kPairs[] = {{1, 2}, {32, 64}, {512, 1024}};
    int changed = flags;
    for (const auto& [a, b] : kPairs) {
        changed &= ~(a | b);
        if ((flags & a) != 0) changed |= b;
        if ((flags & b) != 0) changed |= a;
    }
    return static_cast<int16_t>(changed);
}

// Files before 2018 have an element's linetype by its place among those of the drawing.
constexpr int16_t kByLayer = 32767;
constexpr int16_t kByBlock = 32766;

bool hasPlaces(AcDbDwgFiler& filer) {
    return filer.dwgForm() != nullptr && sg::model::isBefore(&filer, AcDb::kDHL_1032);
}

// Those that count, in the order of their table.
std::vector<AcDbObjectId> placedLinetypes(const AcDbDatabase& database) {
    const auto* const table = sg::model::peek<AcDbSymbolTable>(database.linetypeTableId());
    std::vector<AcDbObjectId> placed;
    if (table == nullptr) return placed;
    for (const AcDbObjectId id : sg::model::ObjectAccess::records(*table).ids) {
        const bool isBorrowed =
            id == database.byLayerLinetype() || id == database.byBlockLinetype();
        if (!isBorrowed && !id.isErased()) placed.push_back(id);
    }
    return placed;
}

int16_t placeOf(const AcDbDatabase* database, AcDbObjectId linetype) {
    if (database == nullptr || linetype.isNull() || linetype == database->byLayerLinetype()) {
        return kByLayer;
    }
    if (linetype == database->byBlockLinetype()) return kByBlock;
    const std::vector<AcDbObjectId> placed = placedLinetypes(*database);
    const auto found = std::find(placed.begin(), placed.end(), linetype);
    return found == placed.end() ? kByLayer : static_cast<int16_t>(found - placed.begin());
}

AcDbObjectId linetypeAt(const AcDbDatabase* database, int16_t place) {
    if (database == nullptr || place == kByLayer) return {};
    if (place == kByBlock) return database->byBlockLinetype();
    const std::vector<AcDbObjectId> placed = placedLinetypes(*database);
    const auto at = static_cast<size_t>(place);
    return place >= 0 && at < placed.size() ? placed[at] : AcDbObjectId();
}

void writeLinetype(AcDbDwgFiler& filer, const AcDbHardPointerId& linetype) {
    if (hasPlaces(filer)) {
        filer.writeInt16(placeOf(filer.database(), linetype));
    } else {
        filer.writeHardPointerId(linetype);
    }
}

void readLinetype(AcDbDwgFiler& filer, AcDbHardPointerId& linetype) {
    if (!hasPlaces(filer)) {
        filer.readHardPointerId(&linetype);
        return;
    }
    int16_t place = kByLayer;
    filer.readInt16(&place);
    linetype = linetypeAt(filer.database(), place);
}

}  // namespace

Acad::ErrorStatus AcDbMlineStyle::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbObject::dwgOutFields(filer);
    filer->writeString(name_);
    filer->writeString(description_);
    filer->writeInt16(filer->dwgForm() == nullptr ? flags_ : reordered(flags_));
    sg::model::writeColor(filer, fill_);
    filer->writeDouble(startAngle_);
    filer->writeDouble(endAngle_);
    filer->writeUInt8(static_cast<uint8_t>(std::min(elements_.size(), kMostElements)));
    for (size_t i = 0; i < elements_.size() && i < kMostElements; ++i) {
        filer->writeDouble(elements_[i].offset);
        sg::model::writeColor(filer, elements_[i].color);
        writeLinetype(*filer, elements_[i].linetype);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbMlineStyle::dwgInFields(AcDbDwgFiler* filer) {
    AcDbObject::dwgInFields(filer);
    uint8_t count = 0;
    filer->readString(name_);
    filer->readString(description_);
    filer->readInt16(&flags_);
    if (filer->dwgForm() != nullptr) flags_ = reordered(flags_);
    sg::model::readColor(filer, fill_);
    filer->readDouble(&startAngle_);
    filer->readDouble(&endAngle_);
    filer->readUInt8(&count);
    elements_.clear();
    for (uint32_t i = 0; i < count && filer->filerStatus() == Acad::eOk; ++i) {
        Element& element = elements_.emplace_back();
        filer->readDouble(&element.offset);
        sg::model::readColor(filer, element.color);
        readLinetype(*filer, element.linetype);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbMlineStyle::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbObject::dxfOutFields(filer);
    filer->writeString(100, L"AcDbMlineStyle");
    filer->writeString(2, name_);
    filer->writeInt16(70, flags_);
    filer->writeString(3, description_);
    filer->writeInt16(62, static_cast<int16_t>(fill_.colorIndex()));
    filer->writeDouble(51, startAngle_);
    filer->writeDouble(52, endAngle_);
    filer->writeInt16(71, static_cast<int16_t>(elements_.size()));
    for (const Element& element : elements_) {
        filer->writeDouble(49, element.offset);
        filer->writeInt16(62, static_cast<int16_t>(element.color.colorIndex()));
        sg::model::writeNameOf(filer, 6, element.linetype, L"BYLAYER");
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbMlineStyle::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbObject::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(L"AcDbMlineStyle")) return Acad::eBadDxfSequence;
    elements_.clear();
    FieldReader fields(filer);
    while (fields.next()) {
        AcCmColor& color = elements_.empty() ? fill_ : elements_.back().color;
        switch (fields.code()) {
            case 2:
                name_ = fields.text();
                break;
            case 70:
                flags_ = static_cast<int16_t>(fields.integer());
                break;
            case 3:
                description_ = fields.text();
                break;
            case 51:
                startAngle_ = fields.real();
                break;
            case 52:
                endAngle_ = fields.real();
                break;
            case 49:
                elements_.emplace_back().offset = fields.real();
                break;
            case 62:
                color.setColorIndex(static_cast<uint16_t>(fields.integer()));
                break;
            case 420:
                sg::model::setTrueColor(color, fields.integer());
                break;
            case 6:
                if (!elements_.empty()) {
                    elements_.back().linetype = sg::model::recordNamed(
                        filer->database(), sg::model::NamedIn::linetypes, fields.text());
                }
                break;
            default:
                break;
        }
    }
    return filer->filerStatus();
}
