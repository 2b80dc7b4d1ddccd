#pragma once

#include <cstdint>

#include "base/export.h"

// The system's legacy cryptographic service, as far as signatures need it: RSA keys and MD5 hashes.
// Every operation answers false on failure, with the reason in GetLastError(): one of the numbers
// below or of platform/win/system.h. An operation that gives bytes answers their number when its
// buffer is null, and ERROR_MORE_DATA with their number when the buffer is too small.

using HCRYPTPROV = uintptr_t;
using HCRYPTKEY = uintptr_t;
using HCRYPTHASH = uintptr_t;
using ALG_ID = uint32_t;

enum : uint32_t {
    PROV_RSA_FULL = 1,
    CRYPT_VERIFYCONTEXT = 0xF0000000,  // of CryptAcquireContextW: nothing outlives the context
    CRYPT_EXPORTABLE = 1,              // of a key: its private part may be exported
    AT_KEYEXCHANGE = 1,
    AT_SIGNATURE = 2,
    PUBLICKEYBLOB = 6,
    PRIVATEKEYBLOB = 7,
};

enum : ALG_ID {
    CALG_MD5 = 0x8003,
    CALG_RSA_SIGN = 0x2400,
    CALG_RSA_KEYX = 0xA400,
};

enum : uint32_t {
    NTE_BAD_UID = 0x80090001,
    NTE_BAD_HASH = 0x80090002,
    NTE_BAD_KEY = 0x80090003,
    NTE_BAD_DATA = 0x80090005,
    NTE_BAD_SIGNATURE = 0x80090006,
    NTE_BAD_VER = 0x80090007,
    NTE_BAD_ALGID = 0x80090008,
    NTE_BAD_FLAGS = 0x80090009,
    NTE_BAD_TYPE = 0x8009000A,
    NTE_BAD_KEY_STATE = 0x8009000B,   // the key may not be exported
    NTE_BAD_HASH_STATE = 0x8009000C,  // the hash is finished
    NTE_NO_KEY = 0x8009000D,
    NTE_BAD_KEYSET = 0x80090016,
    NTE_PROV_TYPE_NOT_DEF = 0x80090017,
    NTE_KEYSET_NOT_DEF = 0x80090019,
    NTE_FAIL = 0x80090020,
};

// A context with no keys. `container` and `providerName` are null, `type` is PROV_RSA_FULL and
// `flags` CRYPT_VERIFYCONTEXT: this host keeps no keys.
SG_API bool CryptAcquireContextW(HCRYPTPROV* provider, const wchar_t* container,
                                 const wchar_t* providerName, uint32_t type, uint32_t flags);
// Releases the context with its keys and hashes. `flags` is 0.
SG_API bool CryptReleaseContext(HCRYPTPROV provider, uint32_t flags);

// A new key pair, which becomes the context's pair for `algorithm`: AT_SIGNATURE or AT_KEYEXCHANGE.
// The upper half of `flags` is the length in bits, 0 for 1024; the public exponent is 65537.
SG_API bool CryptGenKey(HCRYPTPROV provider, ALG_ID algorithm, uint32_t flags, HCRYPTKEY* key);
// A key from the bytes of a PUBLICKEYBLOB or PRIVATEKEYBLOB, 384 to 16384 bits; bytes behind the
// blob are ignored. A private key becomes the context's pair for its algorithm. `encryptedWith` is
// 0.
SG_API bool CryptImportKey(HCRYPTPROV provider, const uint8_t* data, uint32_t length,
                           HCRYPTKEY encryptedWith, uint32_t flags, HCRYPTKEY* key);
// The key as a PUBLICKEYBLOB or PRIVATEKEYBLOB. `encryptWith` and `flags` are 0.
SG_API bool CryptExportKey(HCRYPTKEY key, HCRYPTKEY encryptWith, uint32_t blobType, uint32_t flags,
                           uint8_t* data, uint32_t* length);
SG_API bool CryptDestroyKey(HCRYPTKEY key);

// `key` and `flags` are 0; `algorithm` is CALG_MD5.
SG_API bool CryptCreateHash(HCRYPTPROV provider, ALG_ID algorithm, HCRYPTKEY key, uint32_t flags,
                            HCRYPTHASH* hash);
SG_API bool CryptHashData(HCRYPTHASH hash, const uint8_t* data, uint32_t length, uint32_t flags);
// Signs the hash (PKCS #1, version 1.5) with the context's pair for `keySpec`, and finishes it. The
// signature is as long as the modulus, its least significant byte first. `description` is null.
SG_API bool CryptSignHashW(HCRYPTHASH hash, uint32_t keySpec, const wchar_t* description,
                           uint32_t flags, uint8_t* signature, uint32_t* length);
// True when `signature` is the hash's under `key`; finishes the hash.
SG_API bool CryptVerifySignatureW(HCRYPTHASH hash, const uint8_t* signature, uint32_t length,
                                  HCRYPTKEY key, const wchar_t* description, uint32_t flags);
SG_API bool CryptDestroyHash(HCRYPTHASH hash);
