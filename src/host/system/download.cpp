#include "host/system/download.h"

#include <curl/curl.h>

#include <cerrno>
#include <memory>
#include <string>

#include "base/encoding.h"
#include "base/replacement_file.h"
#include "host/system/files.h"
#include "host/system/paths.h"
#include "platform/win/download.h"

namespace sg {
namespace {

// Fewer bytes a second than this count as no progress.
constexpr long kStalledBytesASecond = 16;
constexpr const char* kUserAgent = "SwiftGate";

using Transfer = std::unique_ptr<CURL, decltype(&curl_easy_cleanup)>;
using Address = std::unique_ptr<CURLU, decltype(&curl_url_cleanup)>;
using Headers = std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)>;

struct Text {
    ~Text() { curl_free(value); }
    char* value = nullptr;
};

std::string part(const Address& address, CURLUPart which, unsigned flags = 0) {
    Text text;
    curl_url_get(address.get(), which, &text.value, flags);
    return text.value != nullptr ? text.value : "";
}

Address parsed(std::wstring_view url) {
    Address address(curl_url(), &curl_url_cleanup);
    const std::string bytes = toUtf8(url);
    const unsigned flags = CURLU_URLENCODE | CURLU_NON_SUPPORT_SCHEME;
    if (address != nullptr &&
        curl_url_set(address.get(), CURLUPART_URL, bytes.c_str(), flags) != CURLUE_OK) {
        address.reset();
    }
    return address;
}

// Leads a file address to the file that its name stands for. False when that is no file, so that
// neither a folder nor a device is read.
bool resolveFileAddress(const Address& address) {
    const std::wstring named = fromUtf8(part(address, CURLUPART_PATH, CURLU_URLDECODE));
    const ResolvedPath found = resolvePath(named);
    const std::string path = toUtf8(found.path);
    return found.exists && isRegularFile(found.path) &&
           curl_url_set(address.get(), CURLUPART_PATH, path.c_str(), CURLU_URLENCODE) == CURLUE_OK;
}

int32_t answerOfStatus(long status) {
    switch (status) {
        case 401:
        case 407:
            return INET_E_AUTHENTICATION_REQUIRED;
        case 404:
        case 410:
            return INET_E_OBJECT_NOT_FOUND;
        default:
            return INET_E_DOWNLOAD_FAILURE;
    }
}

int32_t answerOf(CURLcode code, CURL* transfer) {
    long status = 0;  // stays 0 for a file
    curl_easy_getinfo(transfer, CURLINFO_RESPONSE_CODE, &status);
    switch (code) {
        case CURLE_OK:
            return status < 300 ? 0 : answerOfStatus(status);
        case CURLE_ABORTED_BY_CALLBACK:
            return E_ABORT;
        case CURLE_UNSUPPORTED_PROTOCOL:
            return INET_E_UNKNOWN_PROTOCOL;
        case CURLE_URL_MALFORMAT:
            return INET_E_INVALID_URL;
        case CURLE_COULDNT_RESOLVE_HOST:
        case CURLE_COULDNT_RESOLVE_PROXY:
            return INET_E_RESOURCE_NOT_FOUND;
        case CURLE_COULDNT_CONNECT:
            return INET_E_CANNOT_CONNECT;
        case CURLE_OPERATION_TIMEDOUT:
            return INET_E_CONNECTION_TIMEOUT;
        case CURLE_TOO_MANY_REDIRECTS:
            return INET_E_REDIRECT_FAILED;
        case CURLE_FILE_COULDNT_READ_FILE:
            return INET_E_OBJECT_NOT_FOUND;
        case CURLE_PEER_FAILED_VERIFICATION:
        case CURLE_SSL_CONNECT_ERROR:
        case CURLE_SSL_CACERT_BADFILE:
            return INET_E_SECURITY_PROBLEM;
        case CURLE_HTTP_RETURNED_ERROR:
            return answerOfStatus(status);
        default:
            return INET_E_DOWNLOAD_FAILURE;
    }
}

size_t takeBytes(char* bytes, size_t, size_t count, void* file) {
    return static_cast<ReplacementFile*>(file)->write({bytes, count}) ? count : 0;
}

int askWhetherToCancel(void* options, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
    return static_cast<const DownloadOptions*>(options)->cancel() ? 1 : 0;
}

void limitToSafeAddresses(CURL* transfer, const DownloadOptions& options) {
    curl_easy_setopt(transfer, CURLOPT_PROTOCOLS_STR, "http,https,file");
    curl_easy_setopt(transfer, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(transfer, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(transfer, CURLOPT_MAXREDIRS, long(options.redirects));
    if (!options.certificates.empty()) {
        curl_easy_setopt(transfer, CURLOPT_CAINFO, toUtf8(options.certificates).c_str());
    }
}

void limitTime(CURL* transfer, const DownloadOptions& options) {
    curl_easy_setopt(transfer, CURLOPT_CONNECTTIMEOUT, long(options.connectSeconds));
    curl_easy_setopt(transfer, CURLOPT_LOW_SPEED_LIMIT, kStalledBytesASecond);
    curl_easy_setopt(transfer, CURLOPT_LOW_SPEED_TIME, long(options.stallSeconds));
    if (!options.cancel) return;
    curl_easy_setopt(transfer, CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(transfer, CURLOPT_XFERINFOFUNCTION, &askWhetherToCancel);
    curl_easy_setopt(transfer, CURLOPT_XFERINFODATA, const_cast<DownloadOptions*>(&options));
}

Headers freshnessHeaders() {
    curl_slist* list = curl_slist_append(nullptr, "Cache-Control: no-cache");
    curl_slist_append(list, "Pragma: no-cache");
    return Headers(list, &curl_slist_free_all);
}

int32_t fetch(const Address& address, ReplacementFile& file, const DownloadOptions& options) {
    static const CURLcode prepared = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (prepared != CURLE_OK) return INET_E_DOWNLOAD_FAILURE;
    const Transfer transfer(curl_easy_init(), &curl_easy_cleanup);
    if (transfer == nullptr) return INET_E_DOWNLOAD_FAILURE;
    const Headers headers = freshnessHeaders();
    curl_easy_setopt(transfer.get(), CURLOPT_CURLU, address.get());
    curl_easy_setopt(transfer.get(), CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(transfer.get(), CURLOPT_USERAGENT, kUserAgent);
    curl_easy_setopt(transfer.get(), CURLOPT_FAILONERROR, 1L);
    curl_easy_setopt(transfer.get(), CURLOPT_WRITEFUNCTION, &takeBytes);
    curl_easy_setopt(transfer.get(), CURLOPT_WRITEDATA, &file);
    limitToSafeAddresses(transfer.get(), options);
    limitTime(transfer.get(), options);
    return answerOf(curl_easy_perform(transfer.get()), transfer.get());
}

}  // namespace

int32_t download(std::wstring_view url, std::wstring_view file, const DownloadOptions& options) {
    const Address address = parsed(url);
    if (address == nullptr) return INET_E_INVALID_URL;
    const std::string scheme = part(address, CURLUPART_SCHEME);
    if (scheme != "http" && scheme != "https" && scheme != "file") return INET_E_UNKNOWN_PROTOCOL;
    if (scheme == "file" && !resolveFileAddress(address)) return INET_E_OBJECT_NOT_FOUND;

    ReplacementFile target(resolvePath(file).path);
    if (!target.isOpen()) return E_ACCESSDENIED;
    const int32_t answer = fetch(address, target, options);
    if (answer != 0) return answer;
    if (!target.commit()) return INET_E_DOWNLOAD_FAILURE;
    return 0;
}

}  // namespace sg
