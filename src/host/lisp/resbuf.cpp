#include "platform/lisp/resbuf.h"

#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <limits>

#if defined(__SANITIZE_ADDRESS__)
#define SG_PLAIN_HEAP 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define SG_PLAIN_HEAP 1
#endif
#endif
#ifndef SG_PLAIN_HEAP
#define SG_PLAIN_HEAP 0
#endif

// Nodes and short strings come from free lists that are refilled a chunk at a time and never given
// back: a query's result is made and released again and again in about the same size. The lists are
// an allocator's, shared by every host of the process, and belong to the one thread that runs LISP
// and modules. Under the address sanitizer both come from malloc, so that it sees every misuse.

namespace {

constexpr bool kPlainHeap = SG_PLAIN_HEAP != 0;
constexpr size_t kNodesInChunk = 1024;
constexpr size_t kStringChunkBytes = 64 * 1024;

// A string's block is a 32-bit tag and the text. The tag has the block's size class, and in units
// of kSharer how many nodes hold the string besides the first. Class n has blocks of n * 16 bytes;
// 0 marks a block of malloc's own.
using Tag = uint32_t;
constexpr size_t kGranule = 16;
constexpr size_t kClasses = 32;
constexpr Tag kSharer = 0x100;
static_assert(kClasses < kSharer);
static_assert(sizeof(Tag) == alignof(wchar_t));

struct FreeBlock {
    FreeBlock* next;
};

resbuf* freeNodes = nullptr;
size_t liveNodes = 0;
FreeBlock* freeBlocks[kClasses + 1] = {};

[[maybe_unused]] bool refillNodes() {  // not under the sanitizer
    auto* const chunk = static_cast<resbuf*>(std::malloc(kNodesInChunk * sizeof(resbuf)));
    if (chunk == nullptr) return false;
    for (size_t i = 0; i < kNodesInChunk; ++i) {
        chunk[i].rbnext = i + 1 < kNodesInChunk ? &chunk[i + 1] : nullptr;
    }
    freeNodes = chunk;
    return true;
}

bool refillBlocks(size_t sizeClass) {
    const size_t bytes = sizeClass * kGranule;
    auto* const chunk = static_cast<char*>(std::malloc(kStringChunkBytes));
    if (chunk == nullptr) return false;
    FreeBlock* list = nullptr;
    for (size_t at = kStringChunkBytes / bytes * bytes; at >= bytes; at -= bytes) {
        auto* const block = reinterpret_cast<FreeBlock*>(chunk + at - bytes);
        block->next = list;
        list = block;
    }
    freeBlocks[sizeClass] = list;
    return true;
}

void* newBlock(size_t bytes) {
    const size_t sizeClass = (bytes + kGranule - 1) / kGranule;
    Tag* tag = nullptr;
    if (kPlainHeap || sizeClass > kClasses) {
        tag = static_cast<Tag*>(std::malloc(bytes));
        if (tag == nullptr) return nullptr;
        *tag = 0;
    } else {
        if (freeBlocks[sizeClass] == nullptr && !refillBlocks(sizeClass)) return nullptr;
        FreeBlock* const block = freeBlocks[sizeClass];
        freeBlocks[sizeClass] = block->next;
        tag = reinterpret_cast<Tag*>(block);
        *tag = static_cast<Tag>(sizeClass);
    }
    return tag + 1;
}

inline Tag* tagOf(wchar_t* text) {
    return reinterpret_cast<Tag*>(text) - 1;
}

inline void releaseString(wchar_t* text) {
    if (text == nullptr) return;
    Tag* const tag = tagOf(text);
    if (*tag >= kSharer) {
        *tag -= kSharer;
        return;
    }
    const Tag sizeClass = *tag;
    if (sizeClass == 0) {
        std::free(tag);
        return;
    }
    auto* const block = reinterpret_cast<FreeBlock*>(tag);
    block->next = freeBlocks[sizeClass];
    freeBlocks[sizeClass] = block;
}

// Group codes lie far below the codes from 5000 on, so that most nodes are decided by the first
// comparison.
inline bool ownsString(int16_t type) {
    return type == RTSTR || (type < RTNONE && acdbGroupCodeToType(type) == RTSTR);
}

struct GroupRange {
    int16_t first, last, type;
};

// Binary data (310 to 319, 1004) is kept as the hexadecimal text that drawing files have for it.
// A 64-bit integer group (160 to 169) has no kind of its own and is read as a long.
constexpr GroupRange kGroups[] = {
    {-5, -5, RTENAME},     {-4, -4, RTSTR},      {-2, -1, RTENAME},       {0, 9, RTSTR},
    {10, 19, RT3DPOINT},   {20, 59, RTREAL},     {60, 79, RTSHORT},       {90, 99, RTLONG},
    {100, 102, RTSTR},     {105, 105, RTSTR},    {110, 119, RT3DPOINT},   {120, 149, RTREAL},
    {160, 169, RTLONG},    {170, 179, RTSHORT},  {210, 219, RT3DPOINT},   {220, 239, RTREAL},
    {270, 299, RTSHORT},   {300, 329, RTSTR},    {330, 369, RTENAME},     {370, 389, RTSHORT},
    {390, 399, RTENAME},   {400, 409, RTSHORT},  {410, 419, RTSTR},       {420, 429, RTLONG},
    {430, 439, RTSTR},     {440, 459, RTLONG},   {460, 469, RTREAL},      {470, 479, RTSTR},
    {480, 481, RTENAME},   {999, 1009, RTSTR},   {1010, 1019, RT3DPOINT}, {1020, 1059, RTREAL},
    {1060, 1070, RTSHORT}, {1071, 1071, RTLONG},
};
constexpr int kFirstGroup = -5;
constexpr int kLastGroup = 1071;

struct GroupTable {
    int16_t types[kLastGroup - kFirstGroup + 1] = {};
    constexpr GroupTable() {
        for (int16_t& type : types)
            type = RTNONE;
        for (const GroupRange& range : kGroups) {
            for (int code = range.first; code <= range.last; ++code) {
                types[code - kFirstGroup] = range.type;
            }
        }
    }
};
constexpr GroupTable kGroupTable;

// A group code of extended data's start carries no value and opens the data that follows.
constexpr int kExtendedDataStart = -3;

// What a type code of acutBuildList takes: one of RTREAL, RTSHORT, RTLONG, RTSTR, RTPOINT,
// RT3DPOINT, RTENAME; RTVOID for no value; RTNONE for an unknown code.
int valueKind(int type) {
    switch (type) {
        case RTREAL:
        case RTANG:
        case RTORINT:
            return RTREAL;
        case RTPICKS:
            return RTENAME;
        case RTDXF0:
            return RTSTR;
        case RTSHORT:
        case RTLONG:
        case RTSTR:
        case RTPOINT:
        case RT3DPOINT:
        case RTENAME:
            return type;
        case RTLB:
        case RTLE:
        case RTDOTE:
        case RTNIL:
        case RTT:
        case RTVOID:
        case kExtendedDataStart:
            return RTVOID;
        default:
            return acdbGroupCodeToType(type);
    }
}

// Fills `node` with the next argument. False for an unknown code and when memory is exhausted.
bool takeValue(resbuf& node, int kind, va_list* arguments) {
    switch (kind) {
        case RTREAL:
            node.resval.rreal = va_arg(*arguments, double);
            return true;
        case RTSHORT:
            node.resval.rint = static_cast<int16_t>(va_arg(*arguments, int));
            return true;
        case RTLONG:
            node.resval.rlong = va_arg(*arguments, int);
            return true;
        case RTSTR: {
            const auto* const text = va_arg(*arguments, const wchar_t*);
            node.resval.rstring = acutNewString(text != nullptr ? text : L"");
            return node.resval.rstring != nullptr;
        }
        case RTPOINT:
        case RT3DPOINT: {
            const auto* const point = va_arg(*arguments, const ads_real*);
            std::memcpy(node.resval.rpoint, point, (kind == RTPOINT ? 2 : 3) * sizeof(ads_real));
            return true;
        }
        case RTENAME:
            std::memcpy(node.resval.rlname, va_arg(*arguments, const int32_t*), sizeof(ads_name));
            return true;
        default:
            return kind == RTVOID;
    }
}

}  // namespace

resbuf* acutNewRb(int type) {
    resbuf* node = nullptr;
    if constexpr (kPlainHeap) {
        node = static_cast<resbuf*>(std::malloc(sizeof(resbuf)));
        if (node == nullptr) return nullptr;
    } else {
        if (freeNodes == nullptr && !refillNodes()) return nullptr;
        node = freeNodes;
        freeNodes = node->rbnext;
    }
    ++liveNodes;
    std::memset(node, 0, sizeof(resbuf));
    node->restype = static_cast<int16_t>(type);
    return node;
}

int acutRelRb(resbuf* list) {
    if (list == nullptr) return RTNORM;
    size_t count = 0;
    resbuf* last = nullptr;
    for (resbuf* node = list; node != nullptr; ++count) {
        resbuf* const next = node->rbnext;
        if (ownsString(node->restype)) releaseString(node->resval.rstring);
        if constexpr (kPlainHeap) std::free(node);
        last = node;
        node = next;
    }
    if constexpr (!kPlainHeap) {  // the chain is a free list already
        last->rbnext = freeNodes;
        freeNodes = list;
    }
    liveNodes -= count;
    return RTNORM;
}

resbuf* acutBuildList(int firstType, ...) {
    va_list arguments;
    va_start(arguments, firstType);
    resbuf* head = nullptr;
    resbuf** tail = &head;
    bool complete = true;
    for (int type = firstType; type != 0 && type != RTNONE; type = va_arg(arguments, int)) {
        const int kind = valueKind(type);
        // 0 ends the argument list, so that group 0 has a stand-in code.
        resbuf* const node = kind == RTNONE ? nullptr : acutNewRb(type == RTDXF0 ? 0 : type);
        if (node != nullptr) {
            *tail = node;
            tail = &node->rbnext;
        }
        complete = node != nullptr && takeValue(*node, kind, &arguments);
        if (!complete) break;
    }
    va_end(arguments);
    if (complete) return head;
    acutRelRb(head);
    return nullptr;
}

wchar_t* acutNewString(const wchar_t* text) {
    return text != nullptr ? acutNewString(text, std::wcslen(text)) : nullptr;
}

wchar_t* acutNewString(const wchar_t* text, size_t length) {
    if (length > SIZE_MAX / sizeof(wchar_t) - 2) return nullptr;
    auto* const copy =
        static_cast<wchar_t*>(newBlock(sizeof(Tag) + (length + 1) * sizeof(wchar_t)));
    if (copy == nullptr) return nullptr;
    if (length != 0) std::memcpy(copy, text, length * sizeof(wchar_t));
    copy[length] = L'\0';
    return copy;
}

wchar_t* sgShareNodeString(wchar_t* text) {
    if (text == nullptr) return nullptr;
    Tag& tag = *tagOf(text);
    if (tag > std::numeric_limits<Tag>::max() - kSharer) return acutNewString(text);
    tag += kSharer;
    return text;
}

void acutDelString(wchar_t*& text) {
    releaseString(text);
    text = nullptr;
}

size_t acutLiveNodeCount() {
    return liveNodes;
}

int16_t acdbGroupCodeToType(int groupCode) {
    const bool inside = groupCode >= kFirstGroup && groupCode <= kLastGroup;
    return inside ? kGroupTable.types[groupCode - kFirstGroup] : static_cast<int16_t>(RTNONE);
}
