// A signature over a short text with a given key of 1024 bits, as LISP asks for it: context, key
// and hash are made for it and released after it; and verifying one.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string_view>
#include <vector>

#include "host/seam/host.h"
#include "platform/win/cryptography.h"

namespace {

using Bytes = std::vector<uint8_t>;

constexpr std::string_view kText = "The quick brown fox jumps over the lazy dog";

void require(bool done) {
    if (!done) std::abort();
}

HCRYPTPROV newContext() {
    HCRYPTPROV context = 0;
    require(CryptAcquireContextW(&context, nullptr, nullptr, PROV_RSA_FULL, CRYPT_VERIFYCONTEXT));
    return context;
}

Bytes exported(HCRYPTKEY key, uint32_t type) {
    uint32_t size = 0;
    require(CryptExportKey(key, 0, type, 0, nullptr, &size));
    Bytes bytes(size);
    require(CryptExportKey(key, 0, type, 0, bytes.data(), &size));
    return bytes;
}

HCRYPTKEY imported(HCRYPTPROV context, const Bytes& blob) {
    HCRYPTKEY key = 0;
    require(CryptImportKey(context, blob.data(), static_cast<uint32_t>(blob.size()), 0, 0, &key));
    return key;
}

HCRYPTHASH hashed(HCRYPTPROV context) {
    HCRYPTHASH hash = 0;
    require(CryptCreateHash(context, CALG_MD5, 0, 0, &hash));
    require(CryptHashData(hash, reinterpret_cast<const uint8_t*>(kText.data()), kText.size(), 0));
    return hash;
}

Bytes signature(const Bytes& privateKey) {
    const HCRYPTPROV context = newContext();
    imported(context, privateKey);
    const HCRYPTHASH hash = hashed(context);
    uint32_t size = 0;
    require(CryptSignHashW(hash, AT_SIGNATURE, nullptr, 0, nullptr, &size));
    Bytes bytes(size);
    require(CryptSignHashW(hash, AT_SIGNATURE, nullptr, 0, bytes.data(), &size));
    require(CryptReleaseContext(context, 0));
    return bytes;
}

struct Keys {
    Keys() : host({}) {
        const HCRYPTPROV context = newContext();
        HCRYPTKEY key = 0;
        require(CryptGenKey(context, AT_SIGNATURE, CRYPT_EXPORTABLE, &key));
        publicKey = exported(key, PUBLICKEYBLOB);
        privateKey = exported(key, PRIVATEKEYBLOB);
        require(CryptReleaseContext(context, 0));
    }
    sg::Host host;
    Bytes publicKey, privateKey;
};

void signText(benchmark::State& state) {
    const Keys keys;
    for (auto _ : state)
        benchmark::DoNotOptimize(signature(keys.privateKey));
}

void verifyText(benchmark::State& state) {
    const Keys keys;
    const Bytes bytes = signature(keys.privateKey);
    for (auto _ : state) {
        const HCRYPTPROV context = newContext();
        const HCRYPTKEY key = imported(context, keys.publicKey);
        require(CryptVerifySignatureW(hashed(context), bytes.data(),
                                      static_cast<uint32_t>(bytes.size()), key, nullptr, 0));
        require(CryptReleaseContext(context, 0));
    }
}

BENCHMARK(signText)->Unit(benchmark::kMicrosecond);
BENCHMARK(verifyText)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
