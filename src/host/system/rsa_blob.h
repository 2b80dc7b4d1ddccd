#pragma once

#include <openssl/bn.h>
#include <openssl/evp.h>
#include <openssl/params.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

// Between the bytes of key blobs (rsa_key.h has their layout) and OpenSSL's numbers.
namespace sg {

struct BigNumberRelease {
    void operator()(BIGNUM* number) const { BN_clear_free(number); }
};
using BigNumber = std::unique_ptr<BIGNUM, BigNumberRelease>;

struct RsaNumbers {
    uint32_t algorithm = 0;
    BigNumber modulus, publicExponent;
    // Null in a public key.
    BigNumber prime1, prime2, exponent1, exponent2, coefficient, privateExponent;

    bool isPrivate() const { return privateExponent != nullptr; }
};

// The numbers of a blob whose form is sound and whose numbers make a key; otherwise `error`.
std::optional<RsaNumbers> readRsaBlob(std::span<const uint8_t> blob, uint32_t& error);

// A private blob when the numbers have the private part. Empty when a number is missing or too
// large for its place.
std::vector<uint8_t> writeRsaBlob(const RsaNumbers& numbers);

// A key's numbers; those that OpenSSL does not give are null.
RsaNumbers rsaNumbers(const EVP_PKEY* key, uint32_t algorithm, bool withPrivatePart);

struct ParametersRelease {
    void operator()(OSSL_PARAM* parameters) const { OSSL_PARAM_free(parameters); }
};
using RsaParameters = std::unique_ptr<OSSL_PARAM, ParametersRelease>;

// What OpenSSL makes a key of; null when memory is exhausted.
RsaParameters rsaParameters(const RsaNumbers& numbers);

}  // namespace sg
