#include "saml/token/assertion_cursor.h"

#include "saml/token/saml_identifiers.h"
#include "saml/xml/qualified_name.h"

#include <boost/lexical_cast.hpp>
#include <boost/numeric/conversion/cast.hpp>

#include <algorithm>
#include <typeinfo>

namespace Saml {
namespace {

using Xml::AttributeNames;
using Xml::ElementMatch;
using Xml::ElementNodeImpl;
using Xml::NamespaceContext;

std::string ElementNotFound(std::string_view localName) {
    return "Expected element '" + std::string(localName) + "' not found.";
}
std::string UnexpectedNamespace(std::string_view localName) {
    return "Element '" + std::string(localName) + "' has unexpected namespace";
}
// No apostrophe closes the element's name: callers know this text as it is.
std::string MissingAttribute(const std::string& element, std::string_view attribute) {
    return "Node '" + element + " is missing required attribute '" + std::string(attribute) + "'";
}
std::string UnexpectedAttributes(const std::string& element) {
    return "Unexpected attributes on element '" + element + "'";
}
std::string UnexpectedAttribute(std::string_view attribute, const std::string& element) {
    return "Unexpected attribute '" + std::string(attribute) + "' on element '" + element + "'";
}
std::string NotADate(const std::string& element, std::string_view attribute) {
    return element + "/@" + std::string(attribute) + " is not a date";
}
std::string NotACount(const std::string& element) {
    return element + "/@Count is not a non-negative integer.";
}
std::string NotOnlyText(const std::string& element) {
    return "Element '" + element +
           "' must only have textual content (but has extra children or is empty).";
}
std::string NotEmpty(const std::string& element) {
    return "Element '" + element + "' must be empty";
}

constexpr char kTypeLocalName[] = "type";
constexpr char kMissingTypeName[] = "xsi:type";  // what has no written name is called by its usual
constexpr char kCount[] = "Count";

const Xml::Security::SkipWsAndCommentsFilter kVisible{};

void ExpectElement(const ElementNodeImpl* element, std::string_view localName,
                   std::string_view namespaceUri, const NamespaceContext& namespaces) {
    switch (Xml::MatchElement(element, localName, namespaceUri, namespaces)) {
        case ElementMatch::OtherName:
            throw ParseException(ElementNotFound(localName));
        case ElementMatch::OtherNamespace:
            throw ParseException(UnexpectedNamespace(localName));
        case ElementMatch::Match:
            break;
    }
}

// Blanks are invisible between elements only. Beside a text they belong to what was signed: a
// comment behind the first character of " admin" must not make "admin" of it.
bool HasOtherText(const ElementNodeImpl& element, const Xml::TextNodeImpl& text) {
    for (const Xml::NodeImpl* child = element.FirstChild(); child != nullptr;
         child = child->NextSibling())
        if (child != &text && child->Type() == Xml::NodeType::Text) return true;
    return false;
}

// Signed first: the conversion to an unsigned type alone would take "-1" for a huge number.
std::uint64_t CountFromText(const std::string& text) {
    return boost::numeric_cast<std::uint64_t>(boost::lexical_cast<std::int64_t>(text));
}

}  // namespace

bool AssertionElement::Is(std::string_view localName, std::string_view namespaceUri) const {
    return Xml::MatchElement(node_, localName, namespaceUri, *namespaces_) == ElementMatch::Match;
}

void AssertionElement::Expect(std::string_view localName, std::string_view namespaceUri) const {
    ExpectElement(node_, localName, namespaceUri, *namespaces_);
}

void AssertionElement::CheckAttributes(AttributeNames required, AttributeNames optional) const {
    const std::string_view missing = Xml::FindMissingAttribute(*node_, required);
    if (!missing.empty()) throw ParseException(MissingAttribute(LocalName(), missing));
    if (Xml::FindUnexpectedAttribute(*node_, required, optional))
        throw ParseException(UnexpectedAttributes(LocalName()));
}

void AssertionElement::CheckTypedAttributes(AttributeNames optional) const {
    const std::optional<Xml::Attribute> type = FindType();
    if (!type) throw ParseException(MissingAttribute(LocalName(), kMissingTypeName));
    // By its written name, so that a second attribute that resolves to the same name, which nobody
    // would read, is unexpected like any other.
    const Xml::FoundText unexpected = Xml::FindUnexpectedAttribute(*node_, {type->name}, optional);
    if (unexpected) throw ParseException(UnexpectedAttribute(*unexpected, LocalName()));
}

bool AssertionElement::HasAttribute(std::string_view name) const {
    return node_->FindAttribute(name).has_value();
}

std::string AssertionElement::Attribute(std::string_view name) const {
    return std::string(node_->FindAttribute(name).value_or(""));
}

DateTime AssertionElement::Date(std::string_view name) const {
    const Xml::FoundText text = node_->FindAttribute(name);
    DateTime date;
    if (!text || !DateTime::Create(std::string(*text), date))
        throw ParseException(NotADate(LocalName(), name));
    return date;
}

std::optional<std::uint64_t> AssertionElement::Count() const {
    const Xml::FoundText text = node_->FindAttribute(kCount);
    if (!text) return std::nullopt;
    try {
        return CountFromText(std::string(*text));
    } catch (const std::bad_cast&) {  // the base of what both conversions throw
        throw ParseException(NotACount(LocalName()));
    }
}

// A namespace declaration is never the type, even where somebody has bound the prefix "xmlns":
// canonicalization leaves unused declarations out, so `xmlns:type` could be added to a signed
// token.
std::optional<Xml::Attribute> AssertionElement::FindType() const {
    for (const Xml::Attribute attribute : node_->Attributes()) {
        const Xml::QualifiedName name = Xml::SplitQualifiedName(attribute.name);
        if (name.localName != kTypeLocalName || name.prefix.empty()) continue;
        if (Xml::IsNamespaceDeclaration(attribute.name)) continue;
        if (namespaces_->Find(*node_, name.prefix) == SamlUri::SchemaInstanceNamespace)
            return attribute;
    }
    return std::nullopt;
}

bool AssertionElement::HasType(std::string_view localName, std::string_view namespaceUri) const {
    const std::optional<Xml::Attribute> type = FindType();
    if (!type) return false;
    const Xml::QualifiedName name = Xml::SplitQualifiedName(type->value);
    return namespaces_->Find(*node_, name.prefix) == namespaceUri && name.localName == localName;
}

std::string AssertionElement::TypeAsWritten() const {
    const std::optional<Xml::Attribute> type = FindType();
    return type ? std::string(type->value) : std::string();
}

// Most elements hold one text: of these nothing else has to be asked.
Xml::TextNodeImpl* AssertionElement::LoneText() const {
    Xml::TextNodeImpl* const text = Xml::AsText(node_->FirstChild());
    const bool isAlone = text != nullptr && text->NextSibling() == nullptr;
    return isAlone && kVisible.Accept(*text) ? text : nullptr;
}

Xml::TextNodeImpl& AssertionElement::OnlyText() const {
    if (Xml::TextNodeImpl* const alone = LoneText()) return *alone;
    Xml::TextNodeImpl* const text = Xml::FindOnlyText(*node_, kVisible);
    if (text == nullptr || HasOtherText(*node_, *text))
        throw ParseException(NotOnlyText(LocalName()));
    return *text;
}

const std::string& AssertionElement::Text() const {
    return OnlyText().Text();
}

AttributeValue AssertionElement::Value() const {
    if (Xml::TextNodeImpl* const alone = LoneText()) return AttributeValue(*alone);
    return IsEmpty() ? AttributeValue() : AttributeValue(OnlyText());
}

bool AssertionElement::IsEmpty() const {
    return !Xml::HasChildren(*node_, kVisible);
}

void AssertionElement::ExpectEmpty() const {
    if (!IsEmpty()) throw ParseException(NotEmpty(LocalName()));
}

AssertionCursor AssertionElement::Children() const {
    return {*node_, *namespaces_};
}

AssertionCursor::AssertionCursor(ElementNodeImpl& parent, const NamespaceContext& namespaces)
    : place_(&parent, kVisible), namespaces_(&namespaces) {
    place_.MoveToFirstChild();
}

void AssertionCursor::ExpectEnd(const char* message) const {
    if (!AtEnd()) throw ParseException(message);
}

AssertionElement AssertionCursor::Take(std::string_view localName, std::string_view namespaceUri) {
    ElementNodeImpl* const element = Xml::AsElement(place_.Current());
    ExpectElement(element, localName, namespaceUri, *namespaces_);
    place_.MoveToNextSibling();
    return {*element, *namespaces_};
}

std::optional<AssertionElement> AssertionCursor::TakeIf(std::string_view localName,
                                                        std::string_view namespaceUri) {
    const ElementNodeImpl* const element = Xml::AsElement(place_.Current());
    if (Xml::MatchElement(element, localName, namespaceUri, *namespaces_) != ElementMatch::Match)
        return std::nullopt;
    return TakeElement();
}

std::optional<AssertionElement> AssertionCursor::TakeElement() {
    ElementNodeImpl* const element = Xml::AsElement(place_.Current());
    if (element == nullptr) return std::nullopt;
    place_.MoveToNextSibling();
    return AssertionElement(*element, *namespaces_);
}

}  // namespace Saml
