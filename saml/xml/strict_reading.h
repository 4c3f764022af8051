#pragma once

#include "saml/xml/element_rules.h"

#include <string>
#include <string_view>

/// Strict reading as the XML-signature readers need it: whatever is not exactly as expected is a
/// `SignatureSyntaxException` that names the element. Nothing is changed in the tree.
namespace Saml::Xml {

/// Throws unless `element`, which may be null, has this name and namespace.
void ExpectElement(const ElementNodeImpl* element, std::string_view localName,
                   std::string_view namespaceUri, const NamespaceContext& namespaces);

/// `ExpectElement` with the XML-signature namespace.
void ExpectSignatureElement(const ElementNodeImpl* element, std::string_view localName,
                            const NamespaceContext& namespaces);

/// The same tests without throwing.
bool IsElement(const ElementNodeImpl* element, std::string_view localName,
               std::string_view namespaceUri, const NamespaceContext& namespaces);
bool IsSignatureElement(const ElementNodeImpl* element, std::string_view localName,
                        const NamespaceContext& namespaces);

/// Throws unless the attributes are the required ones plus any of the optional ones. Namespace
/// declarations are always allowed.
void CheckAttributes(const ElementNodeImpl& element, AttributeNames required,
                     AttributeNames optional = {});

/// The value of the only attribute, `name`, that `element` must carry and may carry.
std::string_view ReadRequiredAttribute(const ElementNodeImpl& element, std::string_view name);

/// Throws when `filter` keeps any child of `element`.
void ExpectNoChildren(ElementNodeImpl& element, const Security::NodeFilter& filter);

/// The one child of `element` that `filter` keeps, which must be a text. Texts are never joined:
/// one split by a comment or a CDATA section, which canonicalization drops, would not say what was
/// signed.
TextNodeImpl& ReadTextContent(ElementNodeImpl& element, const Security::NodeFilter& filter);

}  // namespace Saml::Xml
