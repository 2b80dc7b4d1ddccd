#include "host/system/cryptography.h"

#include <utility>

#include "platform/win/cryptography.h"
#include "platform/win/system.h"

namespace sg {
namespace {

constexpr uint32_t kDefaultBits = 1024;
constexpr uint32_t kLargestGeneratedBits = 16384;

uint32_t errorUnless(bool done, uint32_t error) {
    return done ? 0 : error;
}

template <class Map>
auto* find(Map& map, Cryptography::Handle handle) {
    const auto found = map.find(handle);
    return found != map.end() ? &found->second : nullptr;
}

template <class Map>
void eraseOf(Map& map, Cryptography::Handle context) {
    std::erase_if(map, [&](const auto& entry) { return entry.second.context == context; });
}

}  // namespace

Cryptography::~Cryptography() = default;

const CryptoLibrary& Cryptography::library() {
    if (library_ == nullptr) library_ = std::make_unique<CryptoLibrary>();
    return *library_;
}

uint32_t Cryptography::acquireContext(uint32_t type, uint32_t flags, Handle& context) {
    if (type != PROV_RSA_FULL) return NTE_PROV_TYPE_NOT_DEF;
    if (flags != CRYPT_VERIFYCONTEXT) return NTE_BAD_FLAGS;
    contexts_.emplace(++last_, Context{});
    context = last_;
    return 0;
}

uint32_t Cryptography::releaseContext(Handle context) {
    if (contexts_.erase(context) == 0) return ERROR_INVALID_HANDLE;
    eraseOf(keys_, context);
    eraseOf(hashes_, context);
    return 0;
}

Cryptography::Handle Cryptography::addKey(Handle context, RsaKey key, bool exportable) {
    if (key.isPrivate()) {
        Context& owner = contexts_.at(context);
        (key.algorithm() == CALG_RSA_SIGN ? owner.signature : owner.exchange) = key;
    }
    keys_.emplace(++last_, Key{context, std::move(key), exportable});
    return last_;
}

uint32_t Cryptography::generateKey(Handle context, uint32_t algorithm, uint32_t flags,
                                   Handle& key) {
    if (find(contexts_, context) == nullptr) return ERROR_INVALID_HANDLE;
    if (algorithm != AT_SIGNATURE && algorithm != AT_KEYEXCHANGE) return NTE_BAD_ALGID;
    const uint32_t bits = flags >> 16 != 0 ? flags >> 16 : kDefaultBits;
    if ((flags & 0xFFFF & ~CRYPT_EXPORTABLE) != 0) return NTE_BAD_FLAGS;
    if (bits % 8 != 0 || bits > kLargestGeneratedBits) return NTE_BAD_FLAGS;
    const uint32_t kind = algorithm == AT_SIGNATURE ? CALG_RSA_SIGN : CALG_RSA_KEYX;
    std::optional<RsaKey> made = RsaKey::generate(library(), bits, kind);
    if (!made) return bits < kDefaultBits ? NTE_BAD_FLAGS : NTE_FAIL;
    key = addKey(context, *std::move(made), (flags & CRYPT_EXPORTABLE) != 0);
    return 0;
}

uint32_t Cryptography::importKey(Handle context, std::span<const uint8_t> blob, uint32_t flags,
                                 Handle& key) {
    if (find(contexts_, context) == nullptr) return ERROR_INVALID_HANDLE;
    if ((flags & ~CRYPT_EXPORTABLE) != 0) return NTE_BAD_FLAGS;
    uint32_t error = 0;
    std::optional<RsaKey> made = RsaKey::fromBlob(library(), blob, error);
    if (!made) return error;
    key = addKey(context, *std::move(made), (flags & CRYPT_EXPORTABLE) != 0);
    return 0;
}

uint32_t Cryptography::exportKey(Handle key, uint32_t blobType, std::vector<uint8_t>& bytes) const {
    const Key* const found = find(keys_, key);
    if (found == nullptr) return ERROR_INVALID_HANDLE;
    if (blobType == PUBLICKEYBLOB) {
        bytes = found->key.publicBlob();
    } else if (blobType != PRIVATEKEYBLOB) {
        return NTE_BAD_TYPE;
    } else if (!found->key.isPrivate()) {
        return NTE_BAD_KEY;
    } else if (!found->exportable) {
        return NTE_BAD_KEY_STATE;
    } else {
        bytes = found->key.privateBlob();
    }
    return errorUnless(!bytes.empty(), NTE_FAIL);
}

uint32_t Cryptography::destroyKey(Handle key) {
    return errorUnless(keys_.erase(key) != 0, ERROR_INVALID_HANDLE);
}

uint32_t Cryptography::createHash(Handle context, uint32_t algorithm, Handle& hash) {
    if (find(contexts_, context) == nullptr) return ERROR_INVALID_HANDLE;
    if (algorithm != CALG_MD5) return NTE_BAD_ALGID;
    hashes_.emplace(++last_, Hash{context, Md5Hash(library())});
    hash = last_;
    return 0;
}

uint32_t Cryptography::hashData(Handle hash, std::span<const uint8_t> bytes) {
    Hash* const found = find(hashes_, hash);
    if (found == nullptr) return ERROR_INVALID_HANDLE;
    if (found->hash.isFinished()) return NTE_BAD_HASH_STATE;
    return errorUnless(found->hash.add(bytes), NTE_FAIL);
}

const RsaKey* Cryptography::signingKey(const Hash& hash, uint32_t keySpec, uint32_t& error) const {
    const Context& context = contexts_.at(hash.context);
    const std::optional<RsaKey>& pair =
        keySpec == AT_SIGNATURE ? context.signature : context.exchange;
    error = 0;
    if (keySpec != AT_SIGNATURE && keySpec != AT_KEYEXCHANGE) {
        error = NTE_BAD_ALGID;
    } else if (!pair) {
        error = NTE_NO_KEY;
    }
    return error == 0 ? &*pair : nullptr;
}

uint32_t Cryptography::signatureLength(Handle hash, uint32_t keySpec, size_t& length) const {
    const Hash* const found = find(hashes_, hash);
    if (found == nullptr) return ERROR_INVALID_HANDLE;
    uint32_t error = 0;
    const RsaKey* const key = signingKey(*found, keySpec, error);
    if (key != nullptr) length = key->modulusBytes();
    return error;
}

uint32_t Cryptography::signHash(Handle hash, uint32_t keySpec, std::vector<uint8_t>& bytes) {
    Hash* const found = find(hashes_, hash);
    if (found == nullptr) return ERROR_INVALID_HANDLE;
    uint32_t error = 0;
    const RsaKey* const key = signingKey(*found, keySpec, error);
    if (key == nullptr) return error;
    const std::optional<Md5Digest>& digest = found->hash.finish();
    bytes = digest ? key->sign(library(), *digest) : std::vector<uint8_t>();
    return errorUnless(!bytes.empty(), NTE_FAIL);
}

uint32_t Cryptography::verifySignature(Handle hash, std::span<const uint8_t> signature,
                                       Handle key) {
    Hash* const found = find(hashes_, hash);
    if (found == nullptr) return ERROR_INVALID_HANDLE;
    const Key* const verifying = find(keys_, key);
    if (verifying == nullptr) return NTE_BAD_KEY;
    const std::optional<Md5Digest>& digest = found->hash.finish();
    if (!digest) return NTE_FAIL;
    return errorUnless(verifying->key.verify(library(), *digest, signature), NTE_BAD_SIGNATURE);
}

uint32_t Cryptography::destroyHash(Handle hash) {
    return errorUnless(hashes_.erase(hash) != 0, ERROR_INVALID_HANDLE);
}

}  // namespace sg
