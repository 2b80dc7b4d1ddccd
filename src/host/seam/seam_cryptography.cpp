#include <algorithm>
#include <vector>

#include "host/seam/host.h"
#include "host/system/cryptography.h"
#include "platform/win/cryptography.h"
#include "platform/win/system.h"

// platform/win/cryptography.h on the Host's service.

namespace {

using sg::Host;

sg::Cryptography& service() {
    return Host::the().cryptography();
}

// What an operation answers that ended with `error`.
bool done(uint32_t error) {
    if (error != 0) SetLastError(error);
    return error == 0;
}

bool refusesBytes(const uint8_t* data, uint32_t length) {
    return data == nullptr && length != 0;
}

// Gives `bytes` to a caller whose buffer has room for *length of them.
uint32_t deliver(const std::vector<uint8_t>& bytes, uint8_t* buffer, uint32_t* length) {
    const uint32_t room = *length;
    *length = static_cast<uint32_t>(bytes.size());
    if (buffer == nullptr) return 0;
    if (room < bytes.size()) return ERROR_MORE_DATA;
    std::copy(bytes.begin(), bytes.end(), buffer);
    return 0;
}

}  // namespace

bool CryptAcquireContextW(HCRYPTPROV* provider, const wchar_t* container,
                          const wchar_t* providerName, uint32_t type, uint32_t flags) {
    if (provider == nullptr) return done(ERROR_INVALID_PARAMETER);
    if (container != nullptr) return done(NTE_BAD_KEYSET);
    if (providerName != nullptr) return done(NTE_KEYSET_NOT_DEF);
    return done(service().acquireContext(type, flags, *provider));
}

bool CryptReleaseContext(HCRYPTPROV provider, uint32_t flags) {
    if (flags != 0) return done(NTE_BAD_FLAGS);
    return done(service().releaseContext(provider));
}

bool CryptGenKey(HCRYPTPROV provider, ALG_ID algorithm, uint32_t flags, HCRYPTKEY* key) {
    if (key == nullptr) return done(ERROR_INVALID_PARAMETER);
    return done(service().generateKey(provider, algorithm, flags, *key));
}

bool CryptImportKey(HCRYPTPROV provider, const uint8_t* data, uint32_t length,
                    HCRYPTKEY encryptedWith, uint32_t flags, HCRYPTKEY* key) {
    if (key == nullptr || refusesBytes(data, length)) return done(ERROR_INVALID_PARAMETER);
    if (encryptedWith != 0) return done(NTE_BAD_KEY);
    return done(service().importKey(provider, {data, length}, flags, *key));
}

bool CryptExportKey(HCRYPTKEY key, HCRYPTKEY encryptWith, uint32_t blobType, uint32_t flags,
                    uint8_t* data, uint32_t* length) {
    if (length == nullptr) return done(ERROR_INVALID_PARAMETER);
    if (flags != 0) return done(NTE_BAD_FLAGS);
    if (encryptWith != 0) return done(NTE_BAD_KEY);
    std::vector<uint8_t> bytes;
    const uint32_t error = service().exportKey(key, blobType, bytes);
    return done(error != 0 ? error : deliver(bytes, data, length));
}

bool CryptDestroyKey(HCRYPTKEY key) {
    return done(service().destroyKey(key));
}

bool CryptCreateHash(HCRYPTPROV provider, ALG_ID algorithm, HCRYPTKEY key, uint32_t flags,
                     HCRYPTHASH* hash) {
    if (hash == nullptr) return done(ERROR_INVALID_PARAMETER);
    if (flags != 0) return done(NTE_BAD_FLAGS);
    if (key != 0) return done(NTE_BAD_KEY);
    return done(service().createHash(provider, algorithm, *hash));
}

bool CryptHashData(HCRYPTHASH hash, const uint8_t* data, uint32_t length, uint32_t flags) {
    if (refusesBytes(data, length)) return done(ERROR_INVALID_PARAMETER);
    if (flags != 0) return done(NTE_BAD_FLAGS);
    return done(service().hashData(hash, {data, length}));
}

bool CryptSignHashW(HCRYPTHASH hash, uint32_t keySpec, const wchar_t* description, uint32_t flags,
                    uint8_t* signature, uint32_t* length) {
    if (length == nullptr || description != nullptr) return done(ERROR_INVALID_PARAMETER);
    if (flags != 0) return done(NTE_BAD_FLAGS);
    size_t needed = 0;
    if (const uint32_t error = service().signatureLength(hash, keySpec, needed)) return done(error);
    // A hash is finished only when its signature can be given.
    std::vector<uint8_t> bytes(needed);
    if (signature == nullptr || *length < needed) return done(deliver(bytes, signature, length));
    const uint32_t error = service().signHash(hash, keySpec, bytes);
    return done(error != 0 ? error : deliver(bytes, signature, length));
}

bool CryptVerifySignatureW(HCRYPTHASH hash, const uint8_t* signature, uint32_t length,
                           HCRYPTKEY key, const wchar_t* description, uint32_t flags) {
    if (refusesBytes(signature, length) || description != nullptr) {
        return done(ERROR_INVALID_PARAMETER);
    }
    if (flags != 0) return done(NTE_BAD_FLAGS);
    return done(service().verifySignature(hash, {signature, length}, key));
}

bool CryptDestroyHash(HCRYPTHASH hash) {
    return done(service().destroyHash(hash));
}
