/// \file
/// Fills the template of an assertion with what a token shall say.
#pragma once

#include "sign_token_arguments.h"
#include <saml/token.h>

#include <string>

namespace AssertionTemplate {

using namespace Saml::Xml;

inline std::string MinutesFromNow(std::int64_t minutes) {
    Saml::DateTime instant;
    if (!Saml::DateTime::Create(Saml::DateTime::GetUtcDateTime().timeT() + 60 * minutes, instant))
        throw UnusableArgument("There is no date for this lifetime");
    return instant.value();
}

/// For what cannot contain markup, such as identifiers and dates of our own.
inline void Replace(std::string& text, const std::string& placeholder, const std::string& value) {
    for (std::size_t at = 0; (at = text.find(placeholder, at)) != std::string::npos;)
        text.replace(at, placeholder.size(), value);
}

inline boost::intrusive_ptr<Document> Parse(const std::string& xml) {
    const boost::intrusive_ptr<XMLHandler> handler(CreateXMLDocumentHandler(1 << 20, 10000, 64));
    const boost::intrusive_ptr<XMLParser> parser(CreateXMLParser(handler.get()));
    boost::intrusive_ptr<Node> document;
    parser->Parse(xml, true, document);
    return boost::intrusive_ptr<Document>(&dynamic_cast<Document&>(*document));
}

inline ElementNode& Child(ElementNode& parent, const std::string& name) {
    if (ElementNode* const child = parent.GetFirstChildElement(name)) return *child;
    throw UnusableArgument("The template has no " + name + " in its " + parent.GetLocalName());
}

inline ElementNode& Append(ElementNode& parent, const std::string& name) {
    const boost::intrusive_ptr<ElementNode> child(CreateElementNode(parent.GetPrefix(), name));
    parent.AppendChild(child.get());
    return *child;
}

/// Nothing in `value` can become markup: the tree holds it as text, and escapes it when written.
inline void SetText(ElementNode& element, const std::string& value) {
    while (Node* const old = element.GetFirstChild())
        element.RemoveChild(old);
    const boost::intrusive_ptr<TextNode> text(CreateTextNode());
    text->SetText(value);
    element.AppendChild(text.get());
}

inline ElementNode& GroupAttribute(ElementNode& assertion) {
    ElementNode* attribute = &Child(Child(assertion, "AttributeStatement"), "Attribute");
    for (; attribute != nullptr; attribute = attribute->GetNextSiblingElement("Attribute")) {
        std::string name;
        attribute->GetAttribute("Name", name);
        if (name == Saml::ProfileUri::GroupIdentity) return *attribute;
    }
    throw UnusableArgument("The template has no Attribute for groups");
}

/// The template becomes a document; groups and audiences are added to those that it names already.
/// \throws UnusableArgument, Saml::Exception
inline boost::intrusive_ptr<Document> Fill(const std::string& id, const Arguments& arguments) {
    std::string xml = arguments.assertion;
    Replace(xml, "@ID@", id);
    Replace(xml, "@ISSUED@", MinutesFromNow(arguments.start));
    Replace(xml, "@EXPIRES@", MinutesFromNow(arguments.start + arguments.lifetime));
    boost::intrusive_ptr<Document> document = Parse(xml);

    ElementNode& assertion = *document->GetRootElement();
    if (!arguments.subject.empty())
        SetText(Child(Child(assertion, "Subject"), "NameID"), arguments.subject);
    for (const std::string& group : arguments.groups)
        SetText(Append(GroupAttribute(assertion), "AttributeValue"), group);
    ElementNode& conditions = Child(assertion, "Conditions");
    for (const std::string& service : arguments.audience) {
        ElementNode* restriction = conditions.GetFirstChildElement("AudienceRestriction");
        if (restriction == nullptr) restriction = &Append(conditions, "AudienceRestriction");
        SetText(Append(*restriction, "Audience"), service);
    }
    return document;
}

}  // namespace AssertionTemplate
