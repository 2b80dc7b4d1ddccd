#include "host/lisp/heap.h"

#include <sys/mman.h>

#include <algorithm>
#include <bit>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <new>

namespace sg::lisp {
namespace {

constexpr size_t kChunkBlocks = 16;
constexpr size_t kFirstThreshold = size_t{16} << 20;
constexpr size_t kMarksPerGranule =
    2;  // how many objects a slice marks for each 16 bytes allocated
constexpr size_t kSweepBudget = 2000;
constexpr size_t kSweepPerBlock = 30;  // what giving back a block costs, in swept objects

class PauseTimer {
  public:
    explicit PauseTimer(double& longest) : longest_(longest), start_(Clock::now()) {}
    ~PauseTimer() {
        const std::chrono::duration<double> took = Clock::now() - start_;
        longest_ = std::max(longest_, took.count());
    }

  private:
    using Clock = std::chrono::steady_clock;
    double& longest_;
    Clock::time_point start_;
};

}  // namespace

// Slots of one size, behind the mark bits: one bit for each granule, set at an object's first.
struct Heap::Block {
    static constexpr size_t kWords = kBlockBytes / kGranule / 64;
    static constexpr size_t kFirst = 1024;  // offset of the first slot

    uint64_t marks[kWords];
    uint32_t slotBytes;
    uint32_t scan;  // offset at which the search for free slots goes on

    char* base() { return reinterpret_cast<char*>(this); }
    uint32_t slotsEnd() const {
        return static_cast<uint32_t>(kFirst + (kBlockBytes - kFirst) / slotBytes * slotBytes);
    }
    bool marked(size_t offset) const {
        return marks[offset / kGranule / 64] >> (offset / kGranule % 64) & 1;
    }
    // Sets the bit and tells whether it was set before.
    bool mark(size_t offset) {
        uint64_t& word = marks[offset / kGranule / 64];
        const uint64_t bit = uint64_t{1} << (offset / kGranule % 64);
        const bool was = (word & bit) != 0;
        word |= bit;
        return was;
    }
    void unmark(size_t offset) {
        marks[offset / kGranule / 64] &= ~(uint64_t{1} << (offset / kGranule % 64));
    }
    size_t liveSlots() const {
        size_t count = 0;
        for (const uint64_t word : marks)
            count += static_cast<size_t>(std::popcount(word));
        return count;
    }
};

Heap::Heap() : threshold_(kFirstThreshold) {}

Heap::~Heap() {
    // Midway through sweeping, the list of objects still has places of deleted ones in it.
    if (phase_ == Phase::Sweeping) sweepSlice(SIZE_MAX);
    for (Object* object : objects_)
        delete object;
    for (String* s : large_)
        std::free(s);
    for (void* chunk : chunks_)
        std::free(chunk);
}

void Heap::checkLimit(size_t more) {
    const size_t after = bytesInUse() + more;
    if (after > limit_) {
        // Not for every block: a heap in pieces may stay above the limit with little alive in it.
        if (sinceCollection_ + more > limit_ / 32) wantsCollection_ = true;
        // The slack lets a program that is over the limit reach a safepoint, where a collection may
        // still make room.
        if (after > limit_ + limit_ / 8 + (size_t{8} << 20)) throw OutOfMemory{};
    }
}

Heap::Block* Heap::newBlock(size_t sizeClass) {
    checkLimit(kBlockBytes);
    if (freeBlocks_.empty()) {
        auto* chunk =
            static_cast<char*>(std::aligned_alloc(kBlockBytes, kChunkBlocks * kBlockBytes));
        if (chunk == nullptr) throw OutOfMemory{};
        chunks_.push_back(chunk);
        for (size_t i = kChunkBlocks; i-- > 0;) {
            freeBlocks_.push_back(reinterpret_cast<Block*>(chunk + i * kBlockBytes));
        }
    }
    Block* block = freeBlocks_.back();
    freeBlocks_.pop_back();
    returned_ = std::min(returned_, freeBlocks_.size());
    blockBytes_ += kBlockBytes;
    std::memset(static_cast<void*>(block), 0, sizeof(Block));
    block->slotBytes = kClassBytes[sizeClass];
    blocks_[sizeClass].push_back(block);
    return block;
}

// Marks or unmarks the slots in a run that is being handed out.
void Heap::markRange(char* from, char* to, bool mark) {
    if (from == to) return;
    Block* block = blockOf(from);
    const auto first = static_cast<uint32_t>(from - block->base());
    const auto last = static_cast<uint32_t>(to - block->base());
    for (uint32_t at = first; at < last; at += block->slotBytes) {
        if (mark) {
            block->mark(at);
        } else {
            block->unmark(at);
        }
    }
}

bool Heap::refillFromSwept(size_t sizeClass) {
    auto& blocks = blocks_[sizeClass];
    for (size_t& at = cursor_[sizeClass]; at < blocks.size(); ++at) {
        Block* block = blocks[at];
        const uint32_t end = block->slotsEnd();
        uint32_t from = block->scan;
        while (from < end && block->marked(from))
            from += block->slotBytes;
        if (from == end) continue;
        uint32_t to = from;
        while (to < end && !block->marked(to))
            to += block->slotBytes;
        block->scan = to;
        bumps_[sizeClass] = {block->base() + from, block->base() + to};
        return true;
    }
    return false;
}

void Heap::refill(size_t sizeClass) {
    if (phase_ != Phase::Idle) pay(4096);
    // While marking runs, mark bits do not tell what is free: only fresh blocks serve.
    if (phase_ == Phase::Marking || !refillFromSwept(sizeClass)) {
        Block* block = newBlock(sizeClass);
        block->scan = block->slotsEnd();
        bumps_[sizeClass] = {block->base() + Block::kFirst, block->base() + block->slotsEnd()};
        cursor_[sizeClass] = phase_ == Phase::Marking ? 0 : blocks_[sizeClass].size();
        if (phase_ == Phase::Marking) {
            markRange(bumps_[sizeClass].next, bumps_[sizeClass].end, true);
        }
    }
    sinceCollection_ += static_cast<size_t>(bumps_[sizeClass].end - bumps_[sizeClass].next);
    if (phase_ == Phase::Idle && sinceCollection_ > threshold_) wantsCollection_ = true;
}

String* Heap::newString(size_t length) {
    if (length > UINT32_MAX / 8) throw OutOfMemory{};
    const size_t bytes = sizeof(String) + (length + 1) * sizeof(wchar_t);
    String* s;
    if (bytes <= kClassBytes.back()) {
        // Classes 0 to 3 are multiples of the granule; the few above are searched.
        size_t sizeClass = bytes <= 64 ? (bytes + 15) / 16 - 1 : 4;
        while (kClassBytes[sizeClass] < bytes)
            ++sizeClass;
        Bump& bump = bumps_[sizeClass];
        if (bump.next == bump.end) refill(sizeClass);
        s = reinterpret_cast<String*>(bump.next);
        bump.next += kClassBytes[sizeClass];
        s->large = 0;
        s->epoch = 0;
    } else {
        checkLimit(bytes);
        if (phase_ != Phase::Idle) pay(bytes / kGranule);
        s = static_cast<String*>(std::malloc(bytes));
        if (s == nullptr) throw OutOfMemory{};
        s->large = 1;
        s->epoch = epoch_;
        large_.push_back(s);
        largeBytes_ += bytes;
        sinceCollection_ += bytes;
        if (phase_ == Phase::Idle && sinceCollection_ > threshold_) wantsCollection_ = true;
    }
    s->length = static_cast<uint32_t>(length);
    s->chars()[length] = 0;
    return s;
}

Value Heap::string(std::wstring_view text) {
    String* s = newString(text.size());
    std::wmemcpy(s->chars(), text.data(), text.size());
    return Value::string(s);
}

void Heap::adoptObject(Object* object) {
    object->epoch_ = epoch_;
    objects_.push_back(object);
    sinceCollection_ += 256;
    if (phase_ == Phase::Idle && sinceCollection_ > threshold_) wantsCollection_ = true;
    if (phase_ != Phase::Idle) pay(16);
    // Born marked, but what it holds may not be: a new object is traced when marking is under way.
    if (phase_ == Phase::Marking) object->trace(marker_);
}

bool Heap::isMarked(Value value) const {
    if (value.isObject()) return value.asObject()->epoch_ == epoch_;
    const void* p = value.isCons() ? static_cast<const void*>(value.asCons()) : value.asString();
    if (value.isString() && value.asString()->large) return value.asString()->epoch == epoch_;
    Block* block = blockOf(p);
    return block->marked(static_cast<size_t>(static_cast<const char*>(p) - block->base()));
}

void Heap::markValue(Value value) {
    while (value.isCons()) {
        Cons* cell = value.asCons();
        Block* block = blockOf(cell);
        if (block->mark(static_cast<size_t>(reinterpret_cast<char*>(cell) - block->base()))) {
            return;
        }
        if (cell->car.isHeap()) marker_.pending_.push_back(cell->car);
        value = cell->cdr;
        // A long list is marked in as many slices as it needs: its rest goes back on the pile.
        if (value.isCons()) {
            marker_.pending_.push_back(value);
            return;
        }
    }
    if (value.isString()) {
        String* s = value.asString();
        if (s->large) {
            s->epoch = epoch_;
        } else {
            Block* block = blockOf(s);
            block->mark(static_cast<size_t>(reinterpret_cast<char*>(s) - block->base()));
        }
    } else if (value.isObject()) {
        const Object* object = value.asObject();
        if (object->epoch_ == epoch_) return;
        object->epoch_ = epoch_;
        object->trace(marker_);
    }
}

bool Heap::markSlice(size_t budget) {
    auto& pending = marker_.pending_;
    while (!pending.empty() && budget-- > 0) {
        const Value value = pending.back();
        pending.pop_back();
        markValue(value);
    }
    return pending.empty();
}

void Heap::startCollection() {
    if (phase_ != Phase::Idle) return;
    const PauseTimer timer(longestPause_);
    wantsCollection_ = false;
    ++collections_;
    phase_ = Phase::Marking;
    // Epoch 0 is never current, so that a wrap does not take old marks for new ones within a cycle:
    // every live object is given the present epoch each cycle.
    if (++epoch_ == 0) epoch_ = 1;
    for (auto& blocks : blocks_) {
        for (Block* block : blocks)
            std::memset(block->marks, 0, sizeof block->marks);
    }
    for (Bump& bump : bumps_)
        markRange(bump.next, bump.end, true);
    marker_.pending_.clear();
    if (roots_) roots_(marker_);
}

void Heap::finishMarking() {
    if (weakSweep_) weakSweep_(*this);
    // What is left of the runs in use was marked before its slots were filled; it is free.
    for (Bump& bump : bumps_) {
        markRange(bump.next, bump.end, false);
        bump = {};
    }
    liveBytes_ = 0;
    for (size_t c = 0; c < kClasses; ++c) {
        auto& blocks = blocks_[c];
        size_t kept = 0;
        for (Block* block : blocks) {
            const size_t slots = block->liveSlots();
            if (slots == 0) {
                freeBlocks_.push_back(block);
                blockBytes_ -= kBlockBytes;
                continue;
            }
            liveBytes_ += slots * kClassBytes[c];
            block->scan = Block::kFirst;
            blocks[kept++] = block;
        }
        blocks.resize(kept);
        cursor_[c] = 0;
    }
    threshold_ = std::max(kFirstThreshold, liveBytes_ + largeBytes_ / 2);
    sinceCollection_ = 0;
    sweepRead_ = sweepWrite_ = sweepLargeRead_ = sweepLargeWrite_ = 0;
    phase_ = Phase::Sweeping;
}

// Free blocks beyond a working reserve give their memory back to the system; they stay mapped. True
// when there is no more to give back.
bool Heap::returnMemory(size_t budget) {
    constexpr size_t kReserve = 256;
    for (; returned_ + kReserve < freeBlocks_.size(); ++returned_) {
        if (budget-- == 0) return false;
        madvise(freeBlocks_[returned_], kBlockBytes, MADV_DONTNEED);
    }
    return true;
}

void Heap::sweepSlice(size_t budget) {
    for (; sweepRead_ < objects_.size() && budget > 0; ++sweepRead_, --budget) {
        Object* object = objects_[sweepRead_];
        if (object->epoch_ == epoch_) {
            objects_[sweepWrite_++] = object;
        } else {
            delete object;
        }
    }
    for (; sweepLargeRead_ < large_.size() && budget > 0; ++sweepLargeRead_, --budget) {
        String* s = large_[sweepLargeRead_];
        if (s->epoch == epoch_) {
            large_[sweepLargeWrite_++] = s;
        } else {
            largeBytes_ -= sizeof(String) + (size_t{s->length} + 1) * sizeof(wchar_t);
            std::free(s);
        }
    }
    const size_t blocks = budget / kSweepPerBlock;
    if (sweepRead_ == objects_.size() && sweepLargeRead_ == large_.size() && returnMemory(blocks)) {
        objects_.resize(sweepWrite_);
        large_.resize(sweepLargeWrite_);
        phase_ = Phase::Idle;
    }
}

void Heap::pay(size_t granules) {
    const PauseTimer timer(longestPause_);
    if (phase_ == Phase::Marking) {
        if (markSlice(granules * kMarksPerGranule)) finishMarking();
    } else if (phase_ == Phase::Sweeping) {
        sweepSlice(kSweepBudget);
    }
}

void Heap::collectFully() {
    if (phase_ == Phase::Idle) startCollection();
    if (phase_ == Phase::Marking) {
        markSlice(SIZE_MAX);
        finishMarking();
    }
    if (phase_ == Phase::Sweeping) sweepSlice(SIZE_MAX);
    wantsCollection_ = false;
}

}  // namespace sg::lisp
