#pragma once

#include "saml/security.h"
#include "saml/security/c14n_canonicalizer.h"
#include "saml/security/hash_algorithm_impl.h"
#include "saml/security/sign_algorithm_impl.h"
#include "saml/security/uri_resolver.h"
#include "saml/security/verify_algorithm_impl.h"

#include <memory>
#include <string>

namespace Saml::Xml::Security {

/// What the parts of one signature share: the prefix of the elements that it creates, and which
/// algorithm an identifier means. Identifiers are compared exactly.
class SignatureContext {
  public:
    explicit SignatureContext(std::string namespacePrefix)
        : namespacePrefix_(std::move(namespacePrefix)) {}

    const std::string& GetNamespacePrefix() const noexcept { return namespacePrefix_; }
    void SetNamespacePrefix(const std::string& prefix) { namespacePrefix_ = prefix; }

    /// A new element of the signature namespace, with the prefix, without a declaration.
    boost::intrusive_ptr<ElementNodeImpl> CreateElement(std::string_view localName) const;

    /// Only exclusive canonicalization is known here.
    /// \throws UnsupportedCanonicalizationException
    std::shared_ptr<const CanonicalizerInt> CreateCanonicalizer(
        const std::string& identifier) const;
    /// The same with the words of a `PrefixList`.
    std::shared_ptr<const CanonicalizerInt> CreateCanonicalizer(
        const std::string& identifier, const std::string& prefixList) const;
    /// \throws UnsupportedHashAlgorithmException
    std::shared_ptr<HashAlgorithm> CreateHashAlgorithm(const std::string& identifier) const;
    /// \throws UnsupportedSignAlgorithmException
    std::shared_ptr<SignAlgorithm> CreateSignAlgorithm(const std::string& identifier,
                                                       const ByteBlob& privateKey) const;
    /// \throws UnsupportedSignAlgorithmException
    std::shared_ptr<VerifyAlgorithm> CreateVerifyAlgorithm(const std::string& identifier,
                                                           const ByteBlob& publicKey) const;
    std::shared_ptr<const URIResolver> GetURIResolver() const;

  private:
    std::string namespacePrefix_;
};

}  // namespace Saml::Xml::Security
