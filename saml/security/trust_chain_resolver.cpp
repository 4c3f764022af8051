#include "saml/security/trust_chain_resolver.h"

#include "saml/security/certificate_codec.h"
#include "saml/security/sent_certificates.h"

#include <openssl/x509v3.h>

#include <new>
#include <utility>

namespace Saml::Xml::Security {
namespace {
constexpr char kNoStore[] = "Failed to allocate X.509 Store";
constexpr char kNotAdded[] = "Failed to add certificate to trust store";

StoreHandle CreateStore(const TrustedCertificates& trusted) {
    StoreHandle store(X509_STORE_new());
    if (!store) throw CryptoException(kNoStore);
    for (const CertificateHandle& certificate : trusted)
        if (X509_STORE_add_cert(store.get(), certificate.get()) != 1)
            throw InternalErrorException(kNotAdded);
    return store;
}

CertificateStackHandle CreateStack() {
    CertificateStackHandle stack(sk_X509_new_null());
    if (!stack) throw std::bad_alloc();
    return stack;
}

void Push(CertificateHandle certificate, CertificateStack* stack) {
    if (sk_X509_push(stack, certificate.get()) <= 0) throw std::bad_alloc();
    static_cast<void>(certificate.release());  // the stack owns it now
}

StoreContextHandle CreateContext() {
    StoreContextHandle context(X509_STORE_CTX_new());
    if (!context) throw std::bad_alloc();
    return context;
}

/// Reads the certificates of a signature in turn and keeps those that may take part in a chain.
class SentChain {
  public:
    SentChain(const std::list<ByteBlob>& sent, const TrustedCertificates& trusted) noexcept
        : trusted_(trusted), at_(sent.begin()), end_(sent.end()) {}

    /// The next certificate that is kept; null at the end. The first one that was sent is kept
    /// whatever it is, as the signer; after it (also when it could not be parsed) only certificate
    /// authorities are. Chain building takes the first certificate that bears the issuer's name and
    /// does not come back for the next: without this rule a useless one in front would hide the
    /// authority behind it.
    CertificateHandle Next() {
        while (at_ != end_) {
            const ByteBlob& der = *at_++;
            if (IsBlank(der)) continue;
            const bool first = !firstPassed_;
            firstPassed_ = true;
            CertificateHandle certificate = trusted_.ParseSent(der);
            if (!certificate) continue;
            if (first || X509_check_ca(certificate.get()) != 0) return certificate;
            passedOver_ = true;
        }
        return nullptr;
    }

    /// True when a certificate was read and not kept.
    bool PassedOver() const noexcept { return passedOver_; }

  private:
    const TrustedCertificates& trusted_;
    std::list<ByteBlob>::const_iterator at_;
    const std::list<ByteBlob>::const_iterator end_;
    bool firstPassed_ = false;
    bool passedOver_ = false;
};

/// RFC 5280 section 6, up to any trusted certificate, whether it is self-signed or not.
bool Verifies(X509_STORE_CTX& context) {
    X509_STORE_CTX_set_flags(&context, X509_V_FLAG_PARTIAL_CHAIN | X509_V_FLAG_TRUSTED_FIRST);
    return X509_verify_cert(&context) == 1 && X509_STORE_CTX_get_error(&context) == X509_V_OK;
}
}  // namespace

X509TrustChainKeyResolver::X509TrustChainKeyResolver(const std::list<ByteBlob>& trustedCertificates)
    : trusted_(trustedCertificates), store_(CreateStore(trusted_)) {}

void X509TrustChainKeyResolver::Resolve(KeyInfo* keyInfo, std::list<ByteBlob>& keys) {
    keys.clear();
    AppendKeys(SentCertificates(keyInfo), keys);
}

void X509TrustChainKeyResolver::AppendKeys(const std::list<ByteBlob>& sent,
                                           std::list<ByteBlob>& keys) const {
    SentChain chain(sent, trusted_);
    const CertificateHandle signer = chain.Next();
    if (!signer) {
        // A signer that named itself by a certificate which may not speak here gets no other key.
        if (chain.PassedOver()) return;
        // The signer said nothing about itself. There is no choice to make then, and no time check
        // either: the deployment vouches for the one key that it configured.
        if (X509* const single = trusted_.Single()) keys.push_back(EncodePublicKeyOf(*single));
        return;
    }

    bool verified = false;
    if (trusted_.Contain(*signer)) {
        verified = VerifiesAsAnchor(*signer);
    } else {
        const CertificateStackHandle authorities = CreateStack();
        while (CertificateHandle authority = chain.Next())
            Push(std::move(authority), authorities.get());
        verified = VerifiesUpToAnchor(*signer, authorities.get());
    }
    if (verified) keys.push_back(EncodePublicKeyOf(*signer));
}

/// A trusted signer answers for itself alone: what stands above it, sent or trusted, expired or
/// not, is nobody's business.
bool X509TrustChainKeyResolver::VerifiesAsAnchor(X509& signer) const {
    const CertificateStackHandle anchors = CreateStack();
    Push(Share(signer), anchors.get());
    const StoreContextHandle context = CreateContext();
    if (X509_STORE_CTX_init(context.get(), store_.get(), &signer, nullptr) != 1) return false;
    X509_STORE_CTX_set0_trusted_stack(context.get(), anchors.get());
    return Verifies(*context);
}

bool X509TrustChainKeyResolver::VerifiesUpToAnchor(X509& signer,
                                                   CertificateStack* authorities) const {
    const StoreContextHandle context = CreateContext();
    if (X509_STORE_CTX_init(context.get(), store_.get(), &signer, authorities) != 1) return false;
    return Verifies(*context);
}

void CreateTrustChainKeyResolver(const std::list<ByteBlob>& trustedCertificates,
                                 boost::intrusive_ptr<KeyInfoResolver>& result) {
    result = new X509TrustChainKeyResolver(trustedCertificates);
}

}  // namespace Saml::Xml::Security
