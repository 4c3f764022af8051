#include "support/floor.h"

#include <expat.h>
#include <openssl/evp.h>
#include <openssl/x509.h>
#include <openssl/x509_vfy.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>

namespace Bench::Floor {
namespace {

template <class Object>
using Owned = std::unique_ptr<Object, void (*)(Object*)>;

void Require(bool held, const char* what) {
    if (!held) throw std::runtime_error(std::string("the floor failed: ") + what);
}

void OnStart(void*, const XML_Char*, const XML_Char**) {}
void OnEnd(void*, const XML_Char*) {}
void OnText(void*, const XML_Char*, int) {}

Owned<X509> Decoded(const Saml::ByteBlob& der) {
    const unsigned char* bytes = der->data();
    Owned<X509> certificate(d2i_X509(nullptr, &bytes, static_cast<long>(der->size())), &X509_free);
    Require(certificate != nullptr, "d2i_X509");
    return certificate;
}

void FreeStack(STACK_OF(X509) * certificates) {
    sk_X509_free(certificates);
}

X509_STORE* RootStore() {
    static const Owned<X509_STORE> store = [] {
        Owned<X509_STORE> made(X509_STORE_new(), &X509_STORE_free);
        const Owned<X509> root = Decoded(TheProvider().root);
        Require(X509_STORE_add_cert(made.get(), root.get()) == 1, "X509_STORE_add_cert");
        return made;
    }();
    return store.get();
}

}  // namespace

void Tokenize(const std::string& xml) {
    constexpr std::size_t kChunk = 10240;
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
        XML_ParserCreate(nullptr), &XML_ParserFree);
    XML_SetElementHandler(parser.get(), OnStart, OnEnd);
    XML_SetCharacterDataHandler(parser.get(), OnText);
    for (std::size_t place = 0; place < xml.size(); place += kChunk) {
        const std::size_t size = std::min(kChunk, xml.size() - place);
        Require(XML_Parse(parser.get(), xml.data() + place, static_cast<int>(size),
                          place + size == xml.size()) == XML_STATUS_OK,
                "XML_Parse");
    }
}

void Digest(const std::string& canonical) {
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned size = 0;
    Require(
        EVP_Digest(canonical.data(), canonical.size(), digest, &size, EVP_sha256(), nullptr) == 1,
        "EVP_Digest");
}

void VerifySignature(const Token& token) {
    const std::vector<unsigned char>& key = *TheProvider().publicKey;
    const unsigned char* bytes = key.data();
    const Owned<EVP_PKEY> decoded(
        d2i_PublicKey(EVP_PKEY_RSA, nullptr, &bytes, static_cast<long>(key.size())),
        &EVP_PKEY_free);
    const Owned<EVP_MD_CTX> context(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
    Require(EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) == 1, "EVP_DigestInit_ex");
    Require(EVP_DigestUpdate(context.get(), token.canonicalSignedInfo.data(),
                             token.canonicalSignedInfo.size()) == 1,
            "EVP_DigestUpdate");
    Require(EVP_VerifyFinal(context.get(), token.signatureValue.data(),
                            static_cast<unsigned>(token.signatureValue.size()), decoded.get()) == 1,
            "EVP_VerifyFinal");
}

void VerifyChain() {
    const Owned<X509> leaf = Decoded(TheProvider().leaf);
    const Owned<X509> intermediate = Decoded(TheProvider().intermediate);
    const Owned<STACK_OF(X509)> untrusted(sk_X509_new_null(), &FreeStack);
    Require(sk_X509_push(untrusted.get(), intermediate.get()) != 0, "sk_X509_push");
    const Owned<X509_STORE_CTX> context(X509_STORE_CTX_new(), &X509_STORE_CTX_free);
    Require(X509_STORE_CTX_init(context.get(), RootStore(), leaf.get(), untrusted.get()) == 1,
            "X509_STORE_CTX_init");
    Require(X509_verify_cert(context.get()) == 1, "X509_verify_cert");
}

void KnownKey(const Token& token) {
    Tokenize(token.xml);
    Digest(token.canonicalAssertion);
    VerifySignature(token);
}

void Chain(const Token& token) {
    KnownKey(token);
    VerifyChain();
}

void Sign(const Token& token) {
    Digest(token.canonicalAssertion);
    const std::vector<unsigned char>& key = *TheProvider().privateKey;
    const unsigned char* bytes = key.data();
    const Owned<EVP_PKEY> decoded(
        d2i_PrivateKey(EVP_PKEY_RSA, nullptr, &bytes, static_cast<long>(key.size())),
        &EVP_PKEY_free);
    const Owned<EVP_MD_CTX> context(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
    unsigned char value[1024];
    unsigned size = 0;
    Require(EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) == 1, "EVP_DigestInit_ex");
    Require(EVP_DigestUpdate(context.get(), token.canonicalSignedInfo.data(),
                             token.canonicalSignedInfo.size()) == 1,
            "EVP_DigestUpdate");
    Require(EVP_SignFinal(context.get(), value, &size, decoded.get()) == 1, "EVP_SignFinal");
}

}  // namespace Bench::Floor
