#include "saml/security/c14n_exclusive.h"

#include <utility>

namespace Saml::Xml::Security {

C14NCanonicalizerExclusive::C14NCanonicalizerExclusive(std::vector<std::string> inclusivePrefixes)
    : inclusivePrefixes_(std::move(inclusivePrefixes)) {}

// Exclusive C14N section 3 applies the prefix list to every element and reads "#default" as the
// default namespace. Here the list counts at the apex only and its words are plain prefixes:
// existing signatures depend on both.
void C14NCanonicalizerExclusive::RenderApexNamespaces(NamespaceScope& scope,
                                                      CanonicalAttributes& attributes) const {
    for (const std::string& prefix : inclusivePrefixes_)
        RenderNamespace(prefix, scope, attributes);
}

void C14NCanonicalizerExclusive::RenderElementNamespaces(const ElementNodeImpl& element,
                                                         NamespaceScope& scope,
                                                         CanonicalAttributes& attributes) const {
    RenderNamespace(element.Prefix(), scope, attributes);
    const std::size_t count = attributes.Size();
    for (std::size_t i = 0; i != count; ++i) {
        const CanonicalAttribute attribute = attributes[i];
        if (!attribute.prefix.empty() && !attribute.IsDeclaration())
            RenderNamespace(attribute.prefix, scope, attributes);
    }
}

}  // namespace Saml::Xml::Security
