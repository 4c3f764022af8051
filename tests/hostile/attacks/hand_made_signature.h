#pragma once

#include "hostile/attacks/provider.h"

#include <functional>
#include <string>
#include <vector>

/// Signatures put together from parts, each of which an attacker may choose. Digests and signature
/// values come from OpenSSL, not from the library's signing half.
namespace Saml::Attacks {

/// The Base64 text of `bytes`, by OpenSSL.
std::string Base64Text(const std::string& bytes);
/// `digest` as OpenSSL calls it ("SHA256").
std::string DigestOf(const std::string& digest, const std::string& bytes);

/// Gives the bytes of a signature value for a canonical `SignedInfo`.
using Signing = std::function<std::string(const std::string& signedInfo)>;
/// The usual signature of the type of a test key: PKCS #1 v1.5 for RSA.
Signing SigningWith(const std::string& key, const std::string& digest = "SHA256");

/// Markup of the parts.
std::string Method(const std::string& element, const std::string& algorithm,
                   const std::string& content = {});
std::string Transform(const std::string& algorithm, const std::string& content = {});
std::string EnvelopedTransform();
std::string ExclusiveTransform();
std::string Transforms(const std::string& content);
/// `X509Certificate` for each test certificate of these names.
std::string X509Certificates(const std::vector<std::string>& names);
std::string X509Data(const std::string& content);
std::string KeyInfo(const std::string& content);
/// A `KeyInfo` that sends these test certificates.
std::string Sending(const std::vector<std::string>& names);

/// As it is made, the provider's own signature.
struct HandMadeSignature {
    std::string uri = "#_genuine";
    std::string canonicalizationMethod =
        Method("CanonicalizationMethod", Xml::Security::Algorithm::ExclusiveC14N);
    std::string signatureMethod = Method("SignatureMethod", Xml::Security::Algorithm::RsaSha256);
    std::string transforms = Transforms(EnvelopedTransform() + ExclusiveTransform());
    std::string digestMethod = Method("DigestMethod", Xml::Security::Algorithm::Sha256);
    std::string digest = "SHA256";  ///< What is really computed.
    /// How the bytes of the digest are written.
    std::function<std::string(const std::string& digest)> digestText = Base64Text;
    /// How the bytes of the signature are written.
    std::function<std::string(const std::string& signature)> signatureText = Base64Text;
    Signing sign = SigningWith("leaf");
    std::string keyInfo = Sending({"leaf", "intermediate"});
    std::string furtherReferences;  ///< Behind the one to the assertion.
};

/// The token of `spec` with this signature, whose digest and value are made over its canonical form
/// whatever methods the signature names.
std::string TokenWith(const HandMadeSignature& signature,
                      const Forge::TokenSpec& spec = Provider::CustomerSpec());

/// The same for an assertion that was written already, with the prefix "saml" and the identifier of
/// the provider's customers' tokens.
std::string TokenWith(const HandMadeSignature& signature, const std::string& assertion);

/// The outcome when no resolver offers a key.
std::string RefusedWithoutKey();

}  // namespace Saml::Attacks
