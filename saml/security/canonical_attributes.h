#pragma once

#include "saml/security/namespace_scope.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace Saml::Xml::Security {

/// One attribute or namespace declaration of a canonical start tag.
struct CanonicalAttribute {
    std::string_view prefix;     ///< "xmlns" for the declaration of a prefix.
    std::string_view localName;  ///< "xmlns" without a prefix for the default declaration.
    std::string_view value;
    /// What orders it: the three texts, read as one (Canonical XML 1.0, section 2.2).
    std::string_view sortKey[3];

    bool IsDeclaration() const noexcept {
        return prefix == "xmlns" || (prefix.empty() && localName == "xmlns");
    }
};

/// The attributes and declarations of one start tag, in the order in which they are written:
/// default declaration, declarations by prefix, attributes without namespace by local name, the
/// others by namespace URI and local name.
class CanonicalAttributes {
  public:
    void Clear() noexcept { entries_.clear(); }

    /// An attribute with a prefix that `scope` does not bind sorts like one without.
    void AddAttribute(std::string_view prefix, std::string_view localName, std::string_view value,
                      const NamespaceScope& scope);
    /// `prefix` is empty for the default declaration.
    void AddDeclaration(std::string_view prefix, std::string_view uri);

    /// Equal keys, which no well-formed document has, keep their order.
    void Sort();

    std::size_t Size() const noexcept { return entries_.size(); }
    const CanonicalAttribute& operator[](std::size_t index) const { return entries_[index]; }
    std::vector<CanonicalAttribute>::const_iterator begin() const { return entries_.begin(); }
    std::vector<CanonicalAttribute>::const_iterator end() const { return entries_.end(); }

  private:
    std::vector<CanonicalAttribute> entries_;
};

}  // namespace Saml::Xml::Security
