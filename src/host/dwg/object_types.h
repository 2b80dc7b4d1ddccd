#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "platform/db/filers.h"

namespace sg::dwg {

// The types that objects have in all files; others are classes of the file, from 500 on.
struct ObjectType {
    uint16_t number;
    const wchar_t* dxfName;
    const wchar_t* className;
    bool isEntity;
    // The first release in which it has this number; a class of the file before.
    int16_t since = AcDb::kDHL_1012;
};

std::span<const ObjectType> objectTypes();
// Null for a number that is none.
const ObjectType* objectType(uint16_t number);

constexpr uint16_t kBlockBegin = 4, kBlockEnd = 5, kSequenceEnd = 6;
constexpr uint16_t kFirstTable = 48, kLastTable = 71;  // symbol tables and their records
constexpr uint16_t kViewportHeaders = 70;
constexpr uint16_t kProxyEntity = 498, kProxyObject = 499;

}  // namespace sg::dwg
