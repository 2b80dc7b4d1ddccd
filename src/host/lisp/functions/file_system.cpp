#include <cstdlib>
#include <ctime>

#include "base/encoding.h"
#include "host/lisp/functions/list_builder.h"
#include "host/lisp/functions/program_state.h"
#include "host/lisp/functions/tables.h"
#include "host/lisp/text/filenames.h"
#include "host/system/files.h"
#include "host/system/folders.h"
#include "host/system/paths.h"

// File names, files as wholes, folders and the environment.
namespace sg::lisp {

std::optional<std::wstring> locateFile(Interpreter& in, const std::wstring& name) {
    if (name.empty()) return std::nullopt;
    if (in.hooks().findFile) return in.hooks().findFile(name);
    const ResolvedPath resolved = resolvePath(name);
    if (!resolved.exists || isFolder(resolved.path)) return std::nullopt;
    return absolutePath(resolved.path);
}

namespace {

// ---- Finding ------------------------------------------------------------------------------------

Value fnFindFile(Interpreter& in, Args a) {
    const std::wstring name(fileName(in, a[0]));
    if (const auto found = locateFile(in, name)) return in.string(*found);
    if (!isFolder(name)) return Value::nil();
    return in.string(absolutePath(resolvePath(name).path));
}

Value fnDirectoryFiles(Interpreter& in, Args a) {
    const std::wstring_view folder = a.get(0) ? fileName(in, a[0]) : L"";
    const std::wstring_view pattern = a.get(1) ? in.text(a[1]) : L"";
    const int32_t which = a.get(2) ? in.integer(a[2]) : 0;
    const ListedEntries entries = which < 0   ? ListedEntries::foldersOnly
                                  : which > 0 ? ListedEntries::filesOnly
                                              : ListedEntries::all;
    ListBuilder names(in);
    for (const std::wstring& name : listFolder(folder, pattern, entries)) {
        names.add(in.string(name));
    }
    return names.list();
}

// ---- Files --------------------------------------------------------------------------------------

// A count of bytes: a real where the integers of the language end.
Value byteCount(int64_t bytes) {
    if (bytes <= INT32_MAX) return Value::integer(static_cast<int32_t>(bytes));
    return Value::real(static_cast<double>(bytes));
}

Value fnFileCopy(Interpreter& in, Args a) {
    const CopyResult copied = copyFile(fileName(in, a[0]), fileName(in, a[1]), bool(a.get(2)));
    return copied ? byteCount(copied.bytes) : Value::nil();
}

Value fnFileDelete(Interpreter& in, Args a) {
    return in.boolean(bool(deleteFile(fileName(in, a[0]))));
}

Value fnFileDirectoryP(Interpreter& in, Args a) {
    return in.boolean(isFolder(fileName(in, a[0])));
}

Value fnFileRename(Interpreter& in, Args a) {
    return in.boolean(bool(renameFile(fileName(in, a[0]), fileName(in, a[1]))));
}

Value fnFileSize(Interpreter& in, Args a) {
    const std::optional<int64_t> size = fileSize(fileName(in, a[0]));
    return size ? byteCount(*size) : Value::nil();
}

Value fnFileSystime(Interpreter& in, Args a) {
    const std::optional<std::timespec> time = fileTime(fileName(in, a[0]));
    std::tm local{};
    if (!time || ::localtime_r(&time->tv_sec, &local) == nullptr) return Value::nil();
    const auto milliseconds = static_cast<int32_t>(time->tv_nsec / 1000000);
    return in.list({Value::integer(local.tm_year + 1900), Value::integer(local.tm_mon + 1),
                    Value::integer(local.tm_wday), Value::integer(local.tm_mday),
                    Value::integer(local.tm_hour), Value::integer(local.tm_min),
                    Value::integer(local.tm_sec), Value::integer(milliseconds)});
}

Value fnMkdir(Interpreter& in, Args a) {
    return in.boolean(bool(makeFolder(fileName(in, a[0]))));
}

// ---- Names --------------------------------------------------------------------------------------

Value fnFilenameBase(Interpreter& in, Args a) {
    return in.string(filenameBase(in.text(a[0])));
}

Value fnFilenameDirectory(Interpreter& in, Args a) {
    return in.string(filenameDirectory(in.text(a[0])));
}

Value fnFilenameExtension(Interpreter& in, Args a) {
    const std::optional<std::wstring_view> extension = filenameExtension(in.text(a[0]));
    return extension ? in.string(*extension) : Value::nil();
}

Value fnFilenameMktemp(Interpreter& in, Args a) {
    const std::wstring_view pattern = a.get(0) ? fileName(in, a[0]) : L"";
    const std::wstring_view folder = a.get(1) ? fileName(in, a[1]) : L"";
    std::optional<std::wstring_view> extension;
    if (a.get(2)) extension = fileName(in, a[2]);
    return in.string(programState(in).temporaryFiles.next(pattern, folder, extension));
}

// ---- The environment ----------------------------------------------------------------------------

Value fnGetenv(Interpreter& in, Args a) {
    const std::optional<std::wstring> value = environmentVariable(in.text(a[0]));
    return value ? in.string(*value) : Value::nil();
}

Value fnSetenv(Interpreter& in, Args a) {
    const std::wstring_view name = in.text(a[0]);
    const std::wstring_view value = in.text(a[1]);
    const bool zero =
        name.find(L'\0') != std::wstring_view::npos || value.find(L'\0') != std::wstring_view::npos;
    if (zero || ::setenv(toUtf8(name).c_str(), toUtf8(value).c_str(), 1) != 0) {
        in.badValue(L"environment variable: " + in.toQuotedText(a[0]));
    }
    return a[1];
}

constexpr FunctionRow kRows[] = {
    {L"findfile", fnFindFile, 1, 1},
    {L"findtrustedfile", fnFindFile, 1, 1},
    {L"vl-directory-files", fnDirectoryFiles, 0, 3},
    {L"vl-file-copy", fnFileCopy, 2, 3},
    {L"vl-file-delete", fnFileDelete, 1, 1},
    {L"vl-file-directory-p", fnFileDirectoryP, 1, 1},
    {L"vl-file-rename", fnFileRename, 2, 2},
    {L"vl-file-size", fnFileSize, 1, 1},
    {L"vl-file-systime", fnFileSystime, 1, 1},
    {L"vl-mkdir", fnMkdir, 1, 1},
    {L"vl-filename-base", fnFilenameBase, 1, 1},
    {L"vl-filename-directory", fnFilenameDirectory, 1, 1},
    {L"vl-filename-extension", fnFilenameExtension, 1, 1},
    {L"vl-filename-mktemp", fnFilenameMktemp, 0, 3},
    {L"getenv", fnGetenv, 1, 1},
    {L"setenv", fnSetenv, 2, 2},
};

}  // namespace

std::span<const FunctionRow> fileFunctions() {
    return kRows;
}

}  // namespace sg::lisp
