#include "hostile/attacks/digested_account.h"

#include "oracle/canonicalization/libxml2_documents.h"
#include "saml/security.h"
#include "saml/token.h"

#include <libxml/parser.h>
#include <openssl/evp.h>

#include <array>
#include <string_view>

namespace Saml::Attacks {
namespace {

using LibXml2String = std::unique_ptr<xmlChar, void (*)(void*)>;

std::string Taken(xmlChar* text) {
    const LibXml2String owned(text, xmlFree);
    return owned ? reinterpret_cast<const char*>(owned.get()) : "";
}
const xmlChar* Name(const char* name) {
    return reinterpret_cast<const xmlChar*>(name);
}

std::string NameOf(const xmlNode& node) {
    return reinterpret_cast<const char*>(node.name);
}
std::string Text(xmlNode& node) {
    return Taken(xmlNodeGetContent(&node));
}
std::string Attribute(xmlNode& node, const char* name) {
    return Taken(xmlGetNoNsProp(&node, Name(name)));
}
bool HasType(xmlNode& node, std::string_view localName) {
    const std::string type =
        Taken(xmlGetNsProp(&node, Name("type"), Name("http://www.w3.org/2001/XMLSchema-instance")));
    return type.substr(type.find(':') + 1) == localName;
}

std::vector<xmlNode*> Children(xmlNode& parent, const std::string& name) {
    std::vector<xmlNode*> found;
    for (xmlNode* child = parent.children; child != nullptr; child = child->next)
        if (child->type == XML_ELEMENT_NODE && NameOf(*child) == name) found.push_back(child);
    return found;
}
xmlNode& Child(xmlNode& parent, const std::string& name) {
    const std::vector<xmlNode*> found = Children(parent, name);
    if (found.size() != 1) throw std::runtime_error("not there once: " + name);
    return *found.front();
}

std::string User(const std::string& text) {
    const std::size_t at = text.rfind('@');
    return Oracle::PrincipalAccount(text.substr(0, at), text.substr(at + 1));
}
std::string Group(const std::string& text) {
    const std::size_t backslash = text.find('\\');
    return Oracle::PrincipalAccount(text.substr(backslash + 1), text.substr(0, backslash));
}

std::vector<unsigned char> Decoded(const std::string& base64) {
    std::vector<unsigned char> bytes(base64.size());
    const auto* const text = reinterpret_cast<const unsigned char*>(base64.data());
    const int size = EVP_DecodeBlock(bytes.data(), text, static_cast<int>(base64.size()));
    if (size < 0) throw std::runtime_error("no Base64: " + base64);
    bytes.resize(static_cast<std::size_t>(size));  // the tests' certificates are not padded
    return bytes;
}

std::vector<std::string> Values(xmlNode& attribute) {
    std::vector<std::string> values;
    for (xmlNode* const value : Children(attribute, "AttributeValue"))
        values.push_back(Text(*value));
    return values;
}

void ReadConditions(xmlNode& conditions, Oracle::Account& account) {
    account.start = Attribute(conditions, "NotBefore");
    account.end = Attribute(conditions, "NotOnOrAfter");
    for (xmlNode* const restriction : Children(conditions, "AudienceRestriction"))
        for (xmlNode* const audience : Children(*restriction, "Audience"))
            account.audience.insert(Text(*audience));
    const auto isAboveZero = [](const std::string& count) {
        return !count.empty() && std::stoll(count) > 0;
    };
    for (xmlNode* const proxy : Children(conditions, "ProxyRestriction"))
        account.delegable = isAboveZero(Attribute(*proxy, "Count"));
    for (xmlNode* const condition : Children(conditions, "Condition")) {
        if (HasType(*condition, "RenewRestrictionType"))
            account.renewable = isAboveZero(Attribute(*condition, "Count"));
        for (xmlNode* const delegate : Children(*condition, "Delegate"))
            account.delegates.push_back(User(Text(Child(*delegate, "NameID"))) + " " +
                                        Attribute(*delegate, "DelegationInstant"));
    }
}

void ReadAdvice(xmlNode& advice, Oracle::Account& account) {
    for (xmlNode* const entry : Children(advice, "RSAAdvice")) {
        account.advice.push_back(Attribute(*entry, "AdviceSource"));
        for (xmlNode* const attribute : Children(*entry, "Attribute"))
            account.advice.push_back(Oracle::AttributeAccount(
                {Attribute(*attribute, "Name"), Attribute(*attribute, "NameFormat"),
                 Attribute(*attribute, "FriendlyName"), Values(*attribute)}));
    }
}

void ReadAttribute(xmlNode& attribute, Oracle::Account& account) {
    const std::string name = Attribute(attribute, "Name");
    const std::vector<std::string> values = Values(attribute);
    if (name == ProfileUri::GroupIdentity)
        for (const std::string& value : values)
            account.groups.push_back(Group(value));
    if (name == ProfileUri::GivenName) account.firstName = values.at(0);
    if (name == ProfileUri::Surname) account.lastName = values.at(0);
    if (name == ProfileUri::IsSolution) account.solution = values.at(0) == "true";
}

}  // namespace

std::string DigestInput(Xml::ElementNode& assertion) {
    assertion.RemoveChild(assertion.GetFirstChildElement("Signature"));
    boost::intrusive_ptr<Xml::Security::Canonicalizer> canonicalizer;
    Xml::Security::CreateCanonicalizer(Xml::Security::Algorithm::ExclusiveC14N, canonicalizer);
    StringWriter out;
    canonicalizer->Canonicalize(&assertion, out);
    return out.data;
}

std::string Sha256(const std::string& bytes) {
    std::array<unsigned char, 32> digest{};
    std::array<unsigned char, 45> text{};
    if (EVP_Digest(bytes.data(), bytes.size(), digest.data(), nullptr, EVP_sha256(), nullptr) != 1)
        throw std::runtime_error("no digest");
    const int size = EVP_EncodeBlock(text.data(), digest.data(), static_cast<int>(digest.size()));
    return {text.begin(), text.begin() + size};
}

Oracle::Account DigestedAccount(const std::string& canonical) {
    LibXml2::KeepQuiet();
    const LibXml2::DocumentHandle document(xmlReadMemory(
        canonical.data(), static_cast<int>(canonical.size()), nullptr, nullptr, XML_PARSE_NONET));
    if (!document) throw LibXml2::Failure("not parsed");
    xmlNode& assertion = *xmlDocGetRootElement(document.get());

    Oracle::Account account;
    account.id = Attribute(assertion, "ID");
    xmlNode& subject = Child(assertion, "Subject");
    account.subject = User(Text(Child(subject, "NameID")));
    xmlNode& confirmation = Child(subject, "SubjectConfirmation");
    account.holderOfKey =
        Attribute(confirmation, "Method") == "urn:oasis:names:tc:SAML:2.0:cm:holder-of-key";
    if (account.holderOfKey)
        account.certificate = Decoded(Text(Child(confirmation, "SubjectConfirmationData")));
    ReadConditions(Child(assertion, "Conditions"), account);
    for (xmlNode* const advice : Children(assertion, "Advice"))
        ReadAdvice(*advice, account);
    for (xmlNode* const statement : Children(assertion, "AttributeStatement"))
        for (xmlNode* const attribute : Children(*statement, "Attribute"))
            ReadAttribute(*attribute, account);
    return account;
}

}  // namespace Saml::Attacks
