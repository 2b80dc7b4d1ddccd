#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "base/encoding.h"
#include "host/jet/storage/page_store.h"
#include "host/jet/values/value.h"

namespace sg::jet::test {

inline Bytes readFile(const std::wstring& path) {
    std::ifstream file(std::filesystem::path(toUtf8(path)), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// A database file as a program sees it that knows nothing of the log: its bytes at this moment.
class FileContent final : public PageStore {
  public:
    explicit FileContent(const std::wstring& path) : bytes_(readFile(path)), pages_(bytes_, path) {}

    const Format& format() const override { return pages_.format(); }
    uint32_t pageCount() const override { return pages_.pageCount(); }
    const std::wstring& name() const override { return pages_.name(); }
    PageRef read(uint32_t page) const override { return pages_.read(page); }
    using PageStore::read;

  private:
    Bytes bytes_;
    MemoryPageStore pages_;
};

}  // namespace sg::jet::test
