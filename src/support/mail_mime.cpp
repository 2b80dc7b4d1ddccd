#include "support/mail_mime.h"

#include <fmt/format.h>

#include <chrono>
#include <cstdio>
#include <random>
#include <string_view>

#include "base/encoding.h"
#include "platform/win/files.h"
#include "support/mail_body.h"
#include "support/mail_headers.h"

namespace sg {
namespace {

size_t readFile(char* buffer, size_t size, size_t count, void* file) {
    auto* const in = static_cast<std::FILE*>(file);
    const size_t got = std::fread(buffer, size, count, in);
    return std::ferror(in) != 0 ? CURL_READFUNC_ABORT : got;
}

int seekFile(void* file, curl_off_t offset, int origin) {
    const bool moved = ::fseeko(static_cast<std::FILE*>(file), offset, origin) == 0;
    return moved ? CURL_SEEKFUNC_OK : CURL_SEEKFUNC_FAIL;
}

void closeFile(void* file) {
    std::fclose(static_cast<std::FILE*>(file));
}

// The length of an open file, which is left at its start; -1 when it has none.
curl_off_t lengthOf(std::FILE* file) {
    if (::fseeko(file, 0, SEEK_END) != 0) return -1;
    const curl_off_t length = ::ftello(file);
    std::rewind(file);
    return length;
}

// In the domain of the sender, who stands for the identifier to be the only one of its kind.
std::string messageIdHeader(const std::string& fromAddress) {
    std::random_device random;
    const std::string domain = fromAddress.substr(fromAddress.find('@') + 1);
    return fmt::format("Message-ID: <{:08x}{:08x}{:08x}{:08x}@{}>", random(), random(), random(),
                       random(), domain);
}

// A message has one header for all recipients.
std::string toHeader(const std::vector<MailMessage::Recipient>& recipients) {
    constexpr std::string_view name = "To";
    std::string out;
    for (const auto& [displayName, address] : recipients) {
        const std::string header = mailAddressHeader(name, displayName, address);
        out += out.empty() ? header : ",\r\n" + header.substr(name.size() + 1);
    }
    return out;
}

}  // namespace

MailMime::~MailMime() {
    curl_mime_free(mime_);
    curl_slist_free_all(headers_);
}

bool MailMime::build(const MailMessage& message, std::wstring& wrong) {
    addHeaders(message);
    mime_ = curl_mime_init(session_);
    addBody(message);
    for (const MailMessage::Attachment& attachment : message.attachments()) {
        if (addAttachment(attachment)) continue;
        wrong = L"cannot read \"" + attachment.path + L"\"";
        return false;
    }
    return true;
}

void MailMime::addHeader(const std::string& header) {
    headers_ = curl_slist_append(headers_, header.c_str());
}

void MailMime::addHeaders(const MailMessage& message) {
    addHeader(mailDateHeader(std::chrono::system_clock::now()));
    addHeader(mailAddressHeader("From", message.fromName(), message.fromAddress()));
    addHeader(toHeader(message.recipients()));
    addHeader(mailTextHeader("Subject", message.subject()));
    addHeader(messageIdHeader(toUtf8(message.fromAddress())));
}

// Quoted-printable keeps the lines short and, for most languages, readable in the source. The
// library would encode it as it sends it, and then could not tell the server the message's size.
void MailMime::addBody(const MailMessage& message) {
    const std::string text = quotedPrintable(message.body());
    curl_mimepart* const part = curl_mime_addpart(mime_);
    curl_mime_data(part, text.data(), text.size());
    curl_mime_type(part, "text/plain; charset=utf-8");
    curl_mime_headers(part,
                      curl_slist_append(nullptr, "Content-Transfer-Encoding: quoted-printable"), 1);
}

bool MailMime::addAttachment(const MailMessage::Attachment& attachment) {
    std::FILE* const file = std::fopen(toUtf8(sgResolvePath(attachment.path)).c_str(), "r");
    if (file == nullptr) return false;
    curl_mimepart* const part = curl_mime_addpart(mime_);
    const curl_off_t length = lengthOf(file);
    if (length < 0 || curl_mime_data_cb(part, length, readFile, seekFile, closeFile, file) != 0) {
        std::fclose(file);
        return false;
    }
    curl_mime_type(part, toUtf8(attachment.contentType).c_str());
    curl_mime_encoder(part, "base64");
    const std::string disposition = mailAttachmentHeader(attachment.name);
    curl_mime_headers(part, curl_slist_append(nullptr, disposition.c_str()), 1);
    return true;
}

}  // namespace sg
