#pragma once

#include <string>
#include <string_view>

#include "base/export.h"

namespace sg {

// A file that is written beside another one and takes its name once it is whole. Until then, and
// when that never comes, what has the name stays as it was and nothing else is left.
class SG_API ReplacementFile {
  public:
    // Makes an empty file, under a name of its own, in the folder of `target`, which separates
    // folders by "/" alone. Where `target` is a link, the file that it leads to is the one to be
    // replaced; a folder, or another thing that is no file, is refused. An existing file's
    // permissions are kept.
    explicit ReplacementFile(std::wstring_view target);
    // Removes the file unless it has taken its name.
    ~ReplacementFile();
    ReplacementFile(const ReplacementFile&) = delete;
    ReplacementFile& operator=(const ReplacementFile&) = delete;

    bool isOpen() const { return descriptor_ >= 0; }
    int descriptor() const { return descriptor_; }
    // Where the file stands until it takes its name, as UTF-8.
    const std::string& unfinishedName() const { return unfinished_; }

    // Appends bytes. False after a failure, and then always.
    bool write(std::string_view bytes);

    // Brings the file to the disk and gives it the target's name. False, with the target as it was
    // and the file gone, when that fails or something failed before.
    bool commit();
    // The same, and what had the name before stays beside it with another ending, such as ".bak",
    // in place of what had that name. At any moment the target's name leads to one of the two
    // files.
    bool commitKeeping(std::wstring_view ending);

    // The errno of the first failure, 0 when there was none.
    int error() const { return error_; }

  private:
    bool fail(int code);
    bool keep(const std::string& backup);
    void create(unsigned mode);

    std::string target_, unfinished_;
    int descriptor_ = -1;
    int error_ = 0;
};

}  // namespace sg
