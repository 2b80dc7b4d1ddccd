#include "host/system/shell.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <optional>

#include "base/encoding.h"
#include "base/text.h"
#include "host/system/files.h"
#include "host/system/folders.h"
#include "host/system/paths.h"

namespace sg {
namespace {

constexpr int kPatienceMilliseconds = 1000;

bool isExecutable(const std::wstring& path) {
    return isFile(path) && ::access(toUtf8(path).c_str(), X_OK) == 0;
}

// The file that a program's bare name stands for; empty when PATH has none.
std::wstring findProgram(std::wstring_view name) {
    const std::wstring path =
        environmentVariable(L"PATH").value_or(L"/usr/local/bin:/usr/bin:/bin");
    for (size_t start = 0; start <= path.size();) {
        const size_t end = std::min(path.find(L':', start), path.size());
        const std::wstring file =
            joinPath(std::wstring_view(path).substr(start, end - start), name);
        if (end > start && isExecutable(file)) return file;
        start = end + 1;
    }
    return {};
}

// A scheme of two or more letters: one letter and a colon is a drive of the system of origin.
bool isAddress(std::wstring_view text) {
    const size_t colon = text.find(L':');
    if (colon == std::wstring_view::npos || colon < 2) return false;
    const std::wstring_view scheme = text.substr(0, colon);
    const bool plain = std::all_of(scheme.begin(), scheme.end(), [](wchar_t c) {
        return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || (c >= L'0' && c <= L'9') ||
               c == L'+' || c == L'-' || c == L'.';
    });
    return plain &&
           (text.substr(colon).starts_with(L"://") || equalIgnoringCase(scheme, L"mailto"));
}

std::wstring withoutQuotes(std::wstring_view text) {
    std::wstring out(trimmed(text));
    out.erase(std::remove(out.begin(), out.end(), L'"'), out.end());
    return out;
}

// The folder that a command line of the system of origin's file manager opens: what stands behind
// its last switch, or the folder of that when the switch selects.
std::wstring explorerFolder(std::wstring_view arguments) {
    arguments = trimmed(arguments);
    bool selects = false;
    while (arguments.starts_with(L'/')) {
        const size_t end = arguments.find(L',');
        const std::wstring name = lowerCased(arguments.substr(0, end));
        if (name != L"/select" && name != L"/e" && name != L"/root" && name != L"/n") break;
        selects = selects || name == L"/select";
        arguments = end == std::wstring_view::npos ? L"" : trimmed(arguments.substr(end + 1));
    }
    const std::wstring path = withoutQuotes(arguments);
    if (path.empty()) return knownFolder(KnownFolder::home);
    const std::wstring found = absolutePath(resolvePath(path).path);
    return selects ? std::wstring(parentFolder(found)) : found;
}

// The first word of a command line, and what follows it as it stands.
std::pair<std::wstring, std::wstring_view> firstWord(std::wstring_view line) {
    line = trimmed(line);
    bool quoted = false;
    size_t end = 0;
    for (; end < line.size() && (quoted || !isBlank(line[end])); ++end) {
        if (line[end] == L'"') quoted = !quoted;
    }
    return {withoutQuotes(line.substr(0, end)), line.substr(end)};
}

// The exit status once the child has ended within `milliseconds` (-1: however long it takes).
std::optional<int> exitStatus(pid_t child, int milliseconds) {
    const int descriptor = static_cast<int>(::syscall(SYS_pidfd_open, child, 0));
    if (descriptor >= 0) {
        pollfd ended{descriptor, POLLIN, 0};
        int answer = 0;
        do {
            answer = ::poll(&ended, 1, milliseconds);
        } while (answer < 0 && errno == EINTR);
        ::close(descriptor);
        if (answer == 0) return std::nullopt;
    }
    int status = 0;
    const int options = descriptor < 0 && milliseconds >= 0 ? WNOHANG : 0;
    pid_t ended = 0;
    do {
        ended = ::waitpid(child, &status, options);
    } while (ended < 0 && errno == EINTR);
    if (ended == 0) return std::nullopt;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128;
}

intptr_t answerFor(int error) {
    if (error == ENOENT || error == ENOTDIR) return Shell::kFileNotFound;
    if (error == ENOEXEC) return Shell::kNoProgram;
    return error == ENOMEM || error == EAGAIN ? Shell::kOutOfMemory : Shell::kAccessDenied;
}

// Starts a program with nothing to read and nowhere to print. 0, or errno's number.
int spawn(const std::vector<std::string>& words, std::wstring_view directory, pid_t& child) {
    std::vector<char*> arguments;
    for (const std::string& word : words)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    if (!directory.empty()) {
        const std::string folder = toUtf8(resolvePath(directory).path);
        posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
    }
    posix_spawnattr_t attributes;  // a group of its own: Ctrl-C at our terminal is not for it
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    const int error =
        ::posix_spawn(&child, arguments[0], &actions, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return error;
}

// The address of a file, as the desktop's programs exchange them (RFC 3986, RFC 8089).
std::wstring fileAddress(const std::wstring& path) {
    constexpr std::string_view kPlain =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string address = "file://";
    for (const char c : toUtf8(path)) {
        if (kPlain.find(c) != std::string_view::npos) {
            address += c;
        } else {
            const auto byte = static_cast<unsigned char>(c);
            address += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
        }
    }
    return fromUtf8(address);
}

std::wstring substitute() {
    return environmentVariable(L"SWIFTGATE_SHELL").value_or(L"");
}

}  // namespace

Shell::~Shell() {
    reap();
}

void Shell::reap() {
    const auto ended = [](pid_t child) { return ::waitpid(child, nullptr, WNOHANG) != 0; };
    children_.erase(std::remove_if(children_.begin(), children_.end(), ended), children_.end());
}

std::vector<std::wstring> Shell::words(std::wstring_view commandLine) {
    std::vector<std::wstring> out;
    for (std::wstring_view rest = trimmed(commandLine); !rest.empty();) {
        auto [word, behind] = firstWord(rest);
        out.push_back(std::move(word));
        rest = trimmed(behind);
    }
    return out;
}

intptr_t Shell::run(Verb verb, const std::vector<std::wstring>& command,
                    std::wstring_view directory) {
    reap();
    const std::wstring inPlace = substitute();
    constexpr const char* kNames[] = {"open", "select", "start"};
    std::vector<std::string> words;
    if (!inPlace.empty()) words = {toUtf8(inPlace), kNames[static_cast<size_t>(verb)]};
    const size_t skipped = !inPlace.empty() && verb == Verb::open ? 1 : 0;  // the opener itself
    for (size_t i = skipped; i < command.size(); ++i)
        words.push_back(toUtf8(command[i]));

    pid_t child = 0;
    if (const int error = spawn(words, directory, child); error != 0) return answerFor(error);
    if (!inPlace.empty()) {
        const intptr_t status = exitStatus(child, -1).value_or(0);
        return status == 0 ? intptr_t{kStarted} : status;
    }
    if (verb != Verb::start) {
        if (const auto status = exitStatus(child, kPatienceMilliseconds)) {
            // xdg-open's own numbers: 2 is a missing file, the others a missing or failing program.
            return *status == 0 ? kStarted : *status == 2 ? kFileNotFound : kNoProgram;
        }
    }
    children_.push_back(child);
    return kStarted;
}

intptr_t Shell::open(const std::wstring& target) {
    const std::wstring opener = findProgram(L"xdg-open");
    if (opener.empty() && substitute().empty()) return kNoProgram;
    return run(Verb::open, {opener, target}, {});
}

intptr_t Shell::execute(std::wstring_view operation, std::wstring_view file,
                        std::wstring_view parameters, std::wstring_view directory) {
    const bool explores = equalIgnoringCase(operation, L"explore");
    if (!operation.empty() && !explores && !equalIgnoringCase(operation, L"open")) {
        return kNoProgram;
    }
    if (isAddress(file)) return open(std::wstring(file));
    const bool inDirectory = !directory.empty() && resolvePath(joinPath(directory, file)).exists;
    const ResolvedPath found = resolvePath(inDirectory ? joinPath(directory, file) : file);
    if (!found.exists) {
        return explores ? kFileNotFound : startProgram(file, words(parameters), directory);
    }
    const std::wstring path = absolutePath(found.path);
    if (explores && !isFolder(path)) return kFileNotFound;
    if (!isExecutable(path)) return open(path);
    // Some file systems call every file executable; what the system cannot run is a document.
    const intptr_t answer = startProgram(path, words(parameters), directory);
    return answer == kNoProgram ? open(path) : answer;
}

intptr_t Shell::select(const std::wstring& folder, const std::vector<std::wstring>& files) {
    if (files.empty()) return open(folder);
    if (!substitute().empty()) {
        std::vector<std::wstring> command = {folder};
        command.insert(command.end(), files.begin(), files.end());
        return run(Verb::select, command, {});
    }
    if (const std::wstring sender = findProgram(L"dbus-send"); !sender.empty()) {
        std::wstring items = L"array:string:";
        for (const std::wstring& file : files)
            items += (&file == &files.front() ? L"" : L",") + fileAddress(file);
        const std::vector<std::wstring> message = {sender,
                                                   L"--session",
                                                   L"--print-reply",
                                                   L"--dest=org.freedesktop.FileManager1",
                                                   L"/org/freedesktop/FileManager1",
                                                   L"org.freedesktop.FileManager1.ShowItems",
                                                   items,
                                                   L"string:"};
        if (const intptr_t answer = run(Verb::select, message, {}); answer == kStarted) {
            return answer;
        }
    }
    return open(folder);
}

intptr_t Shell::start(std::wstring_view command, std::wstring_view argument) {
    const auto [program, rest] = firstWord(command);
    const std::wstring_view name = lastComponent(program);
    if (equalIgnoringCase(name, L"explorer") || equalIgnoringCase(name, L"explorer.exe")) {
        const std::wstring folder = explorerFolder(std::wstring(rest) + std::wstring(argument));
        return isFolder(folder) ? open(folder) : kFileNotFound;
    }
    std::vector<std::wstring> arguments = words(rest);
    if (!argument.empty()) arguments.emplace_back(argument);
    return startProgram(program, std::move(arguments), {});
}

intptr_t Shell::startProgram(std::wstring_view program, std::vector<std::wstring> arguments,
                             std::wstring_view directory) {
    if (program.empty()) return kFileNotFound;
    const bool bare = program.find_first_of(L"/\\") == std::wstring_view::npos;
    std::wstring file = bare ? findProgram(program) : resolvePath(program).path;
    if (bare && file.empty() && !substitute().empty()) {
        file = program;
    } else if (file.empty() || !isExecutable(file)) {
        return kFileNotFound;
    }
    arguments.insert(arguments.begin(), std::move(file));
    return run(Verb::start, arguments, directory);
}

}  // namespace sg
