#pragma once

#include "saml/security/canonical_attributes.h"
#include "saml/security/canonical_output.h"
#include "saml/security/namespace_scope.h"
#include "saml/xml/element_node_impl.h"
#include "saml/xml/filtered_node_cursor.h"

#include <string_view>

namespace Saml::Xml::Security {

/// A canonicalization inside the library: of an element seen through a filter.
/// Threads: no mutable state; one object serves any number of threads at once.
class CanonicalizerInt {
  public:
    /// Writes the canonical form of the cursor's node, the apex, about which the filter is not
    /// asked, and of everything below it that the filter accepts.
    /// \throws TypeMismatchException  The apex is no element.
    /// \throws XmlSecurityException   Repeated declarations would be more than 8 MiB and more
    ///                                than a hundred times what was met: a flood.
    virtual void Canonicalize(FilteredNodeCursor cursor, Writer& out) const = 0;
    virtual ~CanonicalizerInt() = default;
};

/// The walk that inclusive and exclusive canonicalization share; they differ in which namespace
/// declarations an element is given.
///
/// Narrower than the W3C recommendations where existing signatures depend on it: CDATA sections,
/// like comments and processing instructions, contribute nothing; no `xml:` attribute is inherited
/// by the apex; ">" is escaped in attribute values, too.
class C14NCanonicalizer : public CanonicalizerInt {
  public:
    void Canonicalize(FilteredNodeCursor cursor, Writer& out) const final;

  protected:
    /// Adds to `attributes` what only the apex is given, before `RenderElementNamespaces`.
    virtual void RenderApexNamespaces(NamespaceScope& scope,
                                      CanonicalAttributes& attributes) const = 0;
    /// Adds to `attributes`, which holds the element's own attributes first, the declarations that
    /// the element needs.
    virtual void RenderElementNamespaces(const ElementNodeImpl& element, NamespaceScope& scope,
                                         CanonicalAttributes& attributes) const = 0;

    /// Adds the declaration of `prefix` unless it is unbound or the output has it already.
    static void RenderNamespace(std::string_view prefix, NamespaceScope& scope,
                                CanonicalAttributes& attributes);

  private:
    class Rendering;
};

}  // namespace Saml::Xml::Security
