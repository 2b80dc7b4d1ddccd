#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "base/export.h"

struct ossl_lib_ctx_st;
struct evp_pkey_st;

namespace sg {

// OpenSSL with its default provider, whatever the machine's configuration says: one that allows
// only approved algorithms would refuse MD5.
class SG_API CryptoLibrary {
  public:
    CryptoLibrary();
    ~CryptoLibrary();
    CryptoLibrary(const CryptoLibrary&) = delete;
    CryptoLibrary& operator=(const CryptoLibrary&) = delete;

    // Null when OpenSSL could not be set up; every operation on it fails.
    ossl_lib_ctx_st* context() const { return context_; }

  private:
    ossl_lib_ctx_st* context_;
    void* provider_;
};

using Md5Digest = std::array<uint8_t, 16>;

// The MD5 digest of bytes that arrive in parts.
class SG_API Md5Hash {
  public:
    explicit Md5Hash(const CryptoLibrary& library);
    bool add(std::span<const uint8_t> bytes);  // false when finished or when OpenSSL fails
    bool isFinished() const { return digest_.has_value(); }
    const std::optional<Md5Digest>& finish();  // the same every time; empty when OpenSSL fails

  private:
    struct Release {
        void operator()(void* context) const;
    };
    std::unique_ptr<void, Release> context_;
    std::optional<Md5Digest> digest_;
};

// An RSA key, public or a pair, in the blob form of the legacy cryptographic service. All numbers
// have their least significant byte first:
//
//     0  type, 6 public or 7 private          8  "RSA1" public, "RSA2" private
//     1  version, 2                          12  length of the modulus in bits
//     2  0, two bytes                        16  public exponent
//     4  algorithm, 0x2400 or 0xA400         20  modulus
//
// In a private blob there follow, each half as long as the modulus, the primes p and q, the
// exponents d mod p-1 and d mod q-1 and the coefficient 1/q mod p, and then, as long as the
// modulus, the private exponent d.
class SG_API RsaKey {
  public:
    // A new pair with the public exponent 65537; nothing when OpenSSL refuses the length.
    static std::optional<RsaKey> generate(const CryptoLibrary& library, uint32_t bits,
                                          uint32_t algorithm);
    // The key of a blob. Otherwise `error` says why there is none (NTE_BAD_TYPE, NTE_BAD_VER,
    // NTE_BAD_ALGID, NTE_BAD_DATA): a private blob's numbers must belong together.
    static std::optional<RsaKey> fromBlob(const CryptoLibrary& library,
                                          std::span<const uint8_t> blob, uint32_t& error);

    bool isPrivate() const { return isPrivate_; }
    uint32_t algorithm() const { return algorithm_; }
    size_t modulusBytes() const { return modulusBytes_; }

    // Empty when OpenSSL fails, and for the private blob of a public key.
    std::vector<uint8_t> publicBlob() const;
    std::vector<uint8_t> privateBlob() const;

    // The signature of a digest, PKCS #1 version 1.5, least significant byte first; empty on
    // failure. Needs the pair.
    std::vector<uint8_t> sign(const CryptoLibrary& library, const Md5Digest& digest) const;
    bool verify(const CryptoLibrary& library, const Md5Digest& digest,
                std::span<const uint8_t> signature) const;

  private:
    RsaKey(std::shared_ptr<evp_pkey_st> key, uint32_t algorithm, bool isPrivate);

    std::shared_ptr<evp_pkey_st> key_;
    uint32_t algorithm_;
    bool isPrivate_;
    size_t modulusBytes_;
};

}  // namespace sg
