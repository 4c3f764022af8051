#include "support/refusing_openssl.h"

#include <openssl/evp.h>
#include <openssl/stack.h>

#include <optional>

namespace Saml::RefusingOpenSsl {
namespace {
thread_local std::optional<Function> refusing;
}  // namespace

Refusal::Refusal(Function function) noexcept {
    refusing = function;
}

Refusal::~Refusal() {
    refusing.reset();
}

}  // namespace Saml::RefusingOpenSsl

using Saml::RefusingOpenSsl::Function;
using Saml::RefusingOpenSsl::refusing;

// The linker leads calls of `f` to `__wrap_f`, and those of `__real_f` to OpenSSL's own.
extern "C" {
int __real_EVP_DigestUpdate(EVP_MD_CTX* context, const void* data, size_t length);
int __wrap_EVP_DigestUpdate(EVP_MD_CTX* context, const void* data, size_t length);
int __real_EVP_DigestFinal_ex(EVP_MD_CTX* context, unsigned char* digest, unsigned* length);
int __wrap_EVP_DigestFinal_ex(EVP_MD_CTX* context, unsigned char* digest, unsigned* length);
int __real_EVP_SignFinal(EVP_MD_CTX* context, unsigned char* signature, unsigned* length,
                         EVP_PKEY* key);
int __wrap_EVP_SignFinal(EVP_MD_CTX* context, unsigned char* signature, unsigned* length,
                         EVP_PKEY* key);
int __real_OPENSSL_sk_push(OPENSSL_STACK* stack, const void* element);
int __wrap_OPENSSL_sk_push(OPENSSL_STACK* stack, const void* element);

int __wrap_EVP_DigestUpdate(EVP_MD_CTX* context, const void* data, size_t length) {
    if (refusing == Function::DigestUpdate) return 0;
    return __real_EVP_DigestUpdate(context, data, length);
}

int __wrap_EVP_DigestFinal_ex(EVP_MD_CTX* context, unsigned char* digest, unsigned* length) {
    if (refusing == Function::DigestFinal) return 0;
    return __real_EVP_DigestFinal_ex(context, digest, length);
}

int __wrap_EVP_SignFinal(EVP_MD_CTX* context, unsigned char* signature, unsigned* length,
                         EVP_PKEY* key) {
    if (refusing == Function::SignFinal) return 0;
    return __real_EVP_SignFinal(context, signature, length, key);
}

int __wrap_OPENSSL_sk_push(OPENSSL_STACK* stack, const void* element) {
    if (refusing == Function::StackPush) return 0;
    return __real_OPENSSL_sk_push(stack, element);
}
}
