#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "host/dxf/group.h"

namespace sg::dxf {

// Takes the groups of a drawing file apart: text files with any line ends, and binary files with
// codes of one byte (release 12) or two. The content stays the caller's. Comments (999) are left
// out.
class GroupReader {
  public:
    explicit GroupReader(std::string_view content);

    // The first bytes of any drawing file of this format: what looks like a group 0 or 999, or the
    // sentinel of binary files.
    static bool recognises(std::string_view start);

    bool isBinary() const { return isBinary_; }
    size_t position() const { return static_cast<size_t>(at_ - content_.data()); }
    void seek(size_t position) { at_ = content_.data() + position; }
    char lineEnd() const { return lineEnd_; }  // of a text file; CR may stand ahead of LF
    size_t start() const { return start_; }    // of the first group
    size_t positionOf(const Group& group) const {
        return static_cast<size_t>(group.text.data() - content_.data());
    }

    enum class Step { group, end, damage };
    // Reads the group at the position and goes behind it. After damage (a line that is no group
    // code, a value that is cut off) the position is where it was.
    Step next(Group& group);

    // Goes to the next place behind the position that looks like a group 0; false when there is
    // none.
    bool recover();

    // The line of a position, from 1; in a binary file the byte, from 0.
    size_t lineOf(size_t position) const;

  private:
    Step nextInText(Group& group);
    Step nextInBinary(Group& group);
    bool readBinaryValue(Group& group);
    std::string_view takeLine();

    std::string_view content_;
    const char* at_;
    const char* end_;
    size_t start_ = 0;
    bool isBinary_ = false;
    char lineEnd_ = '\n';
    bool hasWideCodes_ = true;
};

}  // namespace sg::dxf
