#include "saml/token/statements_reader.h"

#include "saml/token/saml_identifiers.h"

#include <cstddef>
#include <utility>

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

ParsedAttribute ReadAttribute(const AssertionElement& element) {
    element.CheckAttributes({kName, kNameFormat}, {kFriendlyName});
    ParsedAttribute attribute;
    attribute.name = element.Attribute(kName);
    attribute.nameFormat = element.Attribute(kNameFormat);
    attribute.friendlyName = element.Attribute(kFriendlyName);
    attribute.values.reserve(CountChildren(element.Node()));
    // An attribute may have the empty string as its value; no other text here may be empty.
    for (AssertionCursor children = element.Children(); !children.AtEnd();)
        attribute.values.push_back(
            children.Take("AttributeValue", SamlUri::AssertionNamespace).Value());
    return attribute;
}

SamlAttribute WithValuesTaken(ParsedAttribute parsed) {
    SamlAttribute attribute;
    attribute.Name = std::move(parsed.name);
    attribute.NameFormat = std::move(parsed.nameFormat);
    attribute.FriendlyName = std::move(parsed.friendlyName);
    attribute.Values.reserve(parsed.values.size());
    for (AttributeValue& value : parsed.values)
        attribute.Values.push_back(value.Take());
    return attribute;
}

Advice ReadAdviceEntry(const AssertionElement& element) {
    element.CheckAttributes({kAdviceSource});
    Advice advice;
    advice.AdviceSource = element.Attribute(kAdviceSource);
    for (AssertionCursor children = element.Children(); !children.AtEnd();)
        advice.Attributes.push_back(WithValuesTaken(
            ReadAttribute(children.Take("Attribute", SamlUri::AssertionNamespace))));
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

std::vector<ParsedAttribute> ReadAttributeStatement(const AssertionElement& statement) {
    statement.CheckAttributes({});
    std::vector<ParsedAttribute> attributes;
    AssertionCursor children = statement.Children();
    do {  // at least one
        attributes.push_back(
            ReadAttribute(children.Take("Attribute", SamlUri::AssertionNamespace)));
    } while (!children.AtEnd());
    return attributes;
}

}  // namespace Saml
