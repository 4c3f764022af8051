#include "certificates_in_words.h"

#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/x509.h>

#include <memory>

namespace {

using Certificate = std::unique_ptr<X509, decltype(&X509_free)>;
using Output = std::unique_ptr<BIO, decltype(&BIO_free_all)>;

// What `print` writes to OpenSSL's kind of stream.
template <class Print>
std::string Printed(Print print) {
    const Output out(BIO_new(BIO_s_mem()), &BIO_free_all);
    if (!out || !print(out.get())) return "?";
    char* text = nullptr;
    const long size = BIO_get_mem_data(out.get(), &text);
    return std::string(text, static_cast<std::size_t>(size));
}

std::string InWords(const X509_NAME* name) {
    return Printed(
        [name](BIO* out) { return X509_NAME_print_ex(out, name, 0, XN_FLAG_RFC2253) >= 0; });
}

std::string InWords(const ASN1_TIME* time) {
    return Printed([time](BIO* out) { return ASN1_TIME_print(out, time) == 1; });
}

std::string KeyInWords(X509& certificate) {
    const EVP_PKEY* const key = X509_get0_pubkey(&certificate);
    if (key == nullptr) return "none that can be read";
    const char* const type = OBJ_nid2sn(EVP_PKEY_base_id(key));
    return std::string(type) + ", " + std::to_string(EVP_PKEY_bits(key)) + " bits";
}

}  // namespace

void DescribeCertificate(const std::vector<unsigned char>& der, Step& step) {
    const unsigned char* bytes = der.data();
    const Certificate certificate(d2i_X509(nullptr, &bytes, static_cast<long>(der.size())),
                                  &X509_free);
    if (!certificate) {
        step.Tell("certificate", "none that can be read");
        return;
    }
    step.Tell("subject", InWords(X509_get_subject_name(certificate.get())));
    step.Tell("issuer", InWords(X509_get_issuer_name(certificate.get())));
    step.Tell("valid from", InWords(X509_get0_notBefore(certificate.get())));
    step.Tell("valid until", InWords(X509_get0_notAfter(certificate.get())));
    step.Tell("key", KeyInWords(*certificate));
    if (X509_cmp_current_time(X509_get0_notBefore(certificate.get())) > 0 ||
        X509_cmp_current_time(X509_get0_notAfter(certificate.get())) < 0)
        step.Tell("note", "not valid at this time");
}
