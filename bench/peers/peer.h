#pragma once

#include <functional>
#include <string>
#include <vector>

/// Other implementations, made to do what this library does. Nothing here includes the library's
/// own headers: some peers have macros of the same names.
namespace Bench {

/// Where a provider's keys and certificates are, as PEM.
struct ProviderFiles {
    std::string root;
    std::string intermediate;
    std::string leaf;
    std::string privateKey;
};

/// One implementation that verifies tokens. Each function parses the text, verifies the signature
/// and tells whether it holds; what is the same for every token was made ready beforehand.
struct Peer {
    using Accepts = std::function<bool(const std::string& xml)>;

    std::string name;
    Accepts knownKey;  ///< With the leaf's public key.
    Accepts chain;     ///< With the certificates sent, up to the root; empty: it builds no chains.
};

Peer XmlsecPeer(const ProviderFiles& files);
Peer XmlSecurityCPeer(const ProviderFiles& files);
Peer OpensamlPeer(const ProviderFiles& files);

/// Signs one document, parsed beforehand: puts the signature together behind the `Issuer`, with
/// leaf and intermediate in its `KeyInfo`, signs, and takes it out again.
/// \param text  Null, or receives the signed document.
using Signing = std::function<void(std::string* text)>;
/// \param privateKey  Decoded for every signature; empty: decoded once, beforehand.
Signing XmlsecSigning(const ProviderFiles& files, const std::string& unsignedXml,
                      const std::vector<unsigned char>& privateKey);

/// Parses to a tree and frees it.
void Libxml2Parse(const std::string& xml);
/// Canonicalizes, exclusively, a document that is parsed beforehand.
std::function<std::string()> Libxml2Canonicalization(const std::string& xml);

/// The peers that were there when this was built.
std::vector<Peer> FoundPeers(const ProviderFiles& files);
/// Those of libxml2 and xmlsec1, or empty functions when they were not.
std::function<void(const std::string& xml)> FoundParser();
std::function<std::string()> FoundCanonicalization(const std::string& xml);
Signing FoundSigning(const ProviderFiles& files, const std::string& unsignedXml,
                     const std::vector<unsigned char>& privateKey);
/// Of the others, what they are called and which Debian package has them.
std::vector<std::string> MissingPeers();

}  // namespace Bench
