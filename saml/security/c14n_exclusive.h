#pragma once

#include "saml/security/c14n_canonicalizer.h"

#include <string>
#include <vector>

namespace Saml::Xml::Security {

/// Exclusive XML Canonicalization 1.0 without comments: an element declares the prefixes that its
/// own name and its attributes use.
class C14NCanonicalizerExclusive final : public C14NCanonicalizer {
  public:
    C14NCanonicalizerExclusive() = default;
    /// `inclusivePrefixes` are the words of an `InclusiveNamespaces` `PrefixList`.
    explicit C14NCanonicalizerExclusive(std::vector<std::string> inclusivePrefixes);

  protected:
    void RenderApexNamespaces(NamespaceScope& scope,
                              CanonicalAttributes& attributes) const override;
    void RenderElementNamespaces(const ElementNodeImpl& element, NamespaceScope& scope,
                                 CanonicalAttributes& attributes) const override;

  private:
    std::vector<std::string> inclusivePrefixes_;
};

}  // namespace Saml::Xml::Security
