#include "database/field_definitions.h"

#include <algorithm>
#include <string_view>

#include "base/text.h"
#include "bridge/marshal_variants.h"
#include "platform/dao/constants.h"

namespace sg {
namespace {

constexpr int32_t kGeneralOrder = 0x409;

struct FieldType {
    std::wstring_view name;
    int16_t code;
    bool allowZeroLength;
};

constexpr FieldType kTypes[] = {
    {L"BOOL", dbBoolean, false}, {L"BYTE", dbByte, false},   {L"INT", dbInteger, false},
    {L"LONG", dbLong, false},    {L"REAL", dbDouble, false}, {L"CURRENCY", dbCurrency, false},
    {L"DATE", dbDate, false},    {L"MEMO", dbMemo, true},    {L"TEXT", dbText, true},
};

void makeCounter(CDaoFieldInfo& field) {
    field.m_nType = dbLong;
    field.m_lAttributes = dbAutoIncrField;
    field.m_bAllowZeroLength = false;
}

CDaoIndexInfo indexOn(const std::wstring& field, bool descending) {
    CDaoIndexInfo index;
    index.m_strName = field;
    index.m_pFieldInfos.push_back({field, descending});
    index.m_nFields = 1;
    return index;
}

}  // namespace

const COleVariant* FieldDefinitionReader::take() {
    return at_ < items_.size() ? &items_[at_++] : nullptr;
}

// Null for what is no text, too.
const COleVariant* FieldDefinitionReader::takeText() {
    const COleVariant* const item = take();
    return item != nullptr && item->vt == VT_BSTR ? item : nullptr;
}

bool FieldDefinitionReader::next(FieldDefinition& definition) {
    if (!wellFormed_ || !findBegin()) return false;
    definition = {};
    return wellFormed_ = readDefinition(definition);
}

// Past the ends of what came before; false at the end of all, and where no definition begins.
bool FieldDefinitionReader::findBegin() {
    while (const COleVariant* const item = take()) {
        if (isListEndMarker(*item)) continue;
        return wellFormed_ = isListBeginMarker(*item);
    }
    return false;
}

bool FieldDefinitionReader::readDefinition(FieldDefinition& definition) {
    CDaoFieldInfo& field = definition.field;
    field.m_lCollatingOrder = kGeneralOrder;
    return readName(field) && readType(field) && readRequired(field) && readDefault(field) &&
           readOption(definition);
}

// In a list of definitions the first one begins behind the beginning of the list.
bool FieldDefinitionReader::readName(CDaoFieldInfo& field) {
    const COleVariant* name = takeText();
    if (name != nullptr && isListBeginMarker(*name)) name = takeText();
    if (name == nullptr) return false;
    field.m_strName = variantText(*name);
    return true;
}

bool FieldDefinitionReader::readType(CDaoFieldInfo& field) {
    const COleVariant* const item = takeText();
    if (item == nullptr) return false;
    const std::wstring name = upperCased(variantText(*item));
    const auto type = std::find_if(std::begin(kTypes), std::end(kTypes),
                                   [&](const FieldType& each) { return each.name == name; });
    if (type == std::end(kTypes)) return false;
    field.m_nType = type->code;
    field.m_bAllowZeroLength = type->allowZeroLength;
    if (field.m_nType != dbText) return true;
    const COleVariant* const size = take();
    if (size == nullptr || size->vt != VT_I4) return false;
    field.m_lSize = size->lVal;
    return true;
}

bool FieldDefinitionReader::readRequired(CDaoFieldInfo& field) {
    const COleVariant* const required = take();
    if (required == nullptr || isListEndMarker(*required)) return false;
    field.m_bRequired = isVariantTrue(*required);
    return true;
}

bool FieldDefinitionReader::readDefault(CDaoFieldInfo& field) {
    const COleVariant* const value = take();
    if (value == nullptr || isListEndMarker(*value)) return false;
    field.m_strDefaultValue = variantText(*value);
    return true;
}

bool FieldDefinitionReader::readOption(FieldDefinition& definition) {
    const COleVariant* const item = takeText();
    if (item == nullptr) return false;
    const std::wstring_view option = variantText(*item);
    if (isListEndMarker(*item) || option.empty()) return true;
    if (option == L"I") makeCounter(definition.field);
    definition.index = indexOn(definition.field.m_strName, option == L"D");
    return readIndexFlags(*definition.index);
}

// Unique and primary, either of which may be left out at the end.
bool FieldDefinitionReader::readIndexFlags(CDaoIndexInfo& index) {
    for (bool* const flag : {&index.m_bUnique, &index.m_bPrimary}) {
        const COleVariant* const item = take();
        if (item == nullptr) return false;
        if (isListEndMarker(*item)) return true;
        *flag = isVariantTrue(*item);
    }
    return true;
}

}  // namespace sg
