#include "support/mail_session.h"

#include <algorithm>
#include <memory>
#include <set>
#include <utility>

#include "base/encoding.h"
#include "base/text.h"
#include "support/mail_message.h"
#include "support/mail_mime.h"

namespace sg {
namespace {

using std::chrono::seconds;

constexpr seconds kConnectPatience{30};
constexpr seconds kReplyPatience{120};  // a server may look through a message for long

CURL* newHandle() {
    static const CURLcode started = curl_global_init(CURL_GLOBAL_DEFAULT);
    return started == CURLE_OK ? curl_easy_init() : nullptr;
}

std::wstring whyNotSendable(const MailMessage& message) {
    if (message.fromAddress().empty()) return L"the message has no sender";
    if (message.recipients().empty()) return L"the message has no recipient";
    return {};
}

// Each mailbox once, however often it was added.
curl_slist* mailboxes(const MailMessage& message) {
    std::set<std::wstring> seen;
    curl_slist* list = nullptr;
    for (const MailMessage::Recipient& recipient : message.recipients()) {
        if (seen.insert(recipient.address).second)
            list = curl_slist_append(list, toUtf8(recipient.address).c_str());
    }
    return list;
}

}  // namespace

bool MailSession::SetSmtpHost(std::wstring_view host) {
    server_.host = host;
    return true;
}

bool MailSession::SetSmtpUserName(std::wstring_view user) {
    server_.user = user;
    return true;
}

bool MailSession::SetSmtpPassword(std::wstring_view password) {
    server_.password = password;
    return true;
}

bool MailSession::SetSmtpPort(int32_t port) {
    server_.port = port;
    return port > 0 && port <= 65535;
}

bool MailSession::SetProgressSink(MailProgressSink* sink) {
    sink_ = sink;
    return true;
}

bool MailSession::SaveLastError(const std::wstring& file) const {
    return saveFailureAccount(file, failure_);
}

bool MailSession::fail(std::wstring reason) {
    failure_ = {operation_, std::move(reason), transcript_.lines()};
    return false;
}

// Makes the handle ready for a transfer with the server; the connection that it has stays.
bool MailSession::prepare() {
    SmtpServer server = server_;
    std::wstring wrong;
    if (!applySmtpEnvironment(server, wrong)) return fail(wrong);
    if (curl_ == nullptr) curl_ = newHandle();
    if (curl_ == nullptr) return fail(L"the network library does not start");
    curl_easy_reset(curl_);
    if (!setAddress(server)) {
        return fail(L"\"" + server.host + L"\", port " + std::to_wstring(server.port) +
                    L", is no address of a mail server");
    }
    setServer(server);
    setPatience(server);
    setObservers();
    return true;
}

bool MailSession::setAddress(const SmtpServer& server) {
    const std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> url(curl_url(), curl_url_cleanup);
    const std::string host = toUtf8(server.host), port = std::to_string(server.port);
    if (curl_url_set(url.get(), CURLUPART_SCHEME, "smtp", 0) != CURLUE_OK ||
        curl_url_set(url.get(), CURLUPART_HOST, host.c_str(), 0) != CURLUE_OK ||
        curl_url_set(url.get(), CURLUPART_PORT, port.c_str(), 0) != CURLUE_OK)
        return false;
    char* text = nullptr;
    if (curl_url_get(url.get(), CURLUPART_URL, &text, 0) != CURLUE_OK) return false;
    curl_easy_setopt(curl_, CURLOPT_URL, text);
    curl_free(text);
    return true;
}

void MailSession::setServer(const SmtpServer& server) {
    const bool authenticates = !server.user.empty();
    if (authenticates) {
        curl_easy_setopt(curl_, CURLOPT_USERNAME, toUtf8(server.user).c_str());
        curl_easy_setopt(curl_, CURLOPT_PASSWORD, toUtf8(server.password).c_str());
    }
    // Encryption that is only tried can be taken away by whoever sits between, password and all.
    const bool mustEncrypt = authenticates && server.passwordNeedsTls;
    curl_easy_setopt(curl_, CURLOPT_USE_SSL, mustEncrypt ? CURLUSESSL_ALL : CURLUSESSL_TRY);
    curl_easy_setopt(curl_, CURLOPT_SSLVERSION, CURL_SSLVERSION_TLSv1_2);
    if (!server.authorities.empty()) {
        curl_easy_setopt(curl_, CURLOPT_CAINFO, toUtf8(server.authorities).c_str());
        curl_easy_setopt(curl_, CURLOPT_CAPATH, nullptr);
    }
}

void MailSession::setPatience(const SmtpServer& server) {
    const bool isSet = server.patience > seconds::zero();
    const long connect = (isSet ? server.patience : kConnectPatience).count();
    const long reply = (isSet ? server.patience : kReplyPatience).count();
    curl_easy_setopt(curl_, CURLOPT_CONNECTTIMEOUT, connect);
    curl_easy_setopt(curl_, CURLOPT_SERVER_RESPONSE_TIMEOUT, reply);
    // A server that stops reading in the middle of a message does not owe an answer yet.
    curl_easy_setopt(curl_, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(curl_, CURLOPT_LOW_SPEED_TIME, reply);
}

void MailSession::setObservers() {
    errorText_[0] = 0;
    curl_easy_setopt(curl_, CURLOPT_ERRORBUFFER, errorText_);
    curl_easy_setopt(curl_, CURLOPT_VERBOSE, 1L);
    curl_easy_setopt(curl_, CURLOPT_DEBUGFUNCTION, &MailSession::onConversation);
    curl_easy_setopt(curl_, CURLOPT_DEBUGDATA, this);
    curl_easy_setopt(curl_, CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(curl_, CURLOPT_XFERINFOFUNCTION, &MailSession::onProgress);
    curl_easy_setopt(curl_, CURLOPT_XFERINFODATA, this);
}

bool MailSession::perform() {
    const CURLcode code = curl_easy_perform(curl_);
    if (code == CURLE_OK) return true;
    return fail(fromUtf8(errorText_[0] != 0 ? errorText_ : curl_easy_strerror(code)));
}

bool MailSession::VerifySmtpConnection() {
    operation_ = L"VerifySmtpConnection";
    if (!prepare()) return false;
    curl_easy_setopt(curl_, CURLOPT_NOBODY, 1L);
    curl_easy_setopt(curl_, CURLOPT_CUSTOMREQUEST, "NOOP");
    return perform();
}

bool MailSession::SendMessage(const MailMessage& message) {
    operation_ = L"SendMessage";
    if (std::wstring why = whyNotSendable(message); !why.empty()) return fail(std::move(why));
    if (!prepare()) return false;
    MailMime mime(curl_);
    std::wstring wrong;
    if (!mime.build(message, wrong)) return fail(wrong);
    const std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)> recipients(
        mailboxes(message), curl_slist_free_all);
    curl_easy_setopt(curl_, CURLOPT_MAIL_FROM, toUtf8(message.fromAddress()).c_str());
    curl_easy_setopt(curl_, CURLOPT_MAIL_RCPT, recipients.get());
    curl_easy_setopt(curl_, CURLOPT_HTTPHEADER, mime.headers());
    curl_easy_setopt(curl_, CURLOPT_MIMEPOST, mime.mime());
    const bool sent = perform();
    curl_easy_setopt(curl_, CURLOPT_MIMEPOST, nullptr);  // ends before the handle does
    return sent;
}

bool MailSession::CloseSmtpConnection() {
    if (curl_ != nullptr) curl_easy_cleanup(curl_);
    curl_ = nullptr;
    return true;
}

int MailSession::onConversation(CURL*, curl_infotype type, char* data, size_t size, void* session) {
    SmtpTranscript& transcript = static_cast<MailSession*>(session)->transcript_;
    if (type == CURLINFO_HEADER_OUT) transcript.addClient({data, size});
    if (type == CURLINFO_HEADER_IN) transcript.addServer({data, size});
    if (type == CURLINFO_DATA_OUT) transcript.addMessageBytes(size);
    return 0;
}

int MailSession::onProgress(void* session, curl_off_t, curl_off_t, curl_off_t total,
                            curl_off_t now) {
    MailProgressSink* const sink = static_cast<MailSession*>(session)->sink_;
    if (sink == nullptr) return 0;
    if (total > 0) sink->PercentDone(static_cast<int>(std::min(now, total) * 100 / total));
    return sink->AbortCheck() ? 1 : 0;
}

}  // namespace sg
