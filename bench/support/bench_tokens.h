#pragma once

#include "peers/peer.h"
#include "saml/foundations.h"

#include <cstddef>
#include <string>
#include <vector>

/// Tokens to measure with, and the pieces that whoever verifies one of them cannot do without.
namespace Bench {

/// A signer below an intermediate authority below a root, RSA with 2048 bits and SHA-256
/// throughout.
struct Provider {
    Saml::ByteBlob root;
    Saml::ByteBlob intermediate;
    Saml::ByteBlob leaf;
    Saml::ByteBlob publicKey;   ///< The leaf's: RSAPublicKey.
    Saml::ByteBlob privateKey;  ///< The leaf's: RSAPrivateKey.
    ProviderFiles files;
};
const Provider& TheProvider();

struct Token {
    std::string xml;  ///< Signed; its KeyInfo holds leaf and intermediate.
    std::string unsignedXml;
    std::string canonicalAssertion;   ///< What its reference digests.
    std::string canonicalSignedInfo;  ///< What its signature value signs.
    std::vector<unsigned char> signatureValue;
};

/// A token with so many group values: 20 make one of 7 KB, 1,000 of 105 KB, 20,000 of 2 MB.
Token MakeToken(std::size_t groups);

/// The same token with another name in one of its groups.
std::string Tampered(const Token& token);
/// The same token signed by somebody of whom the provider knows nothing.
std::string SignedByStranger(const Token& token);

}  // namespace Bench
