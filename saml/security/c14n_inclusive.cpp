#include "saml/security/c14n_inclusive.h"

#include "saml/xml/namespace_lookup.h"

#include <string>
#include <vector>

namespace Saml::Xml::Security {

void C14NCanonicalizerInclusive::RenderApexNamespaces(NamespaceScope& scope,
                                                      CanonicalAttributes& attributes) const {
    std::vector<std::string_view> prefixes;
    scope.ForEachInScope([&prefixes](std::string_view prefix) { prefixes.push_back(prefix); });
    for (const std::string_view prefix : prefixes)
        RenderNamespace(prefix, scope, attributes);
}

// Below the apex only what the element itself declares can be missing from the output: everything
// else in scope was rendered above. Asking for all of it again would cost the number of prefixes
// for every element.
void C14NCanonicalizerInclusive::RenderElementNamespaces(const ElementNodeImpl& element,
                                                         NamespaceScope& scope,
                                                         CanonicalAttributes& attributes) const {
    for (const auto& [written, uri] : element.Attributes())
        if (IsCanonicalDeclaration(written))
            RenderNamespace(DeclaredPrefix(written), scope, attributes);
}

}  // namespace Saml::Xml::Security
