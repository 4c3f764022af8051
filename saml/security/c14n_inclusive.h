#pragma once

#include "saml/security/c14n_canonicalizer.h"

namespace Saml::Xml::Security {

/// Canonical XML 1.0 without comments: every namespace in scope is declared, used or not.
class C14NCanonicalizerInclusive final : public C14NCanonicalizer {
  protected:
    void RenderApexNamespaces(NamespaceScope& scope,
                              CanonicalAttributes& attributes) const override;
    void RenderElementNamespaces(const ElementNodeImpl& element, NamespaceScope& scope,
                                 CanonicalAttributes& attributes) const override;
};

}  // namespace Saml::Xml::Security
