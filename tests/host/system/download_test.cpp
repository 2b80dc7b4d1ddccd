#include "host/system/download.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cstdlib>

#include "host/system/download_server.h"
#include "host/system/temporary_folder.h"
#include "platform/win/download.h"

namespace sg {
namespace {

using namespace test;
using testing::HasSubstr;

namespace fs = std::filesystem;

class DownloadTest : public FolderTest {
  protected:
    DownloadTest() {
        write("kept", "before");
        options.connectSeconds = 5;
        options.stallSeconds = 1;
    }
    int32_t fetch(const std::wstring& url) { return download(url, path("got"), options); }
    static DownloadServer& server() {
        static DownloadServer running;
        return running;
    }
    size_t files() const {
        return static_cast<size_t>(std::distance(fs::directory_iterator(folder_), {}));
    }
    void expectNothing(const std::wstring& url, int32_t answer) {
        SCOPED_TRACE(toUtf8(url));
        EXPECT_EQ(uint32_t(download(url, path("got"), options)), uint32_t(answer));
        EXPECT_EQ(uint32_t(download(url, path("kept"), options)), uint32_t(answer));
        EXPECT_EQ(read("kept"), "before");
        EXPECT_EQ(files(), 1u);
    }

    const WithEnvironment noProxy{"no_proxy", "*"};
    DownloadOptions options;
};

TEST_F(DownloadTest, WholeFilesArrive) {
    EXPECT_EQ(fetch(server().address("file")), 0);
    EXPECT_EQ(read("got"), "content");
    EXPECT_EQ(download(server().address("redirect/10"), path("KEPT"), options), 0);
    EXPECT_EQ(read("kept"), "content") << "an existing file is found in any case";
    EXPECT_EQ(files(), 2u);
}

TEST_F(DownloadTest, ACopyIsNeverAnOldOne) {
    EXPECT_EQ(fetch(server().address("counted")), 0);
    const std::string first = read("got");
    EXPECT_EQ(fetch(server().address("counted")), 0);
    EXPECT_NE(read("got"), first);
    EXPECT_EQ(fetch(server().address("request/a b/\u00fc")), 0);
    EXPECT_THAT(read("got"), HasSubstr("Cache-Control: no-cache"));
    EXPECT_THAT(read("got"), HasSubstr("Pragma: no-cache"));
    EXPECT_THAT(read("got"), HasSubstr("/request/a%20b/%"));
}

TEST_F(DownloadTest, WhatServersRefuse) {
    const struct {
        const char* path;
        int32_t answer;
    } cases[] = {
        {"status/404", INET_E_OBJECT_NOT_FOUND},
        {"status/401", INET_E_AUTHENTICATION_REQUIRED},
        {"status/500", INET_E_DOWNLOAD_FAILURE},
        {"status/304", INET_E_DOWNLOAD_FAILURE},
        {"redirect/11", INET_E_REDIRECT_FAILED},
        {"to/ftp://127.0.0.1/x", INET_E_UNKNOWN_PROTOCOL},
        {"to/file:///etc/passwd", INET_E_UNKNOWN_PROTOCOL},
        {"short", INET_E_DOWNLOAD_FAILURE},
        {"chunks", INET_E_DOWNLOAD_FAILURE},
    };
    for (const auto& c : cases)
        expectNothing(server().address(c.path), c.answer);
}

TEST_F(DownloadTest, ServersThatFallSilent) {
    for (const char* const kind : {"stall", "hang"})
        EXPECT_EQ(fetch(server().address(kind)), INET_E_CONNECTION_TIMEOUT) << kind;
    EXPECT_EQ(files(), 1u);
}

TEST_F(DownloadTest, AddressesThatLeadNowhere) {
    expectNothing(L"", INET_E_INVALID_URL);
    expectNothing(L"not an address", INET_E_INVALID_URL);
    expectNothing(L"data:,x", INET_E_INVALID_URL);
    expectNothing(L"http://127.0.0.1:1/", INET_E_CANNOT_CONNECT);
    expectNothing(L"http://no-such-host.invalid/", INET_E_RESOURCE_NOT_FOUND);
    for (const wchar_t* const url : {L"ftp://127.0.0.1/x", L"smb://x/y", L"scp://x/y"})
        expectNothing(url, INET_E_UNKNOWN_PROTOCOL);
    for (const wchar_t* const url : {L"file:///no/such/file", L"file:///", L"file:///dev/zero"})
        expectNothing(url, INET_E_OBJECT_NOT_FOUND);
}

TEST_F(DownloadTest, Files) {
    write("Sub Folder/A \u00fc.txt", "local");
    const std::wstring folder = L"file://" + path();
    for (const wchar_t* const name :
         {L"/Sub Folder/A \u00fc.txt", L"/sub%20folder/a%20%C3%BC.TXT"}) {
        EXPECT_EQ(fetch(folder + name), 0);
        EXPECT_EQ(read("got"), "local");
        fs::remove(folder_ / "got");
    }
    EXPECT_EQ(download(folder + L"/kept", path("kept"), options), 0) << "onto itself";
    EXPECT_EQ(read("kept"), "before");
}

TEST_F(DownloadTest, FilesThatCannotBeWritten) {
    EXPECT_EQ(download(server().address("file"), path("none/got"), options), E_ACCESSDENIED);
    EXPECT_EQ(download(server().address("file"), path(), options), E_ACCESSDENIED);
    EXPECT_EQ(download(server().address("file"), L"", options), E_ACCESSDENIED);
}

TEST_F(DownloadTest, CanBeCancelled) {
    options.stallSeconds = 60;
    options.cancel = [] { return true; };
    expectNothing(server().address("hang"), E_ABORT);
}

TEST_F(DownloadTest, CertificatesAreVerified) {
    const std::string certificate = toUtf8(path("cert.pem")), key = toUtf8(path("key.pem"));
    const std::string make =
        "openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=test "
        "-addext subjectAltName=IP:127.0.0.1 -keyout " +
        key + " -out " + certificate + " 2>/dev/null";
    ASSERT_EQ(std::system(make.c_str()), 0);
    const DownloadServer secure({certificate, key});
    EXPECT_EQ(fetch(secure.address("file")), INET_E_SECURITY_PROBLEM);
    EXPECT_FALSE(exists("got"));
    options.certificates = path("cert.pem");
    EXPECT_EQ(fetch(secure.address("file")), 0);
    EXPECT_EQ(fetch(server().address("to/" + toUtf8(secure.address("file")))), 0);
}

}  // namespace
}  // namespace sg
