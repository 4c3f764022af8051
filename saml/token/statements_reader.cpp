#include "saml/token/statements_reader.h"

#include "saml/token/saml_identifiers.h"

#include <cstddef>

namespace Saml {
namespace {

constexpr char kAfterContext[] = "Unexpected elements after AuthnContext";
constexpr char kAfterClassRef[] = "Unexpected elements after AuthnContextClassRef";

constexpr char kAdviceSource[] = "AdviceSource";
constexpr char kAuthnInstant[] = "AuthnInstant";
constexpr char kName[] = "Name";
constexpr char kNameFormat[] = "NameFormat";
constexpr char kFriendlyName[] = "FriendlyName";

std::size_t CountChildren(const Xml::NodeImpl& parent) {
    std::size_t count = 0;
    for (const Xml::NodeImpl* child = parent.FirstChild(); child != nullptr;
         child = child->NextSibling())
        ++count;
    return count;
}

SamlAttribute ReadAttribute(const AssertionElement& element) {
    element.CheckAttributes({kName, kNameFormat}, {kFriendlyName});
    SamlAttribute attribute;
    attribute.Name = element.Attribute(kName);
    attribute.NameFormat = element.Attribute(kNameFormat);
    attribute.FriendlyName = element.Attribute(kFriendlyName);
    attribute.Values.reserve(CountChildren(element.Node()));
    // An attribute may have the empty string as its value; no other text here may be empty.
    for (AssertionCursor children = element.Children(); !children.AtEnd();)
        attribute.Values.push_back(
            children.Take("AttributeValue", SamlUri::AssertionNamespace).TextOrEmpty());
    return attribute;
}

Advice ReadAdviceEntry(const AssertionElement& element) {
    element.CheckAttributes({kAdviceSource});
    Advice advice;
    advice.AdviceSource = element.Attribute(kAdviceSource);
    for (AssertionCursor children = element.Children(); !children.AtEnd();)
        advice.Attributes.push_back(
            ReadAttribute(children.Take("Attribute", SamlUri::AssertionNamespace)));
    return advice;
}

std::string ReadContextClass(const AssertionElement& context) {
    context.CheckAttributes({});
    AssertionCursor children = context.Children();
    const AssertionElement reference =
        children.Take("AuthnContextClassRef", SamlUri::AssertionNamespace);
    reference.CheckAttributes({});
    std::string contextClass = reference.Text();
    children.ExpectEnd(kAfterClassRef);
    return contextClass;
}

}  // namespace

std::vector<Advice> ReadAdvice(const AssertionElement& element) {
    element.CheckAttributes({});
    std::vector<Advice> entries;
    AssertionCursor children = element.Children();
    do {  // at least one
        entries.push_back(
            ReadAdviceEntry(children.Take("RSAAdvice", ProfileUri::ExtensionNamespace)));
    } while (!children.AtEnd());
    return entries;
}

ParsedAuthentication ReadAuthnStatement(const AssertionElement& statement) {
    statement.CheckAttributes({kAuthnInstant});
    ParsedAuthentication authentication;
    authentication.instant = statement.Date(kAuthnInstant);
    AssertionCursor children = statement.Children();
    authentication.contextClass =
        ReadContextClass(children.Take("AuthnContext", SamlUri::AssertionNamespace));
    children.ExpectEnd(kAfterContext);
    return authentication;
}

std::vector<SamlAttribute> ReadAttributeStatement(const AssertionElement& statement) {
    statement.CheckAttributes({});
    std::vector<SamlAttribute> attributes;
    AssertionCursor children = statement.Children();
    do {  // at least one
        attributes.push_back(
            ReadAttribute(children.Take("Attribute", SamlUri::AssertionNamespace)));
    } while (!children.AtEnd());
    return attributes;
}

}  // namespace Saml
