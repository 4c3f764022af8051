#include "oracle/profile/full_assertion.h"

#include "oracle/profile/assertion_grammar.h"
#include "oracle/profile/markup_signature.h"
#include "oracle/profile/plain_values.h"
#include "saml/token.h"
#include "support/test_keys.h"

#include <utility>

namespace Oracle {
namespace {

using Saml::TestKeys::CertificateNamed;
using Saml::TestKeys::KeyNamed;
namespace ProfileUri = Saml::ProfileUri;

constexpr char kSha256[] = "http://www.w3.org/2001/04/xmlenc#sha256";
constexpr char kRsaSha256[] = "http://www.w3.org/2001/04/xmldsig-more#rsa-sha256";
constexpr char kUriNames[] = "urn:oasis:names:tc:SAML:2.0:attrname-format:uri";
constexpr char kDelegate[] = "portal@corp";
constexpr char kLastDelegate[] = "report@corp";

Markup Certificate(const std::string& name) {
    return ElementWith("ds:X509Certificate", {}, ToBase64(*CertificateNamed(name).der));
}

Markup Method(const std::string& name, const std::string& algorithm) {
    return ElementOf(name, {{"Algorithm", algorithm}});
}

Markup Transforms(bool withPrefixList) {
    Markup canonicalization = Method("ds:Transform", Grammar::kExclusiveC14N);
    if (withPrefixList)
        canonicalization.children = {
            ElementOf("ec:InclusiveNamespaces",
                      {{"xmlns:ec", Grammar::kExclusiveC14N}, {"PrefixList", "saml xsi ext"}})};
    return ElementOf("ds:Transforms", {},
                     {Method("ds:Transform", Grammar::kEnvelopedSignature), canonicalization});
}

Markup Reference(std::vector<Attribute> attributes, bool withPrefixList) {
    return ElementOf("ds:Reference", std::move(attributes),
                     {Transforms(withPrefixList), Method("ds:DigestMethod", kSha256),
                      ElementWith("ds:DigestValue", {}, std::string(44, 'A'))});
}

/// Digests and value have the right length, nothing more.
Markup Signature(bool withSecondReference) {
    Markup signedInfo = ElementOf(
        "ds:SignedInfo", {{"Id", "_info"}},
        {Method("ds:CanonicalizationMethod", Grammar::kExclusiveC14N),
         Method("ds:SignatureMethod", kRsaSha256),
         Reference({{"URI", std::string("#") + kAssertionId}, {"Id", "_reference"}}, true)});
    if (withSecondReference) signedInfo.children.push_back(Reference({{"URI", ""}}, false));
    return ElementOf(
        "ds:Signature", {{"xmlns:ds", Grammar::kSignatureNamespace}, {"Id", "_signature"}},
        {signedInfo, ElementWith("ds:SignatureValue", {{"Id", "_value"}}, std::string(172, 'A')),
         ElementOf(
             "ds:KeyInfo", {},
             {ElementOf("ds:X509Data", {},
                        {ElementWith("ds:X509SubjectName", {}, "CN=Signer"), Certificate("leaf"),
                         Certificate("intermediate"), Certificate("root")})})});
}

Markup NameId(const std::string& upn) {
    return ElementWith("saml:NameID", {{"Format", ProfileUri::UpnNameFormat}}, upn);
}

Markup ConfirmationData(Confirmation confirmation, long long now) {
    const Attribute end{"NotOnOrAfter", InstantText(now + 3600)};
    if (confirmation == Confirmation::Bearer)
        return ElementOf("saml:SubjectConfirmationData", {end});
    return ElementOf("saml:SubjectConfirmationData",
                     {{"xsi:type", "saml:KeyInfoConfirmationDataType"}, end},
                     {ElementOf("ds:KeyInfo", {{"xmlns:ds", Grammar::kSignatureNamespace}},
                                {ElementOf("ds:X509Data", {}, {Certificate("intermediate")})})});
}

Markup Subject(Confirmation confirmation, long long now) {
    const std::string method = confirmation == Confirmation::Bearer ? "bearer" : "holder-of-key";
    return ElementOf("saml:Subject", {},
                     {NameId("jdoe@corp"),
                      ElementOf("saml:SubjectConfirmation",
                                {{"Method", "urn:oasis:names:tc:SAML:2.0:cm:" + method}},
                                {NameId(kLastDelegate), ConfirmationData(confirmation, now)})});
}

Markup Delegate(const std::string& upn, long long instant) {
    return ElementOf("del:Delegate", {{"DelegationInstant", InstantText(instant)}}, {NameId(upn)});
}

Markup Conditions(long long now) {
    return ElementOf(
        "saml:Conditions",
        {{"NotBefore", InstantText(now - 60)}, {"NotOnOrAfter", InstantText(now + 3600)}},
        {ElementOf("saml:AudienceRestriction", {},
                   {ElementWith("saml:Audience", {}, "https://a.example/?x=1&y=2"),
                    ElementWith("saml:Audience", {}, "https://b.example/")}),
         ElementOf("saml:ProxyRestriction", {{"Count", "3"}}),
         ElementOf("saml:Condition", {{"xsi:type", "ext:RenewRestrictionType"},
                                      {"Count", "1"},
                                      {"Postdatable", "false"},
                                      {"RenewExpired", "false"}}),
         ElementOf("saml:Condition", {{"xsi:type", "del:DelegationRestrictionType"}},
                   {Delegate(kDelegate, now - 50), Delegate(kLastDelegate, now - 40)})});
}

Markup AttributeOf(const std::string& name, const std::vector<std::string>& values,
                   const std::string& friendlyName = {}) {
    Markup attribute = ElementOf("saml:Attribute", {{"Name", name}, {"NameFormat", kUriNames}});
    if (!friendlyName.empty()) attribute.attributes.push_back({"FriendlyName", friendlyName});
    for (const std::string& value : values)
        attribute.children.push_back(value.empty() ? ElementOf("saml:AttributeValue", {})
                                                   : ElementWith("saml:AttributeValue", {}, value));
    return attribute;
}

Markup Advice() {
    return ElementOf("saml:Advice", {},
                     {ElementOf("ext:RSAAdvice", {{"AdviceSource", "urn:example:first"}},
                                {AttributeOf("urn:example:advised", {"one", ""}, "advised"),
                                 AttributeOf("urn:example:bare", {})}),
                      ElementOf("ext:RSAAdvice", {{"AdviceSource", "urn:example:second"}})});
}

Markup AuthnStatement(long long now) {
    return ElementOf("saml:AuthnStatement", {{"AuthnInstant", InstantText(now - 70)}},
                     {ElementOf("saml:AuthnContext", {},
                                {ElementWith("saml:AuthnContextClassRef", {},
                                             "urn:oasis:names:tc:SAML:2.0:ac:classes:Password")})});
}

Markup AttributeStatement() {
    return ElementOf(
        "saml:AttributeStatement", {},
        {AttributeOf(ProfileUri::GroupIdentity, {"corp\\Staff", "corp\\R&D <Paris>"}, "groups"),
         AttributeOf(ProfileUri::IsSolution, {"true"}),
         AttributeOf(ProfileUri::GivenName, {"Jane"}),
         AttributeOf(ProfileUri::Surname, {"Doe", "Roe"}),
         AttributeOf("urn:example:unknown", {"", "\"quoted\""})});
}

}  // namespace

Markup FullAssertion(Confirmation confirmation, long long now) {
    Markup document{MarkupKind::Document, {}, {}, {}, {}};
    document.children = {
        ElementOf("saml:Assertion",
                  {{"xmlns:saml", Grammar::kAssertionNamespace},
                   {"xmlns:xsi", Grammar::kInstanceNamespace},
                   {"xmlns:ext", ProfileUri::ExtensionNamespace},
                   {"xmlns:del", Grammar::kDelegationNamespace},
                   {"ID", kAssertionId},
                   {"IssueInstant", InstantText(now - 60)},
                   {"Version", "2.0"}},
                  {ElementWith("saml:Issuer",
                               {{"Format", "urn:oasis:names:tc:SAML:2.0:nameid-format:entity"}},
                               "https://idp.example/"),
                   Signature(confirmation == Confirmation::Bearer), Subject(confirmation, now),
                   Conditions(now), Advice(), AuthnStatement(now), AttributeStatement()})};
    SignAfresh(document, KeyNamed("leaf"));
    return document;
}

}  // namespace Oracle
