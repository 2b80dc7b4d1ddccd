#include "host/system/rsa_key.h"

#include <openssl/core_names.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/provider.h>
#include <openssl/rsa.h>

#include <algorithm>
#include <utility>

#include "host/system/rsa_blob.h"
#include "platform/win/cryptography.h"

namespace sg {
namespace {

using KeyContext = std::unique_ptr<EVP_PKEY_CTX, decltype(&EVP_PKEY_CTX_free)>;

KeyContext contextOf(const CryptoLibrary& library, EVP_PKEY* key) {
    return {EVP_PKEY_CTX_new_from_pkey(library.context(), key, nullptr), &EVP_PKEY_CTX_free};
}

KeyContext rsaContext(const CryptoLibrary& library) {
    return {EVP_PKEY_CTX_new_from_name(library.context(), "RSA", nullptr), &EVP_PKEY_CTX_free};
}

std::shared_ptr<EVP_PKEY> owned(EVP_PKEY* key) {
    ERR_clear_error();
    return key != nullptr ? std::shared_ptr<EVP_PKEY>(key, &EVP_PKEY_free) : nullptr;
}

using Digest = std::unique_ptr<EVP_MD, decltype(&EVP_MD_free)>;

Digest md5(const CryptoLibrary& library) {
    return {EVP_MD_fetch(library.context(), "MD5", nullptr), &EVP_MD_free};
}

bool usePkcs1WithMd5(EVP_PKEY_CTX* context, const EVP_MD* digest) {
    return digest != nullptr && EVP_PKEY_CTX_set_rsa_padding(context, RSA_PKCS1_PADDING) > 0 &&
           EVP_PKEY_CTX_set_signature_md(context, digest) > 0;
}

}  // namespace

CryptoLibrary::CryptoLibrary()
    : context_(OSSL_LIB_CTX_new()),
      provider_(context_ != nullptr ? OSSL_PROVIDER_load(context_, "default") : nullptr) {}

CryptoLibrary::~CryptoLibrary() {
    if (provider_ != nullptr) OSSL_PROVIDER_unload(static_cast<OSSL_PROVIDER*>(provider_));
    OSSL_LIB_CTX_free(context_);
}

void Md5Hash::Release::operator()(void* context) const {
    EVP_MD_CTX_free(static_cast<EVP_MD_CTX*>(context));
}

Md5Hash::Md5Hash(const CryptoLibrary& library) {
    const Digest digest = md5(library);
    std::unique_ptr<void, Release> context(EVP_MD_CTX_new());
    const bool begun =
        digest != nullptr && context != nullptr &&
        EVP_DigestInit_ex2(static_cast<EVP_MD_CTX*>(context.get()), digest.get(), nullptr) == 1;
    if (begun) context_ = std::move(context);
    ERR_clear_error();
}

bool Md5Hash::add(std::span<const uint8_t> bytes) {
    if (context_ == nullptr || isFinished()) return false;
    return EVP_DigestUpdate(static_cast<EVP_MD_CTX*>(context_.get()), bytes.data(), bytes.size()) ==
           1;
}

const std::optional<Md5Digest>& Md5Hash::finish() {
    if (isFinished() || context_ == nullptr) return digest_;
    Md5Digest digest;
    unsigned length = 0;
    if (EVP_DigestFinal_ex(static_cast<EVP_MD_CTX*>(context_.get()), digest.data(), &length) == 1) {
        digest_ = digest;
    }
    ERR_clear_error();
    return digest_;
}

RsaKey::RsaKey(std::shared_ptr<EVP_PKEY> key, uint32_t algorithm, bool isPrivate)
    : key_(std::move(key)),
      algorithm_(algorithm),
      isPrivate_(isPrivate),
      modulusBytes_(static_cast<size_t>(EVP_PKEY_get_size(key_.get()))) {}

std::optional<RsaKey> RsaKey::generate(const CryptoLibrary& library, uint32_t bits,
                                       uint32_t algorithm) {
    const KeyContext context = rsaContext(library);
    EVP_PKEY* made = nullptr;
    if (context != nullptr && EVP_PKEY_keygen_init(context.get()) > 0 &&
        EVP_PKEY_CTX_set_rsa_keygen_bits(context.get(), static_cast<int>(bits)) > 0) {
        EVP_PKEY_generate(context.get(), &made);  // with OpenSSL's own exponent, which is 65537
    }
    std::shared_ptr<EVP_PKEY> key = owned(made);
    if (key == nullptr) return std::nullopt;
    return RsaKey(std::move(key), algorithm, true);
}

std::optional<RsaKey> RsaKey::fromBlob(const CryptoLibrary& library, std::span<const uint8_t> blob,
                                       uint32_t& error) {
    const std::optional<RsaNumbers> numbers = readRsaBlob(blob, error);
    if (!numbers) return std::nullopt;
    const KeyContext context = rsaContext(library);
    const RsaParameters parameters = rsaParameters(*numbers);
    EVP_PKEY* made = nullptr;
    const int selection = numbers->isPrivate() ? EVP_PKEY_KEYPAIR : EVP_PKEY_PUBLIC_KEY;
    if (context != nullptr && parameters != nullptr && EVP_PKEY_fromdata_init(context.get()) > 0) {
        EVP_PKEY_fromdata(context.get(), &made, selection, parameters.get());
    }
    std::shared_ptr<EVP_PKEY> key = owned(made);
    if (key == nullptr) {
        error = NTE_BAD_DATA;
        return std::nullopt;
    }
    return RsaKey(std::move(key), numbers->algorithm, numbers->isPrivate());
}

std::vector<uint8_t> RsaKey::publicBlob() const {
    return writeRsaBlob(rsaNumbers(key_.get(), algorithm_, false));
}

std::vector<uint8_t> RsaKey::privateBlob() const {
    if (!isPrivate_) return {};
    return writeRsaBlob(rsaNumbers(key_.get(), algorithm_, true));
}

std::vector<uint8_t> RsaKey::sign(const CryptoLibrary& library, const Md5Digest& digest) const {
    const KeyContext context = contextOf(library, key_.get());
    const Digest method = md5(library);
    std::vector<uint8_t> signature(modulusBytes_);
    size_t length = signature.size();
    const bool made =
        isPrivate_ && context != nullptr && EVP_PKEY_sign_init(context.get()) > 0 &&
        usePkcs1WithMd5(context.get(), method.get()) &&
        EVP_PKEY_sign(context.get(), signature.data(), &length, digest.data(), digest.size()) > 0;
    ERR_clear_error();
    if (!made || length != modulusBytes_) return {};
    std::reverse(signature.begin(), signature.end());
    return signature;
}

bool RsaKey::verify(const CryptoLibrary& library, const Md5Digest& digest,
                    std::span<const uint8_t> signature) const {
    if (signature.size() != modulusBytes_) return false;
    const std::vector<uint8_t> reversed(signature.rbegin(), signature.rend());
    const KeyContext context = contextOf(library, key_.get());
    const Digest method = md5(library);
    const bool valid = context != nullptr && EVP_PKEY_verify_init(context.get()) > 0 &&
                       usePkcs1WithMd5(context.get(), method.get()) &&
                       EVP_PKEY_verify(context.get(), reversed.data(), reversed.size(),
                                       digest.data(), digest.size()) == 1;
    ERR_clear_error();
    return valid;
}

}  // namespace sg
