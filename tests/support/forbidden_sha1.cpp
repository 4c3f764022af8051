// A policy that forbids signatures with SHA-1, for LD_PRELOAD: OpenSSL's functions refuse them
// where those of distributions with such a policy do, in the test program and in the openssl
// command.
#include <openssl/evp.h>
#include <openssl/objects.h>

#include <dlfcn.h>

namespace {

template <class Function>
Function* Genuine(const char* name) noexcept {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

bool IsSha1(const EVP_MD* method) noexcept {
    return method != nullptr && EVP_MD_type(method) == NID_sha1;
}

bool UsesSha1(const EVP_MD_CTX* context) noexcept {
    return IsSha1(EVP_MD_CTX_get0_md(context));
}

}  // namespace

// All of these are in every OpenSSL since 3.0, so that one build of this file serves the program
// and the command.
extern "C" {

int EVP_SignFinal(EVP_MD_CTX* context, unsigned char* signature, unsigned int* length,
                  EVP_PKEY* key) {
    if (UsesSha1(context)) return 0;
    return Genuine<decltype(EVP_SignFinal)>("EVP_SignFinal")(context, signature, length, key);
}

int EVP_VerifyFinal(EVP_MD_CTX* context, const unsigned char* signature, unsigned int length,
                    EVP_PKEY* key) {
    if (UsesSha1(context)) return -1;
    return Genuine<decltype(EVP_VerifyFinal)>("EVP_VerifyFinal")(context, signature, length, key);
}

int EVP_DigestSignInit(EVP_MD_CTX* context, EVP_PKEY_CTX** keyContext, const EVP_MD* method,
                       ENGINE* engine, EVP_PKEY* key) {
    if (IsSha1(method)) return 0;
    return Genuine<decltype(EVP_DigestSignInit)>("EVP_DigestSignInit")(context, keyContext, method,
                                                                       engine, key);
}

int EVP_DigestSignInit_ex(EVP_MD_CTX* context, EVP_PKEY_CTX** keyContext, const char* method,
                          OSSL_LIB_CTX* library, const char* properties, EVP_PKEY* key,
                          const OSSL_PARAM parameters[]) {
    if (method != nullptr && IsSha1(EVP_get_digestbyname(method))) return 0;
    return Genuine<decltype(EVP_DigestSignInit_ex)>("EVP_DigestSignInit_ex")(
        context, keyContext, method, library, properties, key, parameters);
}

int EVP_DigestVerifyInit(EVP_MD_CTX* context, EVP_PKEY_CTX** keyContext, const EVP_MD* method,
                         ENGINE* engine, EVP_PKEY* key) {
    if (IsSha1(method)) return 0;
    return Genuine<decltype(EVP_DigestVerifyInit)>("EVP_DigestVerifyInit")(context, keyContext,
                                                                           method, engine, key);
}
}
