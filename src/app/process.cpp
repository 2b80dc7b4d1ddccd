#include "app/process.h"

#include <sys/auxv.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "base/encoding.h"
#include "host/system/files.h"
#include "host/system/paths.h"

namespace sg::app {
namespace {

// The system keeps 128 MB free below the main thread's stack, whatever the limit was at start.
constexpr rlim_t kStackBytes = 100 << 20;

// Makes a folder and those above it.
bool makeFolders(const std::string& path) {
    for (size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
        const std::string folder = path.substr(0, end);
        struct stat status;
        if (stat(folder.c_str(), &status) != 0 && mkdir(folder.c_str(), 0700) != 0) return false;
        if (end == std::string::npos) return true;
    }
}

// This executable's file. Where /proc is not mounted, as in a bare chroot, it is taken as it was
// called.
std::string executableFile() {
    std::string path(4096, '\0');
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    if (length > 0) return path.substr(0, static_cast<size_t>(length));
    const auto* const called = reinterpret_cast<const char*>(getauxval(AT_EXECFN));
    return called != nullptr ? called : "";
}

// A path from the folder that holds this executable.
std::wstring besideExecutable(const std::wstring& relative) {
    const std::string path = executableFile();
    const size_t slash = path.rfind('/');
    const std::wstring folder = fromUtf8(path.substr(0, slash == std::string::npos ? 0 : slash));
    return absolutePath(joinPath(folder, relative));
}

}  // namespace

void raiseStackLimit() {
    rlimit limit;
    if (getrlimit(RLIMIT_STACK, &limit) != 0) return;
    // An unlimited stack is cut down too: how deep a program may recurse should not depend on the
    // shell that started it.
    rlim_t wanted = kStackBytes;
    if (limit.rlim_max != RLIM_INFINITY && limit.rlim_max < wanted) wanted = limit.rlim_max;
    limit.rlim_cur = wanted;
    setrlimit(RLIMIT_STACK, &limit);
}

std::wstring moduleFolder() {
    const std::wstring installed = besideExecutable(L"../lib/swiftgate/modules");
    return isFolder(installed) ? installed : besideExecutable(L"../modules");
}

std::wstring shareFolder() {
    return besideExecutable(L"../share/swiftgate");
}

std::wstring stateFolder() {
    std::string folder;
    const char* const state = std::getenv("XDG_STATE_HOME");
    const char* const home = std::getenv("HOME");
    if (state != nullptr && state[0] == '/') {
        folder = state;
    } else if (home != nullptr && home[0] == '/') {
        folder = std::string(home) + "/.local/state";
    } else {
        return {};
    }
    folder += "/swiftgate";
    return makeFolders(folder) ? fromUtf8(folder) : std::wstring();
}

void printOut(const std::wstring& text) {
    const std::string bytes = toUtf8(text);
    std::fwrite(bytes.data(), 1, bytes.size(), stdout);
}

void complain(const std::wstring& text) {
    const std::string bytes = toUtf8(L"swiftgate: " + text + L"\n");
    std::fwrite(bytes.data(), 1, bytes.size(), stderr);
}

std::string readStandardInput() {
    std::string bytes;
    char buffer[4096];
    while (const size_t count = std::fread(buffer, 1, sizeof buffer, stdin)) {
        bytes.append(buffer, count);
    }
    return bytes;
}

bool flushOutput() {
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

int terminalColumns() {
    return terminalColumns(STDOUT_FILENO);
}

int terminalColumns(int file) {
    winsize size;
    if (ioctl(file, TIOCGWINSZ, &size) != 0 || size.ws_col < 20) return 80;
    return size.ws_col;
}

}  // namespace sg::app
