#include "oracle/profile/assertion_grammar.h"

#include "saml/token.h"

#include <utility>

namespace Oracle::Grammar {

const char* const kAssertionNamespace = "urn:oasis:names:tc:SAML:2.0:assertion";
const char* const kDelegationNamespace = "urn:oasis:names:tc:SAML:2.0:conditions:delegation";
const char* const kSignatureNamespace = "http://www.w3.org/2000/09/xmldsig#";
const char* const kInstanceNamespace = "http://www.w3.org/2001/XMLSchema-instance";
const char* const kExclusiveC14N = "http://www.w3.org/2001/10/xml-exc-c14n#";
const char* const kEnvelopedSignature = "http://www.w3.org/2000/09/xmldsig#enveloped-signature";

namespace {

constexpr Presence kOptional = Presence::Optional;

// Foreign children of a list fail the test for its member; these are no lists.
constexpr char kBehindStatement[] = "Unexpected elements under Assertion";
constexpr char kBehindConfirmation[] = "Unexpected elements after SubjectConfirmation";
constexpr char kBehindData[] = "Unexpected elements after SubjectConfirmationData";
constexpr char kBehindKeyInfo[] = "Unexpected elements after SubjectConfirmationData/KeyInfo";
constexpr char kBehindX509Data[] = "Unexpected elements after X509Data";
constexpr char kBehindCertificate[] = "Unexpected elements after X509Certificate";
constexpr char kBehindDelegateName[] = "Expected element 'NameID' not found.";
constexpr char kRestriction[] = "Unknown or duplicate restriction node under Conditions";
constexpr char kBehindContext[] = "Unexpected elements after AuthnContext";
constexpr char kBehindClass[] = "Unexpected elements after AuthnContextClassRef";
constexpr char kBehindSignature[] = "Unexpected child nodes under 'Signature'";
constexpr char kBehindReference[] = "Unexpected child nodes under 'Reference'";
constexpr char kBehindSentData[] = "Unexpected extra element(s) after <X509Data>";

Choice Method(const char* value) {
    return {"Method", value, "Unknown subject confirmation method: '", "'"};
}

Choice Algorithm(const char* value) {
    return {"Algorithm", value, "Unsupported transformation algorithm: ", ""};
}

// SAML core 2.3 to 2.7 and its delegation restriction, narrowed to the profile.
std::vector<ElementRow> TokenRows() {
    const char* const saml = kAssertionNamespace;
    const char* const extension = Saml::ProfileUri::ExtensionNamespace;
    const auto row = [](const char* key, const char* uri, std::vector<AttributeRow> attributes,
                        Content content, std::vector<ChildRow> children = {},
                        const char* behindLast = nullptr) {
        return ElementRow{key,        key,     uri,      Wording::Token, Attributes::Plain,
                          attributes, content, children, behindLast};
    };
    const auto confirmation = [&](const char* method, const char* dataKey) {
        ElementRow made = row("SubjectConfirmation", saml, {{"Method"}}, Content::Children,
                              {{"NameID", Card::IfNamed}, {dataKey}}, kBehindData);
        made.choice = Method(method);
        return made;
    };
    const auto typed = [&](const char* key, const char* localName, const Type& type,
                           std::vector<AttributeRow> attributes, Content content,
                           std::vector<ChildRow> children = {}, const char* behindLast = nullptr) {
        ElementRow made =
            row(key, saml, std::move(attributes), content, std::move(children), behindLast);
        made.localName = localName;
        made.rule = Attributes::WithType;
        made.type = type;
        return made;
    };
    const auto held = [&](const char* key, const char* localName, Content content,
                          std::vector<ChildRow> children = {}, const char* behindLast = nullptr) {
        ElementRow made =
            row(key, kSignatureNamespace, {}, content, std::move(children), behindLast);
        made.localName = localName;
        return made;
    };
    const auto unexamined = [&](const char* key, Content content,
                                std::vector<ChildRow> children = {}) {
        ElementRow made = row(key, saml, {}, content, std::move(children));
        made.rule = Attributes::NotExamined;
        return made;
    };
    ElementRow bearerData =
        row("SubjectConfirmationData (bearer)", saml,
            {{"NotOnOrAfter", Presence::Required, Value::Date}}, Content::Nothing);
    bearerData.localName = "SubjectConfirmationData";

    return {
        row("Assertion", saml,
            {{"Version"}, {"ID"}, {"IssueInstant", Presence::Required, Value::Date}},
            Content::Children,
            {{"Issuer"},
             {"Signature", Card::Once, "Expected element ds:Signature not found"},
             {"Subject"},
             {"Conditions"},
             {"Advice", Card::IfNamed},
             {"AuthnStatement"},
             {"AttributeStatement", Card::IfPresent}},
            kBehindStatement),
        row("Issuer", saml, {{"Format"}}, Content::Text),
        row("Subject", saml, {}, Content::Children, {{"NameID"}, {"SubjectConfirmation"}},
            kBehindConfirmation),
        row("NameID", saml, {{"Format"}}, Content::Text),
        confirmation("urn:oasis:names:tc:SAML:2.0:cm:bearer", "SubjectConfirmationData (bearer)"),
        confirmation("urn:oasis:names:tc:SAML:2.0:cm:holder-of-key",
                     "SubjectConfirmationData (holder-of-key)"),
        bearerData,
        typed("SubjectConfirmationData (holder-of-key)", "SubjectConfirmationData",
              {saml, "KeyInfoConfirmationDataType", "Invalid SubjectConfirmationData type: '", "'"},
              {{kType}, {"NotOnOrAfter", kOptional, Value::Date}}, Content::Children,
              {{"KeyInfo (holder)"}}, kBehindKeyInfo),
        held("KeyInfo (holder)", "KeyInfo", Content::Children, {{"X509Data (holder)"}},
             kBehindX509Data),
        held("X509Data (holder)", "X509Data", Content::Children, {{"X509Certificate (holder)"}},
             kBehindCertificate),
        held("X509Certificate (holder)", "X509Certificate", Content::Base64),
        row("Conditions", saml,
            {{"NotBefore", Presence::Required, Value::Date},
             {"NotOnOrAfter", Presence::Required, Value::Date}},
            Content::AnyOrder,
            {{"Condition (delegation)"},
             {"AudienceRestriction"},
             {"ProxyRestriction"},
             {"Condition (renew)"}},
            kRestriction),
        typed("Condition (delegation)", "Condition",
              {kDelegationNamespace, "DelegationRestrictionType"}, {{kType}}, Content::Children,
              {{"Delegate", Card::OneOrMore}}),
        row("Delegate", kDelegationNamespace,
            {{"DelegationInstant", Presence::Required, Value::Date}}, Content::Children,
            {{"NameID"}}, kBehindDelegateName),
        unexamined("AudienceRestriction", Content::Children, {{"Audience", Card::OneOrMore}}),
        unexamined("Audience", Content::Text),
        row("ProxyRestriction", saml, {{"Count", Presence::Required, Value::Count}},
            Content::Nothing),
        typed("Condition (renew)", "Condition", {extension, "RenewRestrictionType"},
              {{kType},
               {"Count", kOptional, Value::Count},
               {"Postdatable", kOptional},
               {"RenewExpired", kOptional}},
              Content::Nothing),
        row("Advice", saml, {}, Content::Children, {{"RSAAdvice", Card::OneOrMore}}),
        row("RSAAdvice", extension, {{"AdviceSource"}}, Content::Children,
            {{"Attribute", Card::Any}}),
        row("AuthnStatement", saml, {{"AuthnInstant", Presence::Required, Value::Date}},
            Content::Children, {{"AuthnContext"}}, kBehindContext),
        row("AuthnContext", saml, {}, Content::Children, {{"AuthnContextClassRef"}}, kBehindClass),
        row("AuthnContextClassRef", saml, {}, Content::Text),
        row("AttributeStatement", saml, {}, Content::Children, {{"Attribute", Card::OneOrMore}}),
        row("Attribute", saml, {{"Name"}, {"NameFormat"}, {"FriendlyName", kOptional}},
            Content::Children, {{"AttributeValue", Card::Any}}),
        unexamined("AttributeValue", Content::MaybeText),
    };
}

// W3C xmldsig-core 4 and exc-c14n 4, narrowed to the profile.
std::vector<ElementRow> SignatureRows() {
    const auto row = [](const char* key, std::vector<AttributeRow> attributes, Content content,
                        std::vector<ChildRow> children = {}, const char* behindLast = nullptr) {
        return ElementRow{key,
                          key,
                          kSignatureNamespace,
                          Wording::Signature,
                          Attributes::Plain,
                          attributes,
                          content,
                          children,
                          behindLast};
    };
    const auto transform = [&](const char* algorithm, std::vector<ChildRow> children) {
        ElementRow made = row("Transform", {{"Algorithm"}}, Content::Children, std::move(children));
        made.choice = Algorithm(algorithm);
        return made;
    };
    return {
        row("Signature", {{"Id", kOptional}}, Content::Children,
            {{"SignedInfo"}, {"SignatureValue"}, {"KeyInfo", Card::IfNamed}}, kBehindSignature),
        row("SignedInfo", {{"Id", kOptional}}, Content::Children,
            {{"CanonicalizationMethod"}, {"SignatureMethod"}, {"Reference", Card::OneOrMore}}),
        row("CanonicalizationMethod", {{"Algorithm"}}, Content::Nothing),
        row("SignatureMethod", {{"Algorithm"}}, Content::Nothing),
        row("Reference", {{"URI", kOptional}, {"Id", kOptional}}, Content::Children,
            {{"Transforms", Card::IfNamed}, {"DigestMethod"}, {"DigestValue"}}, kBehindReference),
        row("Transforms", {}, Content::Children, {{"Transform", Card::Any}}),
        transform(kEnvelopedSignature, {}),
        transform(kExclusiveC14N, {{"InclusiveNamespaces", Card::IfNamed}}),
        ElementRow{"InclusiveNamespaces",
                   "InclusiveNamespaces",
                   kExclusiveC14N,
                   Wording::Signature,
                   Attributes::AtLeast,
                   {{"PrefixList"}},
                   Content::NotExamined},
        row("DigestMethod", {{"Algorithm"}}, Content::Nothing),
        row("DigestValue", {}, Content::Text),
        row("SignatureValue", {{"Id", kOptional}}, Content::Text),
        row("KeyInfo", {}, Content::Children, {{"X509Data", Card::IfPresent}}, kBehindSentData),
        row("X509Data", {}, Content::Selected, {{"X509Certificate"}}),
        row("X509Certificate", {}, Content::Base64),
    };
}

std::map<std::string, std::vector<ElementRow>> AllRows() {
    std::map<std::string, std::vector<ElementRow>> rows;
    for (const ElementRow& row : TokenRows())
        rows[row.key].push_back(row);
    for (const ElementRow& row : SignatureRows())
        rows[row.key].push_back(row);
    return rows;
}

}  // namespace

const std::map<std::string, std::vector<ElementRow>>& Rows() {
    static const std::map<std::string, std::vector<ElementRow>> rows = AllRows();
    return rows;
}

const std::vector<ElementRow>& RowsOf(const std::string& key) {
    return Rows().at(key);
}

}  // namespace Oracle::Grammar
