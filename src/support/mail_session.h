#pragma once

#include <curl/curl.h>

#include <memory>
#include <string>
#include <string_view>

#include "support/failure_file.h"
#include "support/smtp_server.h"
#include "support/smtp_transcript.h"

namespace sg {

class MailMessage;

// Hears how sending goes on, and can end it.
class MailProgressSink {
  public:
    virtual ~MailProgressSink() = default;
    virtual void PercentDone(int percent) = 0;
    virtual bool AbortCheck() = 0;  // true ends the transfer
};

// A session with a mail submission server. The connection is encrypted where the server offers it
// (STARTTLS) and its certificate must be good; with a user name a server is authenticated to where
// it asks for that, and must offer encryption. What the environment sets (support/smtp_server.h)
// counts in place of what is set here.
//
// Operations answer success; what failed last can be saved. Nothing waits for ever: a server that
// does not answer is a failure.
class MailSession {
  public:
    MailSession() = default;
    MailSession(const MailSession&) = delete;
    MailSession& operator=(const MailSession&) = delete;
    ~MailSession() { CloseSmtpConnection(); }

    bool SetSmtpHost(std::wstring_view host);
    bool SetSmtpUserName(std::wstring_view user);
    bool SetSmtpPassword(std::wstring_view password);
    bool SetSmtpPort(int32_t port);

    // Connects, encrypts and authenticates as sending would. The connection stays open for it.
    bool VerifySmtpConnection();

    // The sink is not owned; null takes it off.
    bool SetProgressSink(MailProgressSink* sink);

    // Delivers the message to all of its recipients or to none of them.
    bool SendMessage(const MailMessage& message);

    // Takes leave of the server. The next operation connects anew.
    bool CloseSmtpConnection();

    bool SaveLastError(const std::wstring& file) const;
    // The conversation so far, without what authenticates.
    const SmtpTranscript& transcript() const { return transcript_; }

  private:
    bool fail(std::wstring reason);
    bool prepare();
    void setServer(const SmtpServer& server);
    bool setAddress(const SmtpServer& server);
    void setPatience(const SmtpServer& server);
    void setObservers();
    bool perform();

    static int onConversation(CURL*, curl_infotype type, char* data, size_t size, void* session);
    static int onProgress(void* session, curl_off_t, curl_off_t, curl_off_t total, curl_off_t now);

    SmtpServer server_;
    MailProgressSink* sink_ = nullptr;
    CURL* curl_ = nullptr;  // made with the first connection
    char errorText_[CURL_ERROR_SIZE] = "";
    SmtpTranscript transcript_;
    std::wstring operation_;  // that is going on
    FailureAccount failure_;
};

}  // namespace sg
