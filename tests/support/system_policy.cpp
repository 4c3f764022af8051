#include "support/system_policy.h"

#include "saml/security/openssl_handles.h"
#include "support/test_keys.h"

#include <openssl/pem.h>

#include <stdexcept>
#include <vector>

namespace Saml::SystemPolicy {
namespace {

using Xml::Security::BufferHandle;
using Xml::Security::DigestContextHandle;
using Xml::Security::KeyHandle;

constexpr char kText[] = "text";

// By the calls that the library makes, too: a policy may refuse at any of them.
std::string RefusalOfLibcrypto(const TestKeys::Key& key, const EVP_MD& method) {
    const BufferHandle pem(BIO_new_mem_buf(key.pem.data(), static_cast<int>(key.pem.size())));
    const KeyHandle pair(PEM_read_bio_PrivateKey(pem.get(), nullptr, nullptr, nullptr));
    if (!pair) return "libcrypto does not read the key";

    std::vector<unsigned char> signature(static_cast<std::size_t>(EVP_PKEY_size(pair.get())));
    unsigned int size = 0;
    const DigestContextHandle signing(EVP_MD_CTX_new());
    if (EVP_SignInit_ex(signing.get(), &method, nullptr) != 1 ||
        EVP_SignUpdate(signing.get(), kText, sizeof kText) != 1 ||
        EVP_SignFinal(signing.get(), signature.data(), &size, pair.get()) != 1)
        return "libcrypto does not sign";

    const DigestContextHandle verifying(EVP_MD_CTX_new());
    if (EVP_VerifyInit_ex(verifying.get(), &method, nullptr) != 1 ||
        EVP_VerifyUpdate(verifying.get(), kText, sizeof kText) != 1 ||
        EVP_VerifyFinal(verifying.get(), signature.data(), size, pair.get()) != 1)
        return "libcrypto does not verify";
    return "";
}

std::string Refusal(const char* key, const std::string& digest, const EVP_MD& method) {
    try {
        const TestKeys::Key& pair = TestKeys::KeyNamed(key);
        const std::string text = TestKeys::PathOf("policy-probe");
        TestKeys::WriteFile(text, kText);
        TestKeys::OpenSsl("dgst -" + digest + " -sign \"" + pair.pemPath + "\" \"" + text + '"');
        return RefusalOfLibcrypto(pair, method);
    } catch (const std::runtime_error& failure) {
        return failure.what();  // the command and what it said
    }
}

}  // namespace

const std::string& AgainstSha1() {
    static const std::string refusal = Refusal("rsa2048", "sha1", *EVP_sha1());
    return refusal;
}

const std::string& AgainstShortKeys() {
    static const std::string refusal = Refusal("rsa512", "sha256", *EVP_sha256());
    return refusal;
}

}  // namespace Saml::SystemPolicy
