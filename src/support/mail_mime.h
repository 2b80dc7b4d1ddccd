#pragma once

#include <curl/curl.h>

#include <memory>
#include <string>

#include "support/mail_message.h"

namespace sg {

// A mail message in the form in which libcurl sends it: its headers, and a MIME tree that reads the
// attached files while it is sent. Both live as long as this object.
class MailMime {
  public:
    // Of a message with a sender and at least one recipient.
    explicit MailMime(CURL* session) : session_(session) {}
    MailMime(const MailMime&) = delete;
    MailMime& operator=(const MailMime&) = delete;
    ~MailMime();

    // False, with the reason in `wrong`, when an attached file cannot be read.
    bool build(const MailMessage& message, std::wstring& wrong);

    curl_slist* headers() const { return headers_; }
    curl_mime* mime() const { return mime_; }

  private:
    void addHeader(const std::string& header);
    void addHeaders(const MailMessage& message);
    void addBody(const MailMessage& message);
    bool addAttachment(const MailMessage::Attachment& attachment);

    CURL* const session_;
    curl_slist* headers_ = nullptr;
    curl_mime* mime_ = nullptr;
};

}  // namespace sg
