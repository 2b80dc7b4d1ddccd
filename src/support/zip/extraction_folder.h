#pragma once

#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace sg {

// The folder that an archive is unpacked into. Everything below it is reached from its descriptor
// on, one component after the other, and no link is followed: whatever an entry's name is, and
// whatever happens to the folder meanwhile, nothing is written anywhere else.
//
// A name that is there but for case is that file or folder. A file is written under another name
// and gets its own when it is whole; it then replaces one that has it, also a link.
class ExtractionFolder {
  public:
    using Path = std::vector<std::wstring>;  // folders, and a file at the end

    ExtractionFolder() = default;
    ~ExtractionFolder();
    ExtractionFolder(const ExtractionFolder&) = delete;
    ExtractionFolder& operator=(const ExtractionFolder&) = delete;

    // Goes to the folder, whose path separates folders by "/", and makes it and those above it
    // where they are missing.
    bool open(const std::wstring& folder);

    bool makeFolder(const Path& path);

    // Begins a file, with the folders that it is in; one that was begun and not finished is
    // removed.
    bool beginFile(const Path& path);
    bool write(std::string_view bytes);
    bool finishFile(std::time_t changed);  // the time that the file then shows
    void abandonFile();

    // Why the last operation failed.
    const std::wstring& reason() const { return reason_; }

  private:
    // A folder that is open, and what is in it by the lower-cased name.
    struct Level {
        std::wstring key;  // its own name, lower-cased
        int descriptor = -1;
        std::unordered_map<std::wstring, std::string> names;
        bool namesAreKnown = false;
    };

    bool fail(int code, std::wstring_view name);
    bool goTo(Path::const_iterator first, Path::const_iterator last);
    bool enter(const std::wstring& name);
    void leave();
    static void readNames(Level& level);
    // The name that `name` has in a folder: its own when it is there or nothing like it is.
    static std::string spelling(Level& level, const std::wstring& name);

    std::vector<Level> levels_;  // the folder itself, then those on the way to the current one
    std::string unfinished_, finished_;  // names in the last level; empty while no file is begun
    int file_ = -1;
    std::wstring reason_;
};

// The bytes that are free for files in a folder, or in the one that it will be made in; 0 when that
// cannot be found out.
uint64_t freeBytes(std::wstring_view folder);

}  // namespace sg
