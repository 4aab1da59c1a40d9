#include "platform/linux/packages/ed25519.h"

#include <memory>
#include <new>
#include <optional>
#include <vector>

#include <openssl/evp.h>

#include "base/error.h"

namespace ovrin {

namespace {

constexpr std::size_t keySize = 32;        // bytes
constexpr std::size_t signatureSize = 64;  // bytes

using Bytes = std::vector<unsigned char>;

template <auto Function>
struct Free {
    template <typename Value>
    void operator()(Value* value) const {
        Function(value);
    }
};

// Padded Base64 of exactly so many bytes.
std::optional<Bytes> decoded(const std::string& base64, std::size_t size) {
    const std::size_t paddedSize = (size + 2) / 3 * 3;
    if (base64.size() != paddedSize / 3 * 4) return std::nullopt;
    const std::size_t padding = paddedSize - size;
    // The library takes a padding character for a zero byte, wherever it stands.
    if (base64.find('=') != (padding == 0 ? std::string::npos : base64.size() - padding)) return std::nullopt;
    Bytes bytes(paddedSize);
    const int count = EVP_DecodeBlock(bytes.data(), reinterpret_cast<const unsigned char*>(base64.data()),
                                      static_cast<int>(base64.size()));
    if (count != static_cast<int>(paddedSize)) return std::nullopt;
    bytes.resize(size);
    return bytes;
}

}  // namespace

bool isSignedByEd25519(std::string_view bytes, const std::string& signature, const std::string& publicKey) {
    const auto rawKey = decoded(publicKey, keySize);
    if (!rawKey) throw Error("此版本的更新公钥无效。");
    const auto rawSignature = decoded(signature, signatureSize);
    if (!rawSignature) throw Error("更新源中的签名无效。");
    const std::unique_ptr<EVP_PKEY, Free<EVP_PKEY_free>> key(
        EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, rawKey->data(), rawKey->size()));
    if (!key) throw Error("此版本的更新公钥无效。");
    const std::unique_ptr<EVP_MD_CTX, Free<EVP_MD_CTX_free>> context(EVP_MD_CTX_new());
    if (!context) throw std::bad_alloc();
    constexpr int success = 1;
    if (EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, key.get()) != success) throw std::bad_alloc();
    return EVP_DigestVerify(context.get(), rawSignature->data(), rawSignature->size(),
                            reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()) == success;
}

}  // namespace ovrin
