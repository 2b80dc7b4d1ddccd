#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/dxf/group_reader.h"

namespace sg::dxf {

// What is said of a file while it is read: a line a place, "plan.dxf:1204: ...". In binary files
// the number is that of a byte.
class Report {
  public:
    Report(std::wstring file, const GroupReader& reader)
        : file_(std::move(file)), reader_(reader) {}

    // Of more places than anybody reads the rest is counted.
    static constexpr size_t kMost = 1000;

    void warn(size_t position, const std::wstring& text) {
        if (hasRoom()) warnings_.push_back(at(position) + text);
    }
    void warn(const std::wstring& text) {
        if (hasRoom()) warnings_.push_back(file_ + L": " + text);
    }
    std::wstring at(size_t position) const;
    const std::wstring& file() const { return file_; }
    std::vector<std::wstring> take();

  private:
    bool hasRoom() { return warnings_.size() < kMost || (++left_, false); }

    std::wstring file_;
    const GroupReader& reader_;
    std::vector<std::wstring> warnings_;
    size_t left_ = 0;
};

}  // namespace sg::dxf
