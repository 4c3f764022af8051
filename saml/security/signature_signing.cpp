#include "saml/security/signature_impl.h"

namespace Saml::Xml::Security {

// Signature generation, xmldsig-core 3.1: every digest first, since SignedInfo holds them.
void SignatureImpl::Sign(ByteBlob privateKey) {
    for (const auto& reference : references_)
        reference->UpdateDigest();

    const std::string signedInfo = CanonicalSignedInfo();
    const auto* const bytes = reinterpret_cast<const unsigned char*>(signedInfo.data());
    std::vector<unsigned char> signatureValue;
    try {
        context_->CreateSignAlgorithm(signatureMethod_, privateKey)
            ->Sign(bytes, signedInfo.size(), signatureValue);
    } catch (const CryptoException& failure) {
        throw SignatureGenerationException(failure.what());
    }
    signatureValue_->SetText(Base64::Encode(signatureValue));
}

}  // namespace Saml::Xml::Security
