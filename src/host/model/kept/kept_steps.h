#pragma once

#include <utility>

#include "host/model/kept/kept_form.h"

// Short words for the steps of descriptions. Where a key is the code of its group, one number
// stands for both.
namespace sg::model::kept {

using Step = DwgKeptStep;
using Item = GroupKeptStep;
using Kind = GroupKeptStep::Kind;

// ---- DWG objects --------------------------------------------------------------------------------

inline Step step(KeptCoding coding, int key, int16_t since = 0, int16_t until = 0x7FFF) {
    return {key, coding, since, until};
}
inline Step bit(int key, int16_t since = 0) {
    return step(KeptCoding::bit, key, since);
}
inline Step byte(int key, int16_t since = 0) {
    return step(KeptCoding::byte, key, since);
}
inline Step int16(int key, int16_t since = 0) {
    return step(KeptCoding::int16, key, since);
}
inline Step int32(int key, int16_t since = 0) {
    return step(KeptCoding::int32, key, since);
}
inline Step real(int key, int16_t since = 0) {
    return step(KeptCoding::real, key, since);
}
inline Step point(int key) {
    return step(KeptCoding::point, key);
}
inline Step text(int key) {
    return step(KeptCoding::text, key);
}
inline Step color(int key) {
    return step(KeptCoding::color, key);
}
inline Step fullColor(int key) {
    return step(KeptCoding::fullColor, key);
}
inline Step id(int key, Reference kind = Reference::hardPointer) {
    Step made = step(KeptCoding::id, key);
    made.kind = kind;
    return made;
}
inline Step onlyIf(int key, int64_t equals, Step made) {
    made.onlyIf = key;
    made.equals = equals;
    return made;
}
inline Step otherwise(int64_t value, Step made) {
    made.otherwise = value;
    return made;
}
inline Step rows(int key, std::vector<Step> row, int times = 0) {
    Step made = step(KeptCoding::rows, key);
    made.row = std::move(row);
    made.times = times;
    return made;
}

// ---- Groups -------------------------------------------------------------------------------------

inline Item marker(const char* text, bool isOptional = false) {
    Item made{Kind::marker};
    made.text = text;
    if (isOptional) made.otherwise = int64_t(0);
    return made;
}
inline Item group(int code) {
    return {Kind::value, code, code};
}
inline Item group(int code, KeptValue otherwise) {
    return {Kind::value, code, code, std::move(otherwise)};
}
// A value under another key than its code.
inline Item keyed(int code, int key) {
    return {Kind::value, code, key};
}
inline Item constant(int code, KeptValue value) {
    return {Kind::constant, code, code, std::move(value)};
}
inline Item object(int code) {
    return group(code, AcDbObjectId());
}
inline Item named(int code, int key, NamedIn table) {
    Item made{Kind::name, code, key};
    made.table = table;
    return made;
}
// The name of the object under `key`, ahead of it.
inline Item nameOf(int code, int key) {
    Item made{Kind::styleName, code, Item::kNameKey};
    made.second = key;
    return made;
}
inline Item indexColor(int code, int exact = 0) {
    Item made{Kind::color, code, code};
    made.second = exact;
    return made;
}
inline Item rawColor(int code) {
    return {Kind::rawColor, code, code};
}
inline Item rows(int key, std::vector<Item> row, int times = 0) {
    Item made{Kind::rows, 0, key};
    made.row = std::move(row);
    made.times = times;
    return made;
}

inline Item matrix(int key, int size) {
    Item made = rows(key, {group(key)}, size);
    made.isMatrix = true;
    return made;
}

inline KeptValue number(int64_t value) {
    return value;
}

}  // namespace sg::model::kept
