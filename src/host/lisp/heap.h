#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include "host/lisp/value.h"

namespace sg::lisp {

// An immutable string; its characters follow the header and end with a zero.
struct String {
    uint32_t length;
    uint16_t large;  // 1: allocated by itself, `epoch` is its mark
    uint16_t epoch;

    const wchar_t* chars() const { return reinterpret_cast<const wchar_t*>(this + 1); }
    wchar_t* chars() { return reinterpret_cast<wchar_t*>(this + 1); }
    std::wstring_view view() const { return {chars(), length}; }
};

class Marker;

enum class ObjectKind : uint8_t { Subr, Function, ExternalFunction, File, PickSet, CatchError };

// A heap object that is neither cell nor string: rare, and with a destructor.
class Object {
  public:
    explicit Object(ObjectKind kind) : kind_(kind) {}
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object() = default;

    ObjectKind kind() const { return kind_; }
    // Visits every value that the object holds.
    virtual void trace(Marker&) const {}

  private:
    friend class Heap;
    friend class Marker;
    const ObjectKind kind_;
    mutable uint16_t epoch_ = 0;
};

// Takes the values that are reachable; see Heap.
class Marker {
  public:
    void visit(Value value) {
        if (value.isHeap()) pending_.push_back(value);
    }
    void visitAll(const Value* first, const Value* last) {
        for (; first != last; ++first)
            visit(*first);
    }

  private:
    friend class Heap;
    std::vector<Value> pending_;
};

// The collected heap: a precise, incremental mark-and-sweep collector that does not move.
//
// Cells and strings live in 64 KB blocks of one size class, with one mark bit a slot. A collection
// starts at a safepoint (a call or a turn of a loop), when all roots are in sight: it takes a
// snapshot of the roots, then marks in slices that allocation pays for, while new objects are born
// marked. Since heap objects are immutable, whatever was reachable at the snapshot is found without
// a write barrier. Sweeping is what allocation does when it looks for the next free slots.
//
// Allocation never starts a collection, so native code may hold values in local variables as long
// as it does not call back into LISP; what it holds over such a call it pushes on the interpreter's
// value stack.
class Heap {
  public:
    Heap();
    ~Heap();
    Heap(const Heap&) = delete;
    Heap& operator=(const Heap&) = delete;

    // The limit in bytes; allocation far beyond it throws OutOfMemory.
    void setLimit(size_t bytes) { limit_ = bytes; }
    size_t limit() const { return limit_; }

    Value cons(Value car, Value cdr) {
        Bump& bump = bumps_[0];
        if (bump.next == bump.end) [[unlikely]]
            refill(0);
        auto* cell = reinterpret_cast<Cons*>(bump.next);
        bump.next += sizeof(Cons);
        cell->car = car;
        cell->cdr = cdr;
        return Value::cons(cell);
    }
    // A string with room for `length` characters, ended by a zero, for the caller to fill.
    String* newString(size_t length);
    Value string(std::wstring_view text);

    // Takes ownership.
    template <class T>
    T* adopt(T* object) {
        adoptObject(object);
        return object;
    }

    // Roots: called at the start of every collection.
    void setRoots(std::function<void(Marker&)> roots) { roots_ = std::move(roots); }
    // Called when marking is done and before anything is freed: is `value` still alive?
    void setWeakSweep(std::function<void(const Heap&)> sweep) { weakSweep_ = std::move(sweep); }
    bool isMarked(Value value) const;
    // Within setWeakSweep's function: keeps an object alive.
    void keep(Value object) { object.asObject()->epoch_ = epoch_; }

    // True when a collection should start at the next safepoint.
    bool wantsCollection() const { return wantsCollection_; }
    // Starts a collection (takes the snapshot). Only at a safepoint.
    void startCollection();
    // Finishes a collection in progress, or runs a whole one. Only at a safepoint.
    void collectFully();

    // Counts memory outside the heap that grows with what programs make (symbols, code).
    void addExternal(ptrdiff_t bytes) { external_ += bytes; }
    size_t bytesInUse() const { return blockBytes_ + largeBytes_ + external_; }
    bool overLimit() const { return bytesInUse() > limit_; }
    // As overLimit, of what the last collection found alive: blocks that are only partly used do
    // not count as a whole.
    bool liveOverLimit() const { return liveBytes_ + largeBytes_ + external_ > limit_; }
    size_t collections() const { return collections_; }
    // The longest time that one slice of collection work has taken, in seconds.
    double longestPause() const { return longestPause_; }
    void resetLongestPause() { longestPause_ = 0; }

  private:
    struct Block;
    struct Bump {
        char* next = nullptr;
        char* end = nullptr;
    };
    enum class Phase { Idle, Marking, Sweeping };

    static constexpr size_t kBlockBytes = 64 * 1024;
    static constexpr size_t kGranule = 16;
    static constexpr size_t kClasses = 9;
    static constexpr std::array<uint16_t, kClasses> kClassBytes = {16,  32,  48,  64, 96,
                                                                   128, 192, 256, 512};

    static Block* blockOf(const void* p) {
        return reinterpret_cast<Block*>(reinterpret_cast<uintptr_t>(p) & ~(kBlockBytes - 1));
    }
    void refill(size_t sizeClass);
    bool refillFromSwept(size_t sizeClass);
    Block* newBlock(size_t sizeClass);
    void adoptObject(Object* object);
    void checkLimit(size_t more);
    void pay(size_t granules);
    bool markSlice(size_t budget);
    void markValue(Value value);
    void markRange(char* from, char* to, bool mark);
    void finishMarking();
    void sweepSlice(size_t budget);
    bool returnMemory(size_t budget);

    std::array<Bump, kClasses> bumps_;
    std::array<std::vector<Block*>, kClasses> blocks_;
    std::array<size_t, kClasses> cursor_{};  // the next block to look for free slots in
    std::vector<Block*> freeBlocks_;
    size_t returned_ = 0;  // how many of them, from the front, have given their memory back
    std::vector<void*> chunks_;
    std::vector<Object*> objects_;
    std::vector<String*> large_;
    size_t sweepRead_ = 0, sweepWrite_ = 0, sweepLargeRead_ = 0, sweepLargeWrite_ = 0;
    Marker marker_;
    std::function<void(Marker&)> roots_;
    std::function<void(const Heap&)> weakSweep_;
    Phase phase_ = Phase::Idle;
    uint16_t epoch_ = 1;
    bool wantsCollection_ = false;
    size_t limit_ = SIZE_MAX;
    size_t blockBytes_ = 0, largeBytes_ = 0, external_ = 0;
    size_t liveBytes_ = 0;        // in blocks, when the last collection had marked them
    size_t sinceCollection_ = 0;  // bytes handed out since the last collection ended
    size_t threshold_ = 0;        // ... at which the next one starts
    size_t collections_ = 0;
    double longestPause_ = 0;
};

// Thrown by allocation far beyond the limit; the interpreter turns it into a LISP error.
struct OutOfMemory {};

}  // namespace sg::lisp
