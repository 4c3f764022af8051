#include "saml/security/signature_context.h"

#include "saml/security/c14n_exclusive.h"
#include "saml/security/dsig_identifiers.h"

#include <string_view>
#include <vector>

namespace Saml::Xml::Security {
namespace {

std::string UnsupportedCanonicalization(const std::string& identifier) {
    return "The following canonicalization method is unsupported: " + identifier;
}
std::string UnsupportedCanonicalization(const std::string& identifier,
                                        const std::string& prefixList) {
    return UnsupportedCanonicalization(identifier) + " with parameter: " + prefixList;
}
std::string UnsupportedHash(const std::string& identifier) {
    return "The following hash algorithm is unsupported: " + identifier;
}
std::string UnsupportedSignature(const std::string& identifier) {
    return "The signature algorithm is not supported: " + identifier;
}

constexpr char kBlanks[] = " \t\n\v\f\r";

struct RegisteredDigest {
    std::string_view identifier;
    DigestId digest;
};

// SHA-384 has two spellings besides the first; signers in the field write each of them.
constexpr RegisteredDigest kHashAlgorithms[] = {
    {Algorithm::Sha1, DigestId::Sha1},
    {Algorithm::Sha256, DigestId::Sha256},
    {Algorithm::Sha384, DigestId::Sha384},
    {Algorithm::Sha512, DigestId::Sha512},
    {Algorithm::Sha384Rfc4051, DigestId::Sha384},
    {kSha384XmlDsigSpelling, DigestId::Sha384},
};

constexpr RegisteredDigest kSignatureAlgorithms[] = {
    {Algorithm::RsaSha1, DigestId::Sha1},
    {Algorithm::RsaSha256, DigestId::Sha256},
    {Algorithm::RsaSha384, DigestId::Sha384},
    {Algorithm::RsaSha512, DigestId::Sha512},
};

template <std::size_t Count>
const RegisteredDigest* FindDigest(const RegisteredDigest (&registry)[Count],
                                   std::string_view identifier) {
    for (const RegisteredDigest& entry : registry)
        if (entry.identifier == identifier) return &entry;
    return nullptr;
}

DigestId DigestOfSignature(const std::string& identifier) {
    const RegisteredDigest* const entry = FindDigest(kSignatureAlgorithms, identifier);
    if (entry == nullptr) throw UnsupportedSignAlgorithmException(UnsupportedSignature(identifier));
    return entry->digest;
}

std::vector<std::string> SplitWords(const std::string& text) {
    std::vector<std::string> words;
    std::size_t start = 0;
    while ((start = text.find_first_not_of(kBlanks, start)) != std::string::npos) {
        const std::size_t end = std::min(text.find_first_of(kBlanks, start), text.size());
        words.push_back(text.substr(start, end - start));
        start = end;
    }
    return words;
}

}  // namespace

boost::intrusive_ptr<ElementNodeImpl> SignatureContext::CreateElement(
    std::string_view localName) const {
    return boost::intrusive_ptr<ElementNodeImpl>(new ElementNodeImpl(namespacePrefix_, localName));
}

std::shared_ptr<const CanonicalizerInt> SignatureContext::CreateCanonicalizer(
    const std::string& identifier) const {
    if (identifier != Algorithm::ExclusiveC14N)
        throw UnsupportedCanonicalizationException(UnsupportedCanonicalization(identifier));
    return std::make_shared<C14NCanonicalizerExclusive>();
}

std::shared_ptr<const CanonicalizerInt> SignatureContext::CreateCanonicalizer(
    const std::string& identifier, const std::string& prefixList) const {
    if (identifier != Algorithm::ExclusiveC14N)
        throw UnsupportedCanonicalizationException(
            UnsupportedCanonicalization(identifier, prefixList));
    return std::make_shared<C14NCanonicalizerExclusive>(SplitWords(prefixList));
}

std::shared_ptr<HashAlgorithm> SignatureContext::CreateHashAlgorithm(
    const std::string& identifier) const {
    const RegisteredDigest* const entry = FindDigest(kHashAlgorithms, identifier);
    if (entry == nullptr) throw UnsupportedHashAlgorithmException(UnsupportedHash(identifier));
    return std::make_shared<HashAlgorithmImpl>(entry->digest);
}

std::shared_ptr<SignAlgorithm> SignatureContext::CreateSignAlgorithm(
    const std::string& identifier, const ByteBlob& privateKey) const {
    return std::make_shared<SignAlgorithmImpl>(DigestOfSignature(identifier), privateKey);
}

std::shared_ptr<VerifyAlgorithm> SignatureContext::CreateVerifyAlgorithm(
    const std::string& identifier, const ByteBlob& publicKey) const {
    return std::make_shared<VerifyAlgorithmImpl>(DigestOfSignature(identifier), publicKey);
}

std::shared_ptr<const URIResolver> SignatureContext::GetURIResolver() const {
    return std::make_shared<UniqueURIResolver>();
}

}  // namespace Saml::Xml::Security
