#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "support/failure_file.h"

namespace sg {

// A mail to be sent: texts, addresses, and files. Operations answer success; what failed last can
// be saved. Nothing that is set can add headers or recipients: controls become blanks, and an
// address that isMailAddress() refuses is refused.
class MailMessage {
  public:
    struct Recipient {
        std::wstring displayName, address;
    };
    struct Attachment {
        std::wstring path;  // read when the message is sent
        std::wstring name;  // that the recipient sees
        std::wstring contentType;
    };

    MailMessage();
    MailMessage(const MailMessage&) = delete;
    MailMessage& operator=(const MailMessage&) = delete;
    ~MailMessage();

    bool SetSubject(std::wstring_view subject);
    bool SetBody(std::wstring_view body);  // plain text; any line ends
    bool SetFromName(std::wstring_view name);
    bool SetFromAddress(std::wstring_view address);  // a refused one leaves none
    // Adds to those that are there.
    bool AddRecipient(std::wstring_view displayName, std::wstring_view address);

    // Attaches a file, which must be readable and no folder. `contentType` takes what its name says
    // that it holds.
    bool AddFileAttachment(const std::wstring& path, std::wstring& contentType);

    // Replaces all attachments by one ZIP archive of them, in a temporary file of the message's
    // own; inside, files have their bare names. Without attachments nothing is made. On failure the
    // attachments stay as they were.
    bool ZipAttachments(std::wstring_view name);

    bool SaveLastError(const std::wstring& file) const;

    const std::wstring& subject() const { return subject_; }
    const std::wstring& body() const { return body_; }
    const std::wstring& fromName() const { return fromName_; }
    const std::wstring& fromAddress() const { return fromAddress_; }
    const std::vector<Recipient>& recipients() const { return recipients_; }
    const std::vector<Attachment>& attachments() const { return attachments_; }

  private:
    class ArchiveFolder;

    bool fail(const wchar_t* operation, std::wstring reason);
    bool writeArchive(const std::wstring& path);

    std::wstring subject_, body_, fromName_, fromAddress_;
    std::vector<Recipient> recipients_;
    std::vector<Attachment> attachments_;
    std::unique_ptr<ArchiveFolder> archives_;  // made with the first archive
    FailureAccount failure_;
};

}  // namespace sg
