#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "base/export.h"
#include "host/system/rsa_key.h"

namespace sg {

// The legacy cryptographic service of platform/win/cryptography.h: contexts and the keys and hashes
// that belong to them, by number. Every operation answers 0 or the reason why it failed; one that
// gives bytes has them in `bytes`, which may then be too long for its caller.
class SG_API Cryptography {
  public:
    using Handle = uintptr_t;

    Cryptography() = default;
    ~Cryptography();
    Cryptography(const Cryptography&) = delete;
    Cryptography& operator=(const Cryptography&) = delete;

    uint32_t acquireContext(uint32_t type, uint32_t flags, Handle& context);
    uint32_t releaseContext(Handle context);

    uint32_t generateKey(Handle context, uint32_t algorithm, uint32_t flags, Handle& key);
    uint32_t importKey(Handle context, std::span<const uint8_t> blob, uint32_t flags, Handle& key);
    uint32_t exportKey(Handle key, uint32_t blobType, std::vector<uint8_t>& bytes) const;
    uint32_t destroyKey(Handle key);

    uint32_t createHash(Handle context, uint32_t algorithm, Handle& hash);
    uint32_t hashData(Handle hash, std::span<const uint8_t> bytes);
    // The length of a signature, without making it.
    uint32_t signatureLength(Handle hash, uint32_t keySpec, size_t& length) const;
    uint32_t signHash(Handle hash, uint32_t keySpec, std::vector<uint8_t>& bytes);
    uint32_t verifySignature(Handle hash, std::span<const uint8_t> signature, Handle key);
    uint32_t destroyHash(Handle hash);

  private:
    struct Context {
        std::optional<RsaKey> signature, exchange;  // the pairs that hashes are signed with
    };
    struct Key {
        Handle context;
        RsaKey key;
        bool exportable;
    };
    struct Hash {
        Handle context;
        Md5Hash hash;
    };

    const CryptoLibrary& library();
    Handle addKey(Handle context, RsaKey key, bool exportable);
    // The pair of a hash's context; null when there is none, with the reason in `error`.
    const RsaKey* signingKey(const Hash& hash, uint32_t keySpec, uint32_t& error) const;

    std::unique_ptr<CryptoLibrary> library_;  // made on first use
    Handle last_ = 0;
    std::map<Handle, Context> contexts_;
    std::map<Handle, Key> keys_;
    std::map<Handle, Hash> hashes_;
};

}  // namespace sg
