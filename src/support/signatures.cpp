#include "support/signatures.h"

#include "platform/win/cryptography.h"

namespace sg {
namespace {

// A context, and the key and the hash in it, which end in the reverse order. Each step is made when
// the one before it has succeeded.
class Signing {
  public:
    Signing() {
        if (!CryptAcquireContextW(&context_, nullptr, nullptr, PROV_RSA_FULL,
                                  CRYPT_VERIFYCONTEXT)) {
            context_ = 0;
        }
    }
    ~Signing() {
        if (hash_ != 0) CryptDestroyHash(hash_);
        if (key_ != 0) CryptDestroyKey(key_);
        if (context_ != 0) CryptReleaseContext(context_, 0);
    }
    Signing(const Signing&) = delete;
    Signing& operator=(const Signing&) = delete;

    bool importKey(std::span<const uint8_t> blob, uint32_t flags) {
        return context_ != 0 &&
               CryptImportKey(context_, blob.data(), length(blob), 0, flags, &key_);
    }
    bool generateKey() {
        return context_ != 0 && CryptGenKey(context_, AT_SIGNATURE, CRYPT_EXPORTABLE, &key_);
    }
    bool exportKey(uint32_t blobType, std::vector<uint8_t>& blob) {
        return inTwoCalls(blob, [&](uint8_t* data, uint32_t* size) {
            return CryptExportKey(key_, 0, blobType, 0, data, size);
        });
    }
    bool hash(std::span<const uint8_t> bytes) {
        return CryptCreateHash(context_, CALG_MD5, 0, 0, &hash_) &&
               CryptHashData(hash_, bytes.data(), length(bytes), 0);
    }
    bool sign(std::vector<uint8_t>& signature) {
        return inTwoCalls(signature, [&](uint8_t* data, uint32_t* size) {
            return CryptSignHashW(hash_, AT_SIGNATURE, nullptr, 0, data, size);
        });
    }
    bool verify(std::span<const uint8_t> signature) {
        return CryptVerifySignatureW(hash_, signature.data(), length(signature), key_, nullptr, 0);
    }

  private:
    static uint32_t length(std::span<const uint8_t> bytes) {
        return static_cast<uint32_t>(bytes.size());
    }
    // First the size, then the bytes into a buffer of that size.
    template <class F>
    static bool inTwoCalls(std::vector<uint8_t>& bytes, F&& call) {
        uint32_t size = 0;
        if (!call(nullptr, &size)) return false;
        bytes.resize(size);
        return call(bytes.data(), &size);
    }

    HCRYPTPROV context_ = 0;
    HCRYPTKEY key_ = 0;
    HCRYPTHASH hash_ = 0;
};

}  // namespace

std::optional<SignedBytes> signBytes(std::span<const uint8_t> bytes,
                                     std::span<const uint8_t> privateKey) {
    Signing signing;
    SignedBytes result;
    const bool hasKey = privateKey.empty() ? signing.generateKey()
                                           : signing.importKey(privateKey, CRYPT_EXPORTABLE);
    const bool made = hasKey && signing.exportKey(PRIVATEKEYBLOB, result.privateKey) &&
                      signing.exportKey(PUBLICKEYBLOB, result.publicKey) && signing.hash(bytes) &&
                      signing.sign(result.signature);
    return made ? std::optional(std::move(result)) : std::nullopt;
}

bool verifyBytes(std::span<const uint8_t> bytes, std::span<const uint8_t> publicKey,
                 std::span<const uint8_t> signature) {
    Signing signing;
    return signing.importKey(publicKey, 0) && signing.hash(bytes) && signing.verify(signature);
}

}  // namespace sg
