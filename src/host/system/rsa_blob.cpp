#include "host/system/rsa_blob.h"

#include <openssl/core_names.h>
#include <openssl/err.h>
#include <openssl/param_build.h>

#include "platform/win/cryptography.h"

namespace sg {
namespace {

constexpr size_t kHeaderBytes = 20;
constexpr uint8_t kVersion = 2;
constexpr uint32_t kPublicMagic = 0x31415352;   // "RSA1"
constexpr uint32_t kPrivateMagic = 0x32415352;  // "RSA2"
constexpr uint32_t kSmallestBits = 384;
constexpr uint32_t kLargestBits = 16384;

uint32_t wordAt(std::span<const uint8_t> bytes, size_t at) {
    return uint32_t(bytes[at]) | uint32_t(bytes[at + 1]) << 8 | uint32_t(bytes[at + 2]) << 16 |
           uint32_t(bytes[at + 3]) << 24;
}

void appendWord(std::vector<uint8_t>& out, uint32_t word) {
    for (int shift = 0; shift < 32; shift += 8)
        out.push_back(static_cast<uint8_t>(word >> shift));
}

BigNumber smallNumber(uint32_t value) {
    BigNumber number(BN_new());
    if (number != nullptr) BN_set_word(number.get(), value);
    return number;
}

// Takes numbers off a blob, one behind the other.
class NumberReader {
  public:
    explicit NumberReader(std::span<const uint8_t> bytes) : bytes_(bytes) {}
    BigNumber next(size_t length) {
        const std::span<const uint8_t> number = bytes_.first(length);
        bytes_ = bytes_.subspan(length);
        return BigNumber(BN_lebin2bn(number.data(), static_cast<int>(length), nullptr));
    }

  private:
    std::span<const uint8_t> bytes_;
};

// 0 when the blob's header is that of an RSA key.
uint32_t headerError(std::span<const uint8_t> blob) {
    if (blob.size() < kHeaderBytes) return NTE_BAD_DATA;
    if (blob[0] != PUBLICKEYBLOB && blob[0] != PRIVATEKEYBLOB) return NTE_BAD_TYPE;
    if (blob[1] != kVersion) return NTE_BAD_VER;
    const uint32_t algorithm = wordAt(blob, 4);
    if (algorithm != CALG_RSA_SIGN && algorithm != CALG_RSA_KEYX) return NTE_BAD_ALGID;
    const uint32_t magic = wordAt(blob, 8);
    const uint32_t bits = wordAt(blob, 12);
    const bool sound = magic == (blob[0] == PUBLICKEYBLOB ? kPublicMagic : kPrivateMagic) &&
                       bits >= kSmallestBits && bits <= kLargestBits && bits % 8 == 0;
    if (!sound) return NTE_BAD_DATA;
    return 0;
}

size_t halfOf(size_t modulusBytes) {
    return (modulusBytes + 1) / 2;
}

size_t blobBytes(size_t modulusBytes, bool isPrivate) {
    return kHeaderBytes + modulusBytes + (isPrivate ? 5 * halfOf(modulusBytes) + modulusBytes : 0);
}

bool isSoundPublicKey(const RsaNumbers& numbers, uint32_t bits) {
    return BN_num_bits(numbers.modulus.get()) == static_cast<int>(bits) &&
           BN_is_odd(numbers.modulus.get()) && BN_is_odd(numbers.publicExponent.get()) &&
           !BN_is_one(numbers.publicExponent.get());
}

// Sums of a key's numbers. A step that OpenSSL cannot do makes every later answer false.
class KeyArithmetic {
  public:
    KeyArithmetic() : context_(BN_CTX_secure_new()), result_(BN_new()), less_(BN_new()) {}
    ~KeyArithmetic() { BN_CTX_free(context_); }
    KeyArithmetic(const KeyArithmetic&) = delete;
    KeyArithmetic& operator=(const KeyArithmetic&) = delete;

    bool productIs(const BigNumber& a, const BigNumber& b, const BigNumber& expected) {
        return ready() && BN_mul(result_.get(), a.get(), b.get(), context_) == 1 &&
               BN_cmp(result_.get(), expected.get()) == 0;
    }
    // a mod (prime - 1) == expected
    bool remainderIs(const BigNumber& a, const BigNumber& prime, const BigNumber& expected) {
        return lessOne(prime) && BN_mod(result_.get(), a.get(), less_.get(), context_) == 1 &&
               BN_cmp(result_.get(), expected.get()) == 0;
    }
    // a * b mod (prime - 1) == 1
    bool areInverse(const BigNumber& a, const BigNumber& b, const BigNumber& prime) {
        return lessOne(prime) && isOneModulo(a, b, less_.get());
    }
    // a * b mod m == 1
    bool isOneModulo(const BigNumber& a, const BigNumber& b, const BIGNUM* m) {
        return ready() && BN_mod_mul(result_.get(), a.get(), b.get(), m, context_) == 1 &&
               BN_is_one(result_.get());
    }

  private:
    bool ready() const { return context_ != nullptr && result_ != nullptr && less_ != nullptr; }
    bool lessOne(const BigNumber& prime) {
        return ready() && BN_sub(less_.get(), prime.get(), BN_value_one()) == 1;
    }

    BN_CTX* context_;
    BigNumber result_, less_;
};

// Whether the private numbers belong together. Primality is not tested: the largest keys would need
// minutes for it, and a signature made with factors that are no primes is just not valid.
bool isSoundPair(const RsaNumbers& n) {
    for (const BigNumber* prime : {&n.prime1, &n.prime2}) {
        if (!BN_is_odd(prime->get()) || BN_is_one(prime->get())) return false;
    }
    KeyArithmetic sums;
    return sums.productIs(n.prime1, n.prime2, n.modulus) &&
           sums.remainderIs(n.privateExponent, n.prime1, n.exponent1) &&
           sums.remainderIs(n.privateExponent, n.prime2, n.exponent2) &&
           sums.areInverse(n.privateExponent, n.publicExponent, n.prime1) &&
           sums.areInverse(n.privateExponent, n.publicExponent, n.prime2) &&
           sums.isOneModulo(n.coefficient, n.prime2, n.prime1.get());
}

bool areAllThere(std::initializer_list<const BigNumber*> numbers) {
    for (const BigNumber* number : numbers) {
        if (*number == nullptr) return false;
    }
    return true;
}

bool appendNumber(std::vector<uint8_t>& out, const BigNumber& number, size_t length) {
    const size_t start = out.size();
    out.resize(start + length);
    return number != nullptr &&
           BN_bn2lebinpad(number.get(), out.data() + start, static_cast<int>(length)) >= 0;
}

BigNumber parameterOf(const EVP_PKEY* key, const char* name) {
    BIGNUM* number = nullptr;
    EVP_PKEY_get_bn_param(key, name, &number);
    return BigNumber(number);
}

// Every number of a key and what OpenSSL calls it.
template <class Numbers, class F>
void forEachNumber(Numbers& numbers, bool withPrivatePart, F&& f) {
    f(numbers.modulus, OSSL_PKEY_PARAM_RSA_N);
    f(numbers.publicExponent, OSSL_PKEY_PARAM_RSA_E);
    if (!withPrivatePart) return;
    f(numbers.prime1, OSSL_PKEY_PARAM_RSA_FACTOR1);
    f(numbers.prime2, OSSL_PKEY_PARAM_RSA_FACTOR2);
    f(numbers.exponent1, OSSL_PKEY_PARAM_RSA_EXPONENT1);
    f(numbers.exponent2, OSSL_PKEY_PARAM_RSA_EXPONENT2);
    f(numbers.coefficient, OSSL_PKEY_PARAM_RSA_COEFFICIENT1);
    f(numbers.privateExponent, OSSL_PKEY_PARAM_RSA_D);
}

}  // namespace

std::optional<RsaNumbers> readRsaBlob(std::span<const uint8_t> blob, uint32_t& error) {
    error = headerError(blob);
    if (error != 0) return std::nullopt;
    error = NTE_BAD_DATA;
    const bool isPrivate = blob[0] == PRIVATEKEYBLOB;
    const uint32_t bits = wordAt(blob, 12);
    const size_t length = bits / 8, half = halfOf(length);
    if (blob.size() < blobBytes(length, isPrivate)) return std::nullopt;

    RsaNumbers numbers;
    numbers.algorithm = wordAt(blob, 4);
    numbers.publicExponent = smallNumber(wordAt(blob, 16));
    NumberReader reader(blob.subspan(kHeaderBytes));
    numbers.modulus = reader.next(length);
    if (!areAllThere({&numbers.publicExponent, &numbers.modulus})) return std::nullopt;
    if (!isSoundPublicKey(numbers, bits)) return std::nullopt;
    if (isPrivate) {
        for (BigNumber* number : {&numbers.prime1, &numbers.prime2, &numbers.exponent1,
                                  &numbers.exponent2, &numbers.coefficient}) {
            *number = reader.next(half);
        }
        numbers.privateExponent = reader.next(length);
        if (!areAllThere({&numbers.prime1, &numbers.prime2, &numbers.exponent1, &numbers.exponent2,
                          &numbers.coefficient, &numbers.privateExponent}) ||
            !isSoundPair(numbers)) {
            ERR_clear_error();
            return std::nullopt;
        }
    }
    error = 0;
    return numbers;
}

std::vector<uint8_t> writeRsaBlob(const RsaNumbers& numbers) {
    if (!areAllThere({&numbers.modulus, &numbers.publicExponent})) return {};
    const bool isPrivate = numbers.isPrivate();
    const size_t length = static_cast<size_t>(BN_num_bytes(numbers.modulus.get()));
    std::vector<uint8_t> out{uint8_t(isPrivate ? PRIVATEKEYBLOB : PUBLICKEYBLOB), kVersion, 0, 0};
    appendWord(out, numbers.algorithm);
    appendWord(out, isPrivate ? kPrivateMagic : kPublicMagic);
    appendWord(out, static_cast<uint32_t>(length) * 8);
    appendWord(out, static_cast<uint32_t>(BN_get_word(numbers.publicExponent.get())));
    bool written = appendNumber(out, numbers.modulus, length);
    if (isPrivate) {
        for (const BigNumber* number : {&numbers.prime1, &numbers.prime2, &numbers.exponent1,
                                        &numbers.exponent2, &numbers.coefficient}) {
            written = written && appendNumber(out, *number, halfOf(length));
        }
        written = written && appendNumber(out, numbers.privateExponent, length);
    }
    if (!written) out.clear();
    return out;
}

RsaNumbers rsaNumbers(const EVP_PKEY* key, uint32_t algorithm, bool withPrivatePart) {
    RsaNumbers numbers;
    numbers.algorithm = algorithm;
    forEachNumber(numbers, withPrivatePart,
                  [&](BigNumber& number, const char* name) { number = parameterOf(key, name); });
    ERR_clear_error();
    return numbers;
}

RsaParameters rsaParameters(const RsaNumbers& numbers) {
    const std::unique_ptr<OSSL_PARAM_BLD, decltype(&OSSL_PARAM_BLD_free)> builder(
        OSSL_PARAM_BLD_new(), &OSSL_PARAM_BLD_free);
    bool pushed = builder != nullptr;
    forEachNumber(numbers, numbers.isPrivate(), [&](const BigNumber& number, const char* name) {
        pushed = pushed && OSSL_PARAM_BLD_push_BN(builder.get(), name, number.get()) == 1;
    });
    return RsaParameters(pushed ? OSSL_PARAM_BLD_to_param(builder.get()) : nullptr);
}

}  // namespace sg
