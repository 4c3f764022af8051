#pragma once

#include "saml/foundations.h"
#include "saml/security/openssl_handles.h"

#include <string>

namespace Saml::Xml::Security {

/// The RSA key of a DER private key (RFC 8017 appendix A.1.2; wrapped by PKCS #8, too).
/// \throws CryptoException when it cannot be decoded or is no RSA key.
KeyHandle ParseRsaPrivateKeyDer(const ByteBlob& der);
/// The RSA key of a DER public key (RFC 8017 appendix A.1.1); without decoding where the blob
/// remembers it.
/// \throws CryptoException when it cannot be decoded or is no RSA key.
KeyHandle ParseRsaPublicKeyDer(const ByteBlob& der);

/// The first private key, of any type, of a PEM text; an encrypted one cannot be read.
/// \throws CryptoException when there is none.
KeyHandle ParsePrivateKeyPem(const std::string& pem);
/// The RSA key of the first block with the label "PUBLIC KEY" of a PEM text.
/// \throws CryptoException when there is none or it is no RSA key.
KeyHandle ParseRsaPublicKeyPem(const std::string& pem);

/// DER of a private key as OpenSSL serializes its type: for RSA PKCS #1.
/// \throws CryptoException when OpenSSL cannot.
ByteBlob EncodePrivateKey(EVP_PKEY& key);
/// DER of a public key as OpenSSL serializes its type: for RSA PKCS #1.
/// \throws CryptoException when OpenSSL cannot.
ByteBlob EncodePublicKey(EVP_PKEY& key);

}  // namespace Saml::Xml::Security
