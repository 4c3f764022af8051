#include "support/token_reading.h"

#include "oracle/canonicalization/libxml2_documents.h"
#include "oracle/profile/plain_values.h"
#include "support/laws.h"
#include "support/quiet_libxml2.h"

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>

namespace Fuzz {
namespace {

constexpr char kSaml[] = "urn:oasis:names:tc:SAML:2.0:assertion";
constexpr char kDelegation[] = "urn:oasis:names:tc:SAML:2.0:conditions:delegation";
constexpr char kSignature[] = "http://www.w3.org/2000/09/xmldsig#";

struct FreeText {
    void operator()(xmlChar* text) const { xmlFree(text); }
};

std::string Taken(xmlChar* text) {
    const std::unique_ptr<xmlChar, FreeText> held(text);
    return text != nullptr ? reinterpret_cast<const char*>(text) : "";
}

bool Equal(const xmlChar* left, const std::string& right) {
    return left != nullptr && reinterpret_cast<const char*>(left) == right;
}

bool Is(const xmlNode& node, const std::string& uri, const char* name) {
    return node.type == XML_ELEMENT_NODE && Equal(node.name, name) && node.ns != nullptr &&
           Equal(node.ns->href, uri);
}

std::vector<xmlNode*> Children(xmlNode* parent, const std::string& uri, const char* name) {
    std::vector<xmlNode*> found;
    for (xmlNode* child = parent->children; child != nullptr; child = child->next)
        if (Is(*child, uri, name)) found.push_back(child);
    return found;
}

xmlNode* ChildIfAny(xmlNode* parent, const char* name, const std::string& uri = kSaml) {
    const std::vector<xmlNode*> found = Children(parent, uri, name);
    Require(found.size() < 2, "what may stand once does not stand twice");
    return found.empty() ? nullptr : found.front();
}

xmlNode* Child(xmlNode* parent, const char* name, const std::string& uri = kSaml) {
    xmlNode* const found = ChildIfAny(parent, name, uri);
    Require(found != nullptr, "another reader finds what the token was read from");
    return found;
}

std::string TextOf(xmlNode* element) {
    return Taken(xmlNodeGetContent(element));
}

std::string AttributeOf(xmlNode* element, const char* name) {
    return Taken(xmlGetNoNsProp(element, reinterpret_cast<const xmlChar*>(name)));
}

/// Blanks between tags are no content: an attribute's value that is nothing else is empty.
std::string ValueOf(xmlNode* element) {
    const std::string text = TextOf(element);
    return text.find_first_not_of("\t\n\r ") == std::string::npos ? std::string() : text;
}

bool CountsAbove0(xmlNode* element) {
    return element != nullptr &&
           std::strtoll(AttributeOf(element, "Count").c_str(), nullptr, 10) > 0;
}

std::string Upn(xmlNode* nameId) {
    Require(AttributeOf(nameId, "Format") == Saml::ProfileUri::UpnNameFormat,
            "principals have user principal names");
    const std::string name = TextOf(nameId);
    const std::size_t at = name.rfind('@');
    return Oracle::PrincipalAccount(name.substr(0, at), name.substr(at + 1));
}

std::string Group(const std::string& value) {
    const std::size_t end = value.find('\\');
    return Oracle::PrincipalAccount(value.substr(end + 1), value.substr(0, end));
}

Saml::SamlAttribute Attribute(xmlNode* element) {
    Saml::SamlAttribute attribute{AttributeOf(element, "Name"),
                                  AttributeOf(element, "NameFormat"),
                                  AttributeOf(element, "FriendlyName"),
                                  {}};
    for (xmlNode* const value : Children(element, kSaml, "AttributeValue"))
        attribute.Values.push_back(ValueOf(value));
    return attribute;
}

void ReadSubject(xmlNode* subject, Oracle::Account& account) {
    account.subject = Upn(Child(subject, "NameID"));
    xmlNode* const confirmation = Child(subject, "SubjectConfirmation");
    account.holderOfKey =
        AttributeOf(confirmation, "Method") == "urn:oasis:names:tc:SAML:2.0:cm:holder-of-key";
    if (!account.holderOfKey) return;
    xmlNode* const keyInfo =
        Child(Child(confirmation, "SubjectConfirmationData"), "KeyInfo", kSignature);
    account.certificate = *Oracle::FromBase64(
        TextOf(Child(Child(keyInfo, "X509Data", kSignature), "X509Certificate", kSignature)));
}

void ReadConditions(xmlNode* conditions, Oracle::Account& account) {
    account.start = AttributeOf(conditions, "NotBefore");
    account.end = AttributeOf(conditions, "NotOnOrAfter");
    account.delegable = CountsAbove0(ChildIfAny(conditions, "ProxyRestriction"));
    if (xmlNode* const restriction = ChildIfAny(conditions, "AudienceRestriction"))
        for (xmlNode* const audience : Children(restriction, kSaml, "Audience"))
            account.audience.insert(TextOf(audience));
    for (xmlNode* const condition : Children(conditions, kSaml, "Condition")) {
        const std::vector<xmlNode*> delegates = Children(condition, kDelegation, "Delegate");
        if (delegates.empty()) account.renewable = CountsAbove0(condition);
        for (xmlNode* const delegate : delegates)
            account.delegates.push_back(Upn(Child(delegate, "NameID")) + " " +
                                        AttributeOf(delegate, "DelegationInstant"));
    }
}

void ReadAdvice(xmlNode* advice, Oracle::Account& account) {
    for (xmlNode* const entry :
         Children(advice, Saml::ProfileUri::ExtensionNamespace, "RSAAdvice")) {
        account.advice.push_back(AttributeOf(entry, "AdviceSource"));
        for (xmlNode* const attribute : Children(entry, kSaml, "Attribute"))
            account.advice.push_back(Oracle::AttributeAccount(Attribute(attribute)));
    }
}

bool IsTrue(const std::string& value) {
    return value.size() == 4 && strncasecmp(value.c_str(), "true", 4) == 0;
}

void ReadAttributes(xmlNode* statement, Oracle::Account& account) {
    for (xmlNode* const element : Children(statement, kSaml, "Attribute")) {
        const Saml::SamlAttribute attribute = Attribute(element);
        const std::string first = attribute.Values.empty() ? "" : attribute.Values.front();
        if (attribute.Name == Saml::ProfileUri::GroupIdentity)
            std::transform(attribute.Values.begin(), attribute.Values.end(),
                           std::back_inserter(account.groups), Group);
        if (attribute.Name == Saml::ProfileUri::IsSolution) account.solution = IsTrue(first);
        if (attribute.Name == Saml::ProfileUri::GivenName) account.firstName = first;
        if (attribute.Name == Saml::ProfileUri::Surname) account.lastName = first;
    }
}

}  // namespace

std::optional<Oracle::Account> ReadToken(const std::string& text) {
    ForbidExternalEntities();
    LibXml2::KeepQuiet();
    const LibXml2::DocumentHandle document(
        xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr,
                      XML_PARSE_NOENT | XML_PARSE_DTDATTR | XML_PARSE_NONET));
    if (!document) return std::nullopt;
    xmlNode* const assertion = xmlDocGetRootElement(document.get());
    Require(Is(*assertion, kSaml, "Assertion"), "the root is an assertion");
    Oracle::Account account;
    account.id = AttributeOf(assertion, "ID");
    ReadSubject(Child(assertion, "Subject"), account);
    ReadConditions(Child(assertion, "Conditions"), account);
    if (xmlNode* const advice = ChildIfAny(assertion, "Advice")) ReadAdvice(advice, account);
    if (xmlNode* const statement = ChildIfAny(assertion, "AttributeStatement"))
        ReadAttributes(statement, account);
    return account;
}

}  // namespace Fuzz
