#pragma once

#include "saml/foundations.h"
#include "saml/security/openssl_handles.h"

#include <string>

namespace Saml::Xml::Security {

/// The certificate whose DER `der` holds; null when it holds none. Bytes behind the certificate
/// are ignored, as OpenSSL's decoder does.
CertificateHandle DecodeCertificateDer(const ByteBlob& der);
/// The same.
/// \throws InvalidArgumentException when `der` holds no certificate.
CertificateHandle ParseCertificateDer(const ByteBlob& der);
/// The first certificate of a PEM text.
/// \throws InvalidArgumentException when there is none.
CertificateHandle ParseCertificatePem(const std::string& pem);

/// DER of a certificate.
/// \throws CryptoException when OpenSSL cannot.
ByteBlob EncodeCertificate(X509& certificate);

/// DER of a certificate's public key, as `ExtractCertPubKey` gives it.
/// \throws InvalidArgumentException when the certificate's key cannot be decoded.
/// \throws CryptoException when its type cannot be serialized.
ByteBlob EncodePublicKeyOf(X509& certificate);

}  // namespace Saml::Xml::Security
