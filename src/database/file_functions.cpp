#include <string>

#include "bridge/argument_list.h"
#include "bridge/call_guard.h"
#include "bridge/marshal_builders.h"
#include "bridge/marshal_readers.h"
#include "database/lisp_functions.h"
#include "platform/lisp/external_functions.h"
#include "platform/win/file_operations.h"
#include "platform/win/files.h"
#include "platform/win/folders.h"

namespace sg {
namespace {

int retBool(bool value) {
    value ? acedRetT() : acedRetNil();
    return kLispOk;
}

bool nextTwoStrings(const ArgumentList& arguments, std::wstring& first, std::wstring& second) {
    const resbuf* at = arguments.first();
    return nextString(at, first) && nextString(at, second);
}

bool copyOver(const std::wstring& source, const std::wstring& destination) {
    return CopyFileW(source.c_str(), destination.c_str(), false);
}

// A file that is held open while this lives.
class ReadFile {
  public:
    explicit ReadFile(const std::wstring& path) : file_(sgOpenFile(path.c_str())) {}
    ~ReadFile() { sgCloseFile(file_); }
    ReadFile(const ReadFile&) = delete;
    ReadFile& operator=(const ReadFile&) = delete;

    explicit operator bool() const { return file_ != nullptr; }
    int64_t writeTime() const { return sgWriteTime(file_); }

  private:
    SgOpenFile* const file_;
};

// A destination that is not there counts as unchanged on purpose: only sg_fcopy makes new files.
bool copyIfNewer(const std::wstring& source, const std::wstring& destination) {
    const ReadFile from(source), to(destination);
    return from && to && to.writeTime() < from.writeTime() && copyOver(source, destination);
}

}  // namespace

int fileCopy() {
    const ArgumentList arguments;
    acedRetNil();
    if (arguments.first() == nullptr || arguments.first()->rbnext == nullptr) return kLispTooFew;
    std::wstring source, destination;
    if (!nextTwoStrings(arguments, source, destination)) return kLispWrongType;
    return retBool(copyOver(source, destination));
}

int fileCopyIfChanged() {
    const ArgumentList arguments;
    std::wstring source, destination;
    return retBool(nextTwoStrings(arguments, source, destination) &&
                   copyIfNewer(source, destination));
}

int fileMove() {
    const ArgumentList arguments;
    std::wstring source, destination;
    return retBool(nextTwoStrings(arguments, source, destination) &&
                   MoveFileW(source.c_str(), destination.c_str()));
}

int fileDelete() {
    const ArgumentList arguments;
    const resbuf* at = arguments.first();
    std::wstring name;
    return retBool(nextString(at, name) && DeleteFileW(name.c_str()));
}

int fileDirectory() {
    const ArgumentList arguments;
    const resbuf* at = arguments.first();
    std::wstring pattern;
    acedRetNil();
    if (!nextString(at, pattern)) return kLispOk;
    WIN32_FIND_DATAW found;
    SgFileSearch* const search = FindFirstFileW(pattern.c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return kLispOk;
    resbuf *head = nullptr, *tail = nullptr;
    beginResultList(head, tail);
    do {
        appendString(tail, found.cFileName);
    } while (FindNextFileW(search, &found));
    FindClose(search);
    finishResultList(head, tail);
    return kLispOk;
}

int makeDirectory() {
    const ArgumentList arguments;
    const resbuf* at = arguments.first();
    std::wstring name;
    if (!nextString(at, name)) return kLispWrongType;
    return retBool(CreateDirectoryW(name.c_str(), nullptr));
}

int removeDirectory() {
    const ArgumentList arguments;
    const resbuf* at = arguments.first();
    std::wstring name;
    if (!nextString(at, name)) return kLispWrongType;
    return retBool(RemoveDirectoryW(name.c_str()));
}

}  // namespace sg
