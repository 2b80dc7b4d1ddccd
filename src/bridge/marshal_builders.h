#pragma once

#include <concepts>
#include <cstdint>
#include <string_view>

#include "platform/db/object.h"
#include "platform/db/object_id.h"
#include "platform/ge/point3d.h"
#include "platform/lisp/resbuf.h"
#include "platform/variant/variant.h"

// Result lists grown at their tail:
//
//     resbuf *head, *tail;
//     beginResultList(head, tail);
//     appendPair(tail, L"name", L"A");
//     finishResultList(head, tail);
//
// `tail` is the last node of the list, and every append moves it to the new last node.
// std::bad_alloc when memory is exhausted; the list is then as it was before the append began or
// longer by a part of it, and stays with its owner.
namespace sg {

// Makes the RTLB that opens a list; both pointers are at it.
void beginResultList(resbuf*& head, resbuf*& tail);

// Closes the list, gives it to the host as the call's result, releases it and clears both pointers.
void finishResultList(resbuf*& head, resbuf*& tail);

// RTLB and RTLE, of the list itself or of one inside it.
void appendListBegin(resbuf*& tail);
void appendListEnd(resbuf*& tail);

// A single item each.
void appendInt(resbuf*& tail, int32_t value);               // RTLONG
void appendReal(resbuf*& tail, double value);               // RTREAL
void appendString(resbuf*& tail, std::wstring_view value);  // RTSTR
void appendPoint(resbuf*& tail, const AcGePoint3d& value);  // RT3DPOINT
void appendBool(resbuf*& tail, bool value);                 // RTT or RTNIL
// RTENAME; RTNIL for the null id and for an id without a name.
void appendObjectId(resbuf*& tail, AcDbObjectId value);
// As variantToResbuf with trimming on.
void appendVariant(resbuf*& tail, const VARIANT& value);

// A dotted pair (key . value) each: RTLB, key, RTDOTE, value, RTLE.
void appendPair(resbuf*& tail, int32_t key, int32_t value);
void appendPair(resbuf*& tail, int32_t key, double value);
void appendPair(resbuf*& tail, int32_t key, std::wstring_view value);
void appendPair(resbuf*& tail, int32_t key, const AcGePoint3d& value);
void appendPair(resbuf*& tail, double key, int32_t value);
void appendPair(resbuf*& tail, const AcGePoint3d& key, double value);
void appendPair(resbuf*& tail, std::wstring_view key, std::wstring_view value);
void appendPair(resbuf*& tail, std::wstring_view key, int32_t value);
void appendPair(resbuf*& tail, std::wstring_view key, double value);
void appendPair(resbuf*& tail, std::wstring_view key, const AcGePoint3d& value);
// An entity name, or nil for the null id; nothing is appended for an id that has no name.
void appendPair(resbuf*& tail, std::wstring_view key, AcDbObjectId value);
// The same for the object's id; nil for a null pointer.
void appendPair(resbuf*& tail, std::wstring_view key, const AcDbObject* value);
// As variantToResbuf; the key decides about trimming (see trimsValueOf).
void appendPair(resbuf*& tail, std::wstring_view key, const VARIANT& value);
// The same with the key of a node that has it already, whose text both then share.
void appendPair(resbuf*& tail, const resbuf& key, const VARIANT& value);
// Named for their value: as an overload, a bool would also be taken for a number, and a literal
// text for a bool.
template <std::same_as<bool> Bool>
void appendPair(resbuf*& tail, std::wstring_view key, Bool value) = delete;
void appendNilPair(resbuf*& tail, std::wstring_view key);
void appendTPair(resbuf*& tail, std::wstring_view key);
void appendBoolPair(resbuf*& tail, std::wstring_view key, bool value);  // T or nil

// Set the call's result: an integer when `value` fits 16 bits, otherwise a real.
int retIntOrReal(int32_t value);
// The object's entity name, or nil when it has none.
int retEntity(AcDbObjectId id);

}  // namespace sg
