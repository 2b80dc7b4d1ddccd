#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

// RSA signatures over MD5 hashes, made by the system's cryptographic service. Keys are its key
// blobs, signatures its own.
namespace sg {

struct SignedBytes {
    std::vector<uint8_t> publicKey, privateKey, signature;
};

// Signs bytes with a private key; without one, with a pair that is made for it. nullopt when the
// key does not import or the service fails.
std::optional<SignedBytes> signBytes(std::span<const uint8_t> bytes,
                                     std::span<const uint8_t> privateKey);

bool verifyBytes(std::span<const uint8_t> bytes, std::span<const uint8_t> publicKey,
                 std::span<const uint8_t> signature);

}  // namespace sg
