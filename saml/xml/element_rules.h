#pragma once

#include "saml/xml/content_nodes_impl.h"
#include "saml/xml/filtered_node_cursor.h"
#include "saml/xml/namespace_lookup.h"

#include <initializer_list>
#include <string>
#include <string_view>

/// The decisions of strict reading, without words: each reader words the refusals itself.
namespace Saml::Xml {

/// Names of attributes as written; few, so that they are searched one by one.
using AttributeNames = std::initializer_list<std::string_view>;

/// Whether an element is the expected one.
enum class ElementMatch { Match, OtherName, OtherNamespace };

/// `element` may be null, which is another name.
ElementMatch MatchElement(const ElementNodeImpl* element, std::string_view localName,
                          std::string_view namespaceUri, const NamespaceContext& namespaces);

/// The first name of `required` that `element` lacks; empty when it has them all.
std::string_view FindMissingAttribute(const ElementNodeImpl& element, AttributeNames required);

/// The written name of the first attribute that is in neither list and declares no namespace;
/// nothing when there is none.
FoundText FindUnexpectedAttribute(const ElementNodeImpl& element, AttributeNames required,
                                  AttributeNames optional);

/// The only child of `element` that the filter keeps, when that is a text; else null.
TextNodeImpl* FindOnlyText(ElementNodeImpl& element, const Security::NodeFilter& filter);

/// True when the filter keeps any child of `element`.
bool HasChildren(ElementNodeImpl& element, const Security::NodeFilter& filter);

}  // namespace Saml::Xml
