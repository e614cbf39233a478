// By the library that the toolkit's HTTPS needs too: where signatures can not be checked nothing
// could be fetched. Its functions are declared here, since they are of a stable interface.
#include <memory>

#include "platform/linux/LoadedLibrary.h"
#include "platform/signatures.h"

namespace orrinvale {
namespace {

constexpr std::size_t keySize = 32;
constexpr std::size_t signatureSize = 64;
constexpr int ed25519 = 1087;  // NID_ED25519

struct CryptoLibrary {
    void* (*newKey)(int type, void* engine, const unsigned char* key, std::size_t size) = nullptr;
    void (*freeKey)(void* key) = nullptr;
    void* (*newContext)() = nullptr;
    void (*freeContext)(void* context) = nullptr;
    int (*begin)(void* context, void** keyContext, const void* digest, void* engine,
                 void* key) = nullptr;
    int (*verify)(void* context, const unsigned char* signature, std::size_t signatureSize,
                  const unsigned char* bytes, std::size_t size) = nullptr;
    bool isWhole = false;

    explicit CryptoLibrary(const char* name) {
        LoadedLibrary library(name);
        library.find(newKey, "EVP_PKEY_new_raw_public_key");
        library.find(freeKey, "EVP_PKEY_free");
        library.find(newContext, "EVP_MD_CTX_new");
        library.find(freeContext, "EVP_MD_CTX_free");
        library.find(begin, "EVP_DigestVerifyInit");
        library.find(verify, "EVP_DigestVerify");
        isWhole = library.isWhole();
    }
};

const CryptoLibrary* cryptoLibrary() {
    static const CryptoLibrary newer("libcrypto.so.3");
    if (newer.isWhole) return &newer;
    static const CryptoLibrary older("libcrypto.so.1.1");
    return older.isWhole ? &older : nullptr;
}

const unsigned char* raw(std::string_view bytes) {
    return reinterpret_cast<const unsigned char*>(bytes.data());
}

}  // namespace

SignatureCheck checkSignature(std::string_view bytes, std::string_view signature,
                              std::string_view publicKey) {
    const CryptoLibrary* const library = cryptoLibrary();
    if (library == nullptr) return SignatureCheck::Unknown;
    if (publicKey.size() != keySize || signature.size() != signatureSize)
        return SignatureCheck::Bad;
    const std::unique_ptr<void, void (*)(void*)> key(
        library->newKey(ed25519, nullptr, raw(publicKey), publicKey.size()), library->freeKey);
    const std::unique_ptr<void, void (*)(void*)> context(library->newContext(),
                                                         library->freeContext);
    if (key == nullptr || context == nullptr) return SignatureCheck::Unknown;
    if (library->begin(context.get(), nullptr, nullptr, nullptr, key.get()) != 1)
        return SignatureCheck::Unknown;
    const bool isGood = library->verify(context.get(), raw(signature), signature.size(), raw(bytes),
                                        bytes.size()) == 1;
    return isGood ? SignatureCheck::Good : SignatureCheck::Bad;
}

}  // namespace orrinvale
