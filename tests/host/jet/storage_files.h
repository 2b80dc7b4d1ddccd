#pragma once

#include <cstdint>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "base/encoding.h"
#include "host/jet/format/error.h"
#include "host/jet/storage/file_layer.h"
#include "host/jet/storage/page_store.h"

// Small database files for tests of the storage, which looks at nothing but the version.
namespace sg::jet {

using Bytes = std::vector<uint8_t>;
inline constexpr size_t testPageSize = 4096;

// A page whose every word tells the page and a number.
inline Bytes filledPage(uint32_t page, uint32_t number) {
    Bytes bytes(testPageSize);
    for (size_t at = 0; at < bytes.size(); at += 8) {
        std::memcpy(&bytes[at], &page, 4);
        std::memcpy(&bytes[at + 4], &number, 4);
    }
    if (page == 0) {
        const char start[] = "\0\1\0\0Standard Jet DB\0\1\0\0";
        std::memcpy(bytes.data(), start, sizeof start - 1);
    }
    return bytes;
}

inline Bytes testDatabase(uint32_t pages) {
    Bytes bytes;
    for (uint32_t page = 0; page < pages; ++page) {
        const Bytes content = filledPage(page, 0);
        bytes.insert(bytes.end(), content.begin(), content.end());
    }
    return bytes;
}

inline Bytes contentOf(const PageStore& store) {
    Bytes bytes;
    const uint32_t count = store.pageCount();
    for (uint32_t page = 0; page < count; ++page) {
        const PageRef ref = store.read(page);
        bytes.insert(bytes.end(), ref->begin(), ref->end());
    }
    return bytes;
}

// The number that filledPage() put into a page; -1 when the page is not one of those.
inline int64_t numberIn(const PageRef& ref) {
    const uint32_t number = ref->get32(ref->size() - 4);
    const Bytes expected = filledPage(ref.page(), number);
    return std::memcmp(ref->data(), expected.data(), expected.size()) == 0 ? number : -1;
}

template <class F>
int codeOf(F&& f) {
    try {
        f();
    } catch (const Error& error) {
        return error.code();
    }
    return 0;
}

}  // namespace sg::jet
