#include "platform/win/cryptography.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string_view>

#include "host/seam/host_fixture.h"
#include "platform/win/system.h"
#include "support/signatures/vectors.h"

namespace sg {
namespace {

using namespace test;
using Bytes = std::vector<uint8_t>;

class CryptographyTest : public HostTest {
  protected:
    CryptographyTest() {
        make();
        context = newContext();
    }

    static HCRYPTPROV newContext() {
        HCRYPTPROV made = 0;
        EXPECT_TRUE(
            CryptAcquireContextW(&made, nullptr, nullptr, PROV_RSA_FULL, CRYPT_VERIFYCONTEXT));
        return made;
    }
    HCRYPTKEY import(const Bytes& blob, uint32_t flags = CRYPT_EXPORTABLE) const {
        HCRYPTKEY key = 0;
        EXPECT_TRUE(CryptImportKey(context, blob.data(), uint32_t(blob.size()), 0, flags, &key))
            << std::hex << GetLastError();
        return key;
    }
    // The reason why a blob does not import; 0 when it does.
    uint32_t importError(const Bytes& blob) const {
        HCRYPTKEY key = 0;
        const bool imported =
            CryptImportKey(context, blob.data(), uint32_t(blob.size()), 0, CRYPT_EXPORTABLE, &key);
        return imported ? 0 : GetLastError();
    }
    HCRYPTHASH hash(std::string_view message) const {
        HCRYPTHASH made = 0;
        EXPECT_TRUE(CryptCreateHash(context, CALG_MD5, 0, 0, &made));
        EXPECT_TRUE(CryptHashData(made, reinterpret_cast<const uint8_t*>(message.data()),
                                  uint32_t(message.size()), 0));
        return made;
    }
    static Bytes exported(HCRYPTKEY key, uint32_t type) {
        uint32_t size = 0;
        EXPECT_TRUE(CryptExportKey(key, 0, type, 0, nullptr, &size));
        Bytes bytes(size);
        EXPECT_TRUE(CryptExportKey(key, 0, type, 0, bytes.data(), &size));
        return bytes;
    }
    Bytes sign(std::string_view message) const {
        const HCRYPTHASH made = hash(message);
        uint32_t size = 0;
        EXPECT_TRUE(CryptSignHashW(made, AT_SIGNATURE, nullptr, 0, nullptr, &size));
        Bytes bytes(size);
        EXPECT_TRUE(CryptSignHashW(made, AT_SIGNATURE, nullptr, 0, bytes.data(), &size));
        return bytes;
    }
    bool verify(std::string_view message, const Bytes& signature, HCRYPTKEY key) const {
        return CryptVerifySignatureW(hash(message), signature.data(), uint32_t(signature.size()),
                                     key, nullptr, 0);
    }

    HCRYPTPROV context = 0;
};

const struct {
    const char* name;
    std::string_view message;
} kMessages[] = {
    {"plain", "The quick brown fox jumps over the lazy dog"},
    {"empty", ""},
    {"latin",
     "Gr\xf6\xdf"
     "e 42 m\xb2"},
    {"clipped", "\xff\xff \xff"},
};

TEST_F(CryptographyTest, KeysAndSignaturesOfAnotherProgram) {
    for (const std::string bits : {"1024", "2048", "520"}) {
        const Bytes privateBlob = signatureBytes("private" + bits);
        const Bytes publicBlob = signatureBytes("public" + bits);
        const HCRYPTKEY pair = import(privateBlob), key = import(publicBlob, 0);
        EXPECT_EQ(exported(pair, PRIVATEKEYBLOB), privateBlob) << bits;
        EXPECT_EQ(exported(pair, PUBLICKEYBLOB), publicBlob) << bits;
        EXPECT_EQ(exported(key, PUBLICKEYBLOB), publicBlob) << bits;
        for (const auto& m : kMessages) {
            const Bytes signature = signatureBytes(m.name + bits);
            EXPECT_EQ(sign(m.message), signature) << m.name << bits;
            EXPECT_TRUE(verify(m.message, signature, key)) << m.name << bits;
            EXPECT_FALSE(verify("another", signature, key));
            EXPECT_EQ(GetLastError(), uint32_t(NTE_BAD_SIGNATURE));
        }
    }
}

TEST_F(CryptographyTest, GeneratedKeys) {
    HCRYPTKEY key = 0, other = 0;
    ASSERT_TRUE(CryptGenKey(context, AT_SIGNATURE, CRYPT_EXPORTABLE, &key));
    const Bytes blob = exported(key, PUBLICKEYBLOB);
    const Bytes header{6, 2, 0, 0, 0, 0x24, 0, 0, 'R', 'S', 'A', '1', 0, 4, 0, 0, 1, 0, 1, 0};
    ASSERT_EQ(blob.size(), 148u);
    EXPECT_TRUE(std::equal(header.begin(), header.end(), blob.begin()));
    EXPECT_EQ(exported(key, PRIVATEKEYBLOB).size(), 596u);
    EXPECT_EQ(importError(exported(key, PRIVATEKEYBLOB)), 0u);
    EXPECT_TRUE(verify("text", sign("text"), key));

    ASSERT_TRUE(CryptGenKey(context, AT_SIGNATURE, 0, &other));
    EXPECT_NE(exported(other, PUBLICKEYBLOB), blob);
    uint32_t size = 0;
    EXPECT_FALSE(CryptExportKey(other, 0, PRIVATEKEYBLOB, 0, nullptr, &size));
    EXPECT_EQ(GetLastError(), uint32_t(NTE_BAD_KEY_STATE));
    ASSERT_TRUE(CryptGenKey(context, AT_SIGNATURE, 512u << 16, &other));
    EXPECT_EQ(exported(other, PUBLICKEYBLOB).size(), 84u);
    for (const uint32_t flags : {8u << 16, 1025u << 16, 0xFFF8u << 16, 2u}) {
        EXPECT_FALSE(CryptGenKey(context, AT_SIGNATURE, flags, &other)) << flags;
        EXPECT_EQ(GetLastError(), uint32_t(NTE_BAD_FLAGS));
    }
}

TEST_F(CryptographyTest, BlobsOfEveryWrongKind) {
    const auto changed = [](Bytes blob, size_t at, uint8_t byte) {
        blob[at] = byte;
        return blob;
    };
    const Bytes publicBlob = signatureBytes("public1024"),
                privateBlob = signatureBytes("private1024");
    const struct {
        Bytes blob;
        uint32_t error;
    } cases[] = {
        {{}, NTE_BAD_DATA},
        {changed(publicBlob, 0, 7), NTE_BAD_DATA},
        {changed(publicBlob, 0, 1), NTE_BAD_TYPE},
        {changed(publicBlob, 1, 3), NTE_BAD_VER},
        {changed(publicBlob, 5, 0x66), NTE_BAD_ALGID},
        {changed(publicBlob, 11, '2'), NTE_BAD_DATA},
        {changed(publicBlob, 12, 4), NTE_BAD_DATA},     // bits that are no bytes
        {changed(publicBlob, 15, 0x80), NTE_BAD_DATA},  // two thousand million bits
        {changed(publicBlob, 16, 2), NTE_BAD_DATA},     // an even exponent
        {changed(publicBlob, 20, 0), NTE_BAD_DATA},     // an even modulus
        {changed(publicBlob, 147, 0), NTE_BAD_DATA},    // a shorter one
        {changed(publicBlob, 2, 9), 0},                 // reserved
    };
    for (const auto& c : cases)
        EXPECT_EQ(importError(c.blob), c.error);
    for (size_t length = 0; length < privateBlob.size(); ++length) {
        EXPECT_EQ(importError(Bytes(privateBlob.begin(), privateBlob.begin() + ptrdiff_t(length))),
                  uint32_t(NTE_BAD_DATA));
    }
    for (size_t at = 148; at < privateBlob.size(); at += 16)
        EXPECT_EQ(importError(changed(privateBlob, at, privateBlob[at] ^ 1)),
                  uint32_t(NTE_BAD_DATA));
    Bytes longer = publicBlob;
    longer.resize(300);
    EXPECT_EQ(importError(longer), 0u);
    EXPECT_EQ(importError(Bytes(20'000, 0xFF)), uint32_t(NTE_BAD_TYPE));
}

TEST_F(CryptographyTest, ThePairThatSigns) {
    import(signatureBytes("exchange1024"));
    const HCRYPTHASH made = hash("x");
    uint32_t size = 0;
    EXPECT_FALSE(CryptSignHashW(made, AT_SIGNATURE, nullptr, 0, nullptr, &size));
    EXPECT_EQ(GetLastError(), uint32_t(NTE_NO_KEY));
    EXPECT_TRUE(CryptSignHashW(made, AT_KEYEXCHANGE, nullptr, 0, nullptr, &size));
    EXPECT_EQ(size, 128u);
    import(signatureBytes("public1024"), 0);
    EXPECT_FALSE(CryptSignHashW(made, AT_SIGNATURE, nullptr, 0, nullptr, &size))
        << "a public key signs nothing";
    EXPECT_EQ(importError(signatureBytes("private2048")), 0u);
    EXPECT_TRUE(CryptSignHashW(made, AT_SIGNATURE, nullptr, 0, nullptr, &size));
    EXPECT_EQ(size, 256u);
}

TEST_F(CryptographyTest, BuffersAndStates) {
    const HCRYPTKEY key = import(signatureBytes("private1024"));
    uint32_t size = 100;
    Bytes bytes(128);
    EXPECT_FALSE(CryptExportKey(key, 0, PUBLICKEYBLOB, 0, bytes.data(), &size));
    EXPECT_EQ(GetLastError(), uint32_t(ERROR_MORE_DATA));
    EXPECT_EQ(size, 148u);
    const HCRYPTHASH made = hash("ab");
    size = 127;
    EXPECT_FALSE(CryptSignHashW(made, AT_SIGNATURE, nullptr, 0, bytes.data(), &size));
    EXPECT_EQ(GetLastError(), uint32_t(ERROR_MORE_DATA));
    EXPECT_TRUE(CryptHashData(made, bytes.data(), 0, 0)) << "the hash is not finished yet";
    EXPECT_TRUE(CryptSignHashW(made, AT_SIGNATURE, nullptr, 0, bytes.data(), &size));
    EXPECT_FALSE(CryptHashData(made, bytes.data(), 1, 0));
    EXPECT_EQ(GetLastError(), uint32_t(NTE_BAD_HASH_STATE));
    EXPECT_TRUE(CryptVerifySignatureW(made, bytes.data(), size, key, nullptr, 0));
    EXPECT_FALSE(CryptVerifySignatureW(made, bytes.data(), size - 1, key, nullptr, 0));
    EXPECT_EQ(bytes, sign("ab"));
}

TEST_F(CryptographyTest, HandlesThatAreNone) {
    const HCRYPTKEY key = import(signatureBytes("private1024"));
    const HCRYPTHASH made = hash("");
    uint32_t size = 0;
    HCRYPTKEY other = 0;
    HCRYPTHASH otherHash = 0;
    EXPECT_FALSE(CryptDestroyHash(key));
    EXPECT_EQ(GetLastError(), uint32_t(ERROR_INVALID_HANDLE));
    EXPECT_FALSE(CryptDestroyKey(made));
    EXPECT_FALSE(CryptReleaseContext(key, 0));
    EXPECT_FALSE(CryptVerifySignatureW(made, nullptr, 0, made, nullptr, 0));
    EXPECT_EQ(GetLastError(), uint32_t(NTE_BAD_KEY));
    EXPECT_TRUE(CryptReleaseContext(context, 0));
    EXPECT_FALSE(CryptReleaseContext(context, 0));
    EXPECT_FALSE(CryptExportKey(key, 0, PUBLICKEYBLOB, 0, nullptr, &size)) << "gone with it";
    EXPECT_FALSE(CryptHashData(made, nullptr, 0, 0));
    EXPECT_FALSE(CryptGenKey(context, AT_SIGNATURE, 0, &other));
    EXPECT_FALSE(CryptCreateHash(context, CALG_MD5, 0, 0, &otherHash));

    HCRYPTPROV none = 0;
    EXPECT_FALSE(CryptAcquireContextW(&none, nullptr, nullptr, 2, CRYPT_VERIFYCONTEXT));
    EXPECT_EQ(GetLastError(), uint32_t(NTE_PROV_TYPE_NOT_DEF));
    EXPECT_FALSE(CryptAcquireContextW(&none, nullptr, nullptr, PROV_RSA_FULL, 0));
    EXPECT_EQ(GetLastError(), uint32_t(NTE_BAD_FLAGS));
    EXPECT_FALSE(CryptAcquireContextW(&none, L"keys", nullptr, PROV_RSA_FULL, CRYPT_VERIFYCONTEXT));
    EXPECT_EQ(GetLastError(), uint32_t(NTE_BAD_KEYSET));
    context = newContext();
    EXPECT_FALSE(CryptCreateHash(context, 0x8004, 0, 0, &otherHash));
    EXPECT_EQ(GetLastError(), uint32_t(NTE_BAD_ALGID));
}

}  // namespace
}  // namespace sg
