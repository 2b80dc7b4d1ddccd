#pragma once

#include <bit>
#include <cstdint>
#include <limits>

namespace sg::lisp {

struct Cons;
struct String;
class Object;

// A LISP value in one machine word. Reals stand as they are; everything else lives in the part of
// the NaN space that arithmetic never produces: a 16-bit tag above a 48-bit payload.
//
//   tag     payload
//   FFF9    a 32-bit integer
//   FFFA    address of a Cons
//   FFFB    address of a String
//   FFFC    index of a symbol
//   FFFD    address of an Object: function, file, selection set, ...
//   FFFE    an entity name, 48 bits
//   FFFF    nil and the other constants
class Value {
  public:
    constexpr Value() : bits_(kNilBits) {}

    static constexpr Value nil() { return Value(); }
    // The value of functions that print nothing at a command line.
    static constexpr Value voidValue() { return Value(kTagConstant | 1); }
    static constexpr Value integer(int32_t i) { return Value(kTagInt | static_cast<uint32_t>(i)); }
    static Value real(double d) {
        // One NaN only, so that no NaN reads as a tag.
        if (d != d) d = std::numeric_limits<double>::quiet_NaN();
        return Value(std::bit_cast<uint64_t>(d));
    }
    static Value cons(const Cons* c) { return Value(kTagCons | address(c)); }
    static Value string(const String* s) { return Value(kTagString | address(s)); }
    static Value object(const Object* o) { return Value(kTagObject | address(o)); }
    static constexpr Value symbol(uint32_t index) { return Value(kTagSymbol | index); }
    static constexpr Value entityName(uint64_t name) {
        return Value(kTagEntity | (name & kPayload));
    }

    constexpr bool isNil() const { return bits_ == kNilBits; }
    constexpr bool isVoid() const { return bits_ == (kTagConstant | 1); }
    constexpr explicit operator bool() const { return bits_ != kNilBits; }
    constexpr bool isReal() const { return bits_ < kTagInt; }
    constexpr bool isInt() const { return tag() == kTagInt; }
    constexpr bool isNumber() const { return bits_ < kTagCons; }
    constexpr bool isCons() const { return tag() == kTagCons; }
    constexpr bool isList() const { return isCons() || isNil(); }
    constexpr bool isString() const { return tag() == kTagString; }
    constexpr bool isSymbol() const { return tag() == kTagSymbol; }
    constexpr bool isObject() const { return tag() == kTagObject; }
    constexpr bool isEntityName() const { return tag() == kTagEntity; }
    // True for values that live in the collected heap.
    constexpr bool isHeap() const { return isCons() || isString() || isObject(); }

    // Each of these must only be asked of a value of its kind.
    constexpr int32_t asInt() const { return static_cast<int32_t>(static_cast<uint32_t>(bits_)); }
    double asReal() const { return std::bit_cast<double>(bits_); }
    double asNumber() const { return isInt() ? asInt() : asReal(); }
    constexpr uint32_t asSymbol() const { return static_cast<uint32_t>(bits_); }
    constexpr uint64_t asEntityName() const { return bits_ & kPayload; }
    Cons* asCons() const { return reinterpret_cast<Cons*>(bits_ & kPayload); }
    String* asString() const { return reinterpret_cast<String*>(bits_ & kPayload); }
    Object* asObject() const { return reinterpret_cast<Object*>(bits_ & kPayload); }

    constexpr uint64_t bits() const { return bits_; }
    // Identity: the same word.
    friend constexpr bool operator==(Value, Value) = default;

  private:
    static constexpr uint64_t kTagInt = 0xFFF9ull << 48;
    static constexpr uint64_t kTagCons = 0xFFFAull << 48;
    static constexpr uint64_t kTagString = 0xFFFBull << 48;
    static constexpr uint64_t kTagSymbol = 0xFFFCull << 48;
    static constexpr uint64_t kTagObject = 0xFFFDull << 48;
    static constexpr uint64_t kTagEntity = 0xFFFEull << 48;
    static constexpr uint64_t kTagConstant = 0xFFFFull << 48;
    static constexpr uint64_t kNilBits = kTagConstant;
    static constexpr uint64_t kPayload = (1ull << 48) - 1;

    constexpr explicit Value(uint64_t bits) : bits_(bits) {}
    constexpr uint64_t tag() const { return bits_ & ~kPayload; }
    static uint64_t address(const void* p) { return reinterpret_cast<uint64_t>(p); }

    uint64_t bits_;
};

// A list cell. Cells never change once they are made, which is what lets the collector mark in
// slices without watching writes.
struct Cons {
    Value car;
    Value cdr;
};

}  // namespace sg::lisp
