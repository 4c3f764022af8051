// Refusals of what a token looks like, each provoked on every road to a token.
#include "documents/thrown_refusal.h"
#include "hostile/attacks/hand_made_signature.h"
#include "hostile/attacks/hardened_road.h"
#include "hostile/attacks/provider.h"
#include "hostile/attacks/refusals.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace Documents {
namespace {

using namespace Saml;
using Attacks::KeyInfo;
using Attacks::X509Data;
using Forge::Replaced;
using Forge::TokenSpec;

std::string OutcomeOf(const std::string& token) {
    return Attacks::OutcomeOf(token, Attacks::Provider::TrustInTheRoot());
}

/// The outcome of a token with everything in it, changed, and with a signature that nobody checks:
/// the structure comes first.
std::string OutcomeWith(const std::function<void(TokenSpec&)>& change) {
    TokenSpec spec = Attacks::Provider::CustomerSpec();
    spec.signature = Forge::HollowSignature("#" + spec.id);
    change(spec);
    return OutcomeOf(Forge::Write(spec));
}

std::string OutcomeOfEdited(
    const std::string& from, const std::string& to,
    const std::function<void(TokenSpec&)>& change = [](TokenSpec&) {}) {
    TokenSpec spec = Attacks::Provider::CustomerSpec();
    spec.signature = Forge::HollowSignature("#" + spec.id);
    change(spec);
    return OutcomeOf(Replaced(Forge::Write(spec), from, to));
}

std::string OutcomeWithBehind(const std::string& endTag, const std::string& more = "<x/>") {
    return OutcomeOfEdited(endTag, endTag + more);
}

void MakeHolderOfKey(TokenSpec& spec) {
    spec.holderOfKeyCertificate = "AQID";
}

/// Ten times as much at each level.
std::string NestedEntities(int levels) {
    std::string declarations = "<!ENTITY e0 'entity'>";
    for (int level = 1; level <= levels; ++level) {
        declarations += "<!ENTITY e" + std::to_string(level) + " '";
        for (int i = 0; i < 10; ++i)
            declarations += "&e" + std::to_string(level - 1) + ";";
        declarations += "'>";
    }
    return "<!DOCTYPE a [" + declarations + "]><a>&e" + std::to_string(levels) + ";</a>";
}

TEST(Refusals, OfTextsThatAreNotXmlAreOnThePage) {
    const auto row = [](const std::string& message) { return "XMLParseException: " + message; };
    ExpectOnThePage({
        {row("no element found"), OutcomeOf("")},
        {row("syntax error"), OutcomeOf("PHNhbWw6QXNzZXJ0aW9u")},
        {row("not well-formed (invalid token)"), OutcomeOf("<a>\xFF</a>")},
        {row("partial character"), OutcomeOf("<a>\xE2")},
        {row("unclosed token"), OutcomeOf("<a")},
        {row("unclosed CDATA section"), OutcomeOf("<a><![CDATA[b")},
        {row("mismatched tag"), OutcomeOf("<a></b>")},
        {row("junk after document element"), OutcomeOf("<a/><b/>")},
        {row("XML or text declaration not at start of entity"),
         OutcomeOf("\n<?xml version='1.0'?><a/>")},
        {row("duplicate attribute"), OutcomeOf("<a b='1' b='2'/>")},
        {row("undefined entity"), OutcomeOf("<a>&nbsp;</a>")},
        {row("reference to invalid character number"), OutcomeOf("<a>&#0;</a>")},
        {row("unknown encoding"), OutcomeOf("<?xml version='1.0' encoding='EBCDIC-X'?><a/>")},
        {row("encoding specified in XML declaration is incorrect"),
         OutcomeOf("<?xml version='1.0' encoding='UTF-16'?><a/>")},
        {row("recursive entity reference"),
         OutcomeOf("<!DOCTYPE a [<!ENTITY b '&c;'><!ENTITY c '&b;'>]><a>&b;</a>")},
        {row("reference to external entity in attribute"),
         OutcomeOf("<!DOCTYPE a [<!ENTITY b SYSTEM 'c'>]><a d='&b;'/>")},
        {row("limit on input amplification factor (from DTD and entities) breached"),
         OutcomeOf(NestedEntities(7))},
        {row("parsing aborted"), OutcomeOf("<a><?b?></a>")},
    });
}

TEST(Refusals, OfTextsBeyondTheLimitsAreOnThePage) {
    const auto withinLimits = [](const std::string& token) {
        return Attacks::OutcomeWithinLimits(token, Attacks::Provider::TrustInTheRoot());
    };
    const std::string row = "XMLParseException: parsing aborted";
    ExpectOnThePage({{row, withinLimits(Attacks::WithDtd("<!ENTITY a 'b'>", "<a/>"))}});
    ExpectOnThePage(
        {{row, withinLimits("<a>" + std::string(Attacks::kRecommendedSize, 'a') + "</a>")}});
}

TEST(Refusals, OfOtherProfilesAreOnThePage) {
    const auto row = [](const std::string& message) { return "ParseException: " + message; };
    ExpectOnThePage({
        {row("Expected element '<element>' not found."), OutcomeOf("<Response/>")},
        {row("Element '<element>' has unexpected namespace"),
         OutcomeOfEdited("<saml:Subject>", "<saml:Subject xmlns:saml='urn:x'>")},
        {row("Node '<element> is missing required attribute '<attribute>'"),
         OutcomeOfEdited(" Version=\"2.0\"", "")},
        {row("Unexpected attributes on element '<element>'"),
         OutcomeOfEdited("<saml:Subject>", "<saml:Subject a=''>")},
        {row("Unexpected attribute '<attribute>' on element '<element>'"),
         OutcomeOfEdited("<saml:Condition xsi:type=\"ext:",
                         "<saml:Condition a='' xsi:type=\"ext:")},
        {row("<element>/@<attribute> is not a date"),
         OutcomeWith([](TokenSpec& spec) { spec.notBefore = "2024-05-01T08:00:00+00:00"; })},
        {row("<element>/@Count is not a non-negative integer."),
         OutcomeWith([](TokenSpec& spec) { spec.proxyCount = "-1"; })},
        {row("Element '<element>' must only have textual content (but has extra children or is "
             "empty)."),
         OutcomeWith([](TokenSpec& spec) { spec.subject.value = "a@b<!-- -->.evil"; })},
        {row("Element '<element>' must be empty"),
         OutcomeOfEdited("</saml:ProxyRestriction>", "x</saml:ProxyRestriction>")},
        {row("Expected element ds:Signature not found"),
         OutcomeWith([](TokenSpec& spec) { spec.signature = "text"; })},
        {row("Token's signature must cover the entire token"),
         OutcomeWith([](TokenSpec& spec) { spec.signature = Forge::HollowSignature("#_x"); })},
        {row("Unknown subject confirmation method: '<method>'"),
         OutcomeOfEdited("cm:bearer", "cm:sender-vouches")},
        {row("Invalid SubjectConfirmationData type: '<type>'"),
         OutcomeOfEdited("saml:KeyInfoConfirmationDataType", "saml:X", MakeHolderOfKey)},
        {row("Invalid Base64"),
         OutcomeWith([](TokenSpec& spec) { spec.holderOfKeyCertificate = "-----BEGIN"; })},
        {row("Unexpected elements after X509Certificate"),
         OutcomeOfEdited("</X509Certificate>", "</X509Certificate><x/>", MakeHolderOfKey)},
        {row("Unexpected elements after X509Data"),
         OutcomeOfEdited("</X509Data>", "</X509Data><x/>", MakeHolderOfKey)},
        {row("Unexpected elements after SubjectConfirmationData/KeyInfo"),
         OutcomeOfEdited("</KeyInfo>", "</KeyInfo><x/>", MakeHolderOfKey)},
        {row("Unexpected elements after SubjectConfirmationData"),
         OutcomeWithBehind("</saml:SubjectConfirmationData>")},
        {row("Unexpected elements after SubjectConfirmation"),
         OutcomeWithBehind("</saml:SubjectConfirmation>")},
        {row("Unknown or duplicate restriction node under Conditions: <element>"),
         OutcomeWithBehind("</saml:AudienceRestriction>", "<saml:OneTimeUse/>")},
        {row("Unknown or duplicate restriction node under Conditions"),
         OutcomeWithBehind("</saml:AudienceRestriction>", "text")},
        {row("Unexpected elements after AuthnContextClassRef"),
         OutcomeWithBehind("</saml:AuthnContextClassRef>")},
        {row("Unexpected elements after AuthnContext"), OutcomeWithBehind("</saml:AuthnContext>")},
        {row("Unexpected elements under Assertion"),
         OutcomeWithBehind("</saml:AttributeStatement>")},
    });
}

TEST(Refusals, OfSignaturesOfOtherShapesAreOnThePage) {
    const auto row = [](const std::string& message) {
        return "ParseException: Signature syntax error: " + message;
    };
    const auto withKeyInfo = [](const std::string& content) {
        return OutcomeOfEdited("</ds:Signature>", KeyInfo(content) + "</ds:Signature>");
    };
    const std::string exclusive = Xml::Security::Algorithm::ExclusiveC14N;
    const std::string transform = "<ds:Transform Algorithm=\"" + exclusive + "\"";
    const std::string method = "<ds:CanonicalizationMethod Algorithm=\"" + exclusive + "\"";
    ExpectOnThePage({
        {row("Expected element '<element>' not found."),
         OutcomeWith([](TokenSpec& spec) { spec.signature.clear(); })},
        {row("Element '<element> has unexpected namespace: '<namespace>'"),
         OutcomeOfEdited("<ds:SignedInfo>", "<ds:SignedInfo xmlns:ds='urn:x'>")},
        {row("Node '<element> is missing required attribute '<attribute>'"),
         OutcomeOfEdited("<ds:DigestMethod Algorithm=", "<ds:DigestMethod algorithm=")},
        {row("Unexpected attributes on element '<element>'"),
         OutcomeOfEdited("<ds:Reference ", "<ds:Reference Type='' ")},
        {row("Element '<element>' may not have children"),
         OutcomeOfEdited(method + "/>", method + "><x/></ds:CanonicalizationMethod>")},
        {row("Unsupported transformation algorithm: <algorithm>"),
         OutcomeOfEdited("xmldsig#enveloped-signature", "xmldsig#base64")},
        {row("Element '<element>' must have at least one attribute: 'PrefixList'"),
         OutcomeOfEdited(transform + "/>", transform + "><InclusiveNamespaces xmlns='" + exclusive +
                                               "'/></ds:Transform>")},
        {row("Element '<element>' must only have textual content (but has extra children or is "
             "empty)."),
         OutcomeOfEdited("<ds:DigestValue>AAAA", "<ds:DigestValue>")},
        {row("Unexpected child nodes under 'Reference'"), OutcomeWithBehind("</ds:DigestValue>")},
        {row("Malformed base64 data"),
         withKeyInfo(X509Data("<ds:X509Certificate>*</ds:X509Certificate>"))},
        {row("Unexpected extra element(s) after <X509Data>"),
         withKeyInfo(X509Data("") + X509Data(""))},
        {row("Unexpected child nodes under 'Signature'"),
         OutcomeWithBehind("</ds:SignatureValue>")},
    });
}

}  // namespace
}  // namespace Documents
