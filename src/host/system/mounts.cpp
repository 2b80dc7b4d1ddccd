#include "host/system/mounts.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <vector>

#include "base/encoding.h"
#include "host/system/files.h"
#include "host/system/paths.h"

namespace sg {
namespace {

std::vector<std::string_view> fieldsOf(std::string_view line) {
    std::vector<std::string_view> fields;
    while (!line.empty()) {
        const size_t end = std::min(line.find(' '), line.size());
        fields.push_back(line.substr(0, end));
        line.remove_prefix(std::min(end + 1, line.size()));
    }
    return fields;
}

bool isOctal(char c) {
    return c >= '0' && c <= '7';
}

// Blanks and the like stand as "\040" in the table.
std::string unescaped(std::string_view text) {
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        const bool escaped = text[i] == '\\' && i + 3 < text.size() && isOctal(text[i + 1]) &&
                             isOctal(text[i + 2]) && isOctal(text[i + 3]);
        if (!escaped) {
            out += text[i];
            continue;
        }
        out += static_cast<char>((text[i + 1] - '0') * 64 + (text[i + 2] - '0') * 8 +
                                 (text[i + 3] - '0'));
        i += 3;
    }
    return out;
}

bool isBelow(std::string_view path, std::string_view folder) {
    if (folder == "/") return path.starts_with('/');
    return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

bool looksLikeServer(std::wstring_view path) {
    const auto isSeparator = [](wchar_t c) { return c == L'/' || c == L'\\'; };
    return path.size() > 2 && isSeparator(path[0]) && isSeparator(path[1]) && !isSeparator(path[2]);
}

}  // namespace

// id parent device root MOUNT-POINT options [optional fields] - TYPE source options. Of several on
// one mount point the last hides the others.
std::string fileSystemType(std::string_view mounts, std::string_view path) {
    constexpr size_t kMountPoint = 4, kFirstOptional = 6;
    size_t longest = 0;
    std::string type;
    while (!mounts.empty()) {
        const size_t end = std::min(mounts.find('\n'), mounts.size());
        const std::vector<std::string_view> fields = fieldsOf(mounts.substr(0, end));
        mounts.remove_prefix(std::min(end + 1, mounts.size()));
        if (fields.size() <= kFirstOptional) continue;
        const auto mark = std::find(fields.begin() + kFirstOptional, fields.end(), "-");
        if (fields.end() - mark < 2) continue;
        const std::string mountPoint = unescaped(fields[kMountPoint]);
        if (mountPoint.size() < longest || !isBelow(path, mountPoint)) continue;
        longest = mountPoint.size();
        type = mark[1];
    }
    return type;
}

bool isNetworkFileSystem(std::string_view type) {
    static constexpr std::array kTypes = {"nfs",
                                          "nfs4",
                                          "cifs",
                                          "smb3",
                                          "smbfs",
                                          "ncpfs",
                                          "afs",
                                          "coda",
                                          "ceph",
                                          "9p",
                                          "lustre",
                                          "glusterfs",
                                          "davfs",
                                          "vboxsf",
                                          "vmhgfs",
                                          "virtiofs",
                                          "fuse.sshfs",
                                          "fuse.davfs2",
                                          "fuse.rclone",
                                          "fuse.glusterfs",
                                          "fuse.ceph",
                                          "fuse.curlftpfs",
                                          "fuse.smbnetfs",
                                          "fuse.s3fs",
                                          "fuse.gvfsd-fuse",
                                          "fuse.kio-fuse",
                                          "fuse.vmhgfs-fuse"};
    return std::find(kTypes.begin(), kTypes.end(), type) != kTypes.end();
}

bool isNetworkPath(std::wstring_view path) {
    const ResolvedPath found = resolvePath(path);
    if (!found.exists && looksLikeServer(path)) return true;
    std::error_code error;
    const auto real = std::filesystem::weakly_canonical(toUtf8(absolutePath(found.path)), error);
    if (error) return false;
    return isNetworkFileSystem(
        fileSystemType(readFile(L"/proc/self/mountinfo").value_or(""), real.native()));
}

}  // namespace sg
