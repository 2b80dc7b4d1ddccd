#include "support/mail_message.h"

#include <stdlib.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <utility>

#include "base/encoding.h"
#include "base/text.h"
#include "platform/win/files.h"
#include "platform/win/folders.h"
#include "support/archive.h"
#include "support/mail_headers.h"
#include "support/text_utilities.h"

namespace sg {
namespace {

constexpr const wchar_t* kZipType = L"application/zip";

std::wstring contentTypeOf(std::wstring_view path) {
    constexpr std::array<std::pair<std::wstring_view, const wchar_t*>, 6> types = {{
        {L".zip", kZipType},
        {L".txt", L"text/plain"},
        {L".xml", L"text/xml"},
        {L".pdf", L"application/pdf"},
        {L".dwg", L"image/vnd.dwg"},
        {L".dxf", L"image/vnd.dxf"},
    }};
    const std::wstring lower = lowerCased(path);
    for (const auto& [ending, type] : types) {
        if (lower.ends_with(ending)) return type;
    }
    return L"application/octet-stream";
}

std::wstring bareName(std::wstring_view path) {
    const size_t separator = path.find_last_of(L"/\\");
    return std::wstring(separator == std::wstring_view::npos ? path : path.substr(separator + 1));
}

// Why a file cannot be attached; empty when it can.
std::wstring obstacle(const std::wstring& path) {
    const uint32_t attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return L"there is no file \"" + path + L"\"";
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return L"\"" + path + L"\" is a folder";
    std::FILE* const file = std::fopen(toUtf8(sgResolvePath(path)).c_str(), "r");
    if (file == nullptr) return L"\"" + path + L"\" cannot be read";
    std::fclose(file);
    return {};
}

}  // namespace

// A temporary folder that only this user can read, with the archives that the message has made.
class MailMessage::ArchiveFolder {
  public:
    ArchiveFolder() {
        wchar_t temporary[MAX_PATH] = L"";
        const uint32_t length = GetTempPathW(MAX_PATH, temporary);
        if (length == 0 || length >= MAX_PATH) return;
        std::string path = toUtf8(temporary) + "swiftgate-mail-XXXXXX";
        if (::mkdtemp(path.data()) != nullptr) path_ = path;
    }
    ArchiveFolder(const ArchiveFolder&) = delete;
    ArchiveFolder& operator=(const ArchiveFolder&) = delete;
    ~ArchiveFolder() {
        std::error_code ignored;
        if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
    }

    // A file that was not answered before; empty when there is no folder.
    std::wstring nextFile() {
        if (path_.empty()) return {};
        const std::string number = count_++ > 0 ? std::to_string(count_) : std::string();
        return fromUtf8(path_ + "/attachments" + number + ".zip");
    }

  private:
    std::string path_;
    int count_ = 0;
};

MailMessage::MailMessage() = default;
MailMessage::~MailMessage() = default;

bool MailMessage::fail(const wchar_t* operation, std::wstring reason) {
    failure_ = {operation, std::move(reason), {}};
    return false;
}

bool MailMessage::SetSubject(std::wstring_view subject) {
    subject_ = subject;
    return true;
}

bool MailMessage::SetBody(std::wstring_view body) {
    body_ = body;
    return true;
}

bool MailMessage::SetFromName(std::wstring_view name) {
    fromName_ = name;
    return true;
}

bool MailMessage::SetFromAddress(std::wstring_view address) {
    fromAddress_.clear();
    if (!isMailAddress(address))
        return fail(L"SetFromAddress", L"\"" + std::wstring(address) + L"\" is no mail address");
    fromAddress_ = address;
    return true;
}

bool MailMessage::AddRecipient(std::wstring_view displayName, std::wstring_view address) {
    if (!isMailAddress(address))
        return fail(L"AddRecipient", L"\"" + std::wstring(address) + L"\" is no mail address");
    recipients_.push_back({std::wstring(displayName), std::wstring(address)});
    return true;
}

bool MailMessage::AddFileAttachment(const std::wstring& path, std::wstring& contentType) {
    contentType.clear();
    if (std::wstring why = obstacle(path); !why.empty())
        return fail(L"AddFileAttachment", std::move(why));
    contentType = contentTypeOf(path);
    attachments_.push_back({path, bareName(path), contentType});
    return true;
}

bool MailMessage::writeArchive(const std::wstring& path) {
    Archive archive;
    archive.SetDiscardPaths(true);
    bool good = archive.NewArchive(path);
    for (const Attachment& attachment : attachments_)
        good = good && archive.AppendFileOrFolder(attachment.path, true);
    good = good && archive.WriteAndClose();
    return good || fail(L"ZipAttachments", archive.lastError().reason);
}

bool MailMessage::ZipAttachments(std::wstring_view name) {
    if (attachments_.empty()) return true;
    if (archives_ == nullptr) archives_ = std::make_unique<ArchiveFolder>();
    const std::wstring path = archives_->nextFile();
    if (path.empty()) {
        archives_.reset();
        return fail(L"ZipAttachments", L"there is no folder for temporary files");
    }
    if (!writeArchive(path)) return false;
    attachments_ = {{path, std::wstring(name), kZipType}};
    return true;
}

bool MailMessage::SaveLastError(const std::wstring& file) const {
    return saveFailureAccount(file, failure_);
}

}  // namespace sg
