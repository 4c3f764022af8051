// Wherever an evil assertion could hide the original that its stolen signature refers to: every
// element of the profile and of the signature. Most places take no foreign element. Where one is
// taken, it is searched for identifiers like everything else.
#include "hostile/attacks/provider.h"
#include "hostile/attacks/refusals.h"
#include "hostile/attacks/stolen_signature.h"

#include <gtest/gtest.h>

#include <utility>

namespace Saml::Attacks {
namespace {

using Forge::TokenSpec;

std::string Hidden(const Shape& shape, const TokenSpec& evil, const Genuine& genuine) {
    const std::string hidden = Forge::Replaced(shape.to, "|", genuine.original);
    return Forge::Replaced(WithSignature(evil, genuine), shape.from, hidden);
}

std::string HiddenInHolderOfKey(const Shape& shape, const TokenSpec& evil, const Genuine& genuine) {
    TokenSpec holder = evil;
    holder.holderOfKeyCertificate = "AQIDBAUG";
    return Hidden(shape, holder, genuine);
}

std::string Unexpected(const std::string& where) {
    return Refused<ParseException>("Unexpected elements " + where);
}

/// A place in the evil assertion; the signature could be verified, were it not for the readers.
Shape Place(const std::string& name, const std::string& from, const std::string& to,
            const std::string& refusal, Met met = Met::BehindCoverage) {
    return {name, Hidden, met, refusal, true, true, from, to};
}
Shape PlaceInHolderOfKey(const std::string& name, const std::string& from, const std::string& to,
                         const std::string& refusal) {
    return {name, HiddenInHolderOfKey, Met::BehindCoverage, refusal, true, true, from, to};
}
/// The same, with `from` standing behind what is hidden or in front of it.
Shape Before(const std::string& name, const std::string& from, const std::string& refusal,
             Met met = Met::BehindCoverage) {
    return Place(name, from, "|" + from, refusal, met);
}
Shape Behind(const std::string& name, const std::string& from, const std::string& refusal) {
    return Place(name, from, from + "|", refusal);
}

void ExpectRefused(const std::vector<Shape>& shapes) {
    std::vector<Attack> attacks;
    for (const Shape& shape : shapes)
        for (Attack& attack : InEveryGuise(shape))
            attacks.push_back(std::move(attack));
    ExpectOutcomes(attacks);
}

TEST(AnOriginalHiddenInTheAssertion, AboveTheSubjectIsRefused) {
    ExpectRefused({
        Before("BeforeTheIssuer", "<saml:Issuer ", NotFound("Issuer"), Met::BeforeCoverage),
        Before("InTheIssuer", "</saml:Issuer>", NotOnlyText("Issuer"), Met::BeforeCoverage),
        Before("BehindTheIssuer", "<ds:Signature ",
               RefusedSignatureSyntax("Expected element 'Signature' not found."),
               Met::BeforeCoverage),
        Before("BehindTheSignature", "<saml:Subject>", NotFound("Subject")),
    });
}

TEST(AnOriginalHiddenInTheSubject, IsRefused) {
    ExpectRefused({
        Behind("FirstInTheSubject", "<saml:Subject>", NotFound("NameID")),
        Behind("InTheName", "admin@corp", NotOnlyText("NameID")),
        Before("BehindTheName", "<saml:SubjectConfirmation ", NotFound("SubjectConfirmation")),
        Behind("FirstInTheConfirmation", ":bearer\">", NotFound("SubjectConfirmationData")),
        Before("InTheDelegatesName", "</saml:NameID><saml:SubjectConfirmationData ",
               NotOnlyText("NameID")),
        Before("BehindTheDelegatesName", "<saml:SubjectConfirmationData ",
               NotFound("SubjectConfirmationData")),
        Before("InTheConfirmationData", "</saml:SubjectConfirmationData>",
               NotEmpty("SubjectConfirmationData")),
        Before("BehindTheConfirmationData", "</saml:SubjectConfirmation>",
               Unexpected("after SubjectConfirmationData")),
        Before("BehindTheConfirmation", "</saml:Subject>", Unexpected("after SubjectConfirmation")),
        Before("BehindTheSubject", "<saml:Conditions ", NotFound("Conditions")),
    });
}

TEST(AnOriginalHiddenInAHolderOfKeyConfirmation, IsRefused) {
    const std::string data = "<X509Data><X509Certificate>AQIDBAUG";
    ExpectRefused({
        PlaceInHolderOfKey("FirstInTheData", "<KeyInfo ", "|<KeyInfo ", NotFound("KeyInfo")),
        PlaceInHolderOfKey("FirstInTheKeyInfo", data, "|" + data, NotFound("X509Data")),
        PlaceInHolderOfKey("FirstInX509Data", data, "<X509Data>|<X509Certificate>AQIDBAUG",
                           NotFound("X509Certificate")),
        PlaceInHolderOfKey("InTheCertificate", data, data + "|", NotOnlyText("X509Certificate")),
        PlaceInHolderOfKey("LastInX509Data", "</X509Data>", "|</X509Data>",
                           Unexpected("after X509Certificate")),
        PlaceInHolderOfKey("LastInTheKeyInfo", "</KeyInfo>", "|</KeyInfo>",
                           Unexpected("after X509Data")),
        PlaceInHolderOfKey("BehindTheKeyInfo", "</KeyInfo>", "</KeyInfo>|",
                           Unexpected("after SubjectConfirmationData/KeyInfo")),
    });
}

TEST(AnOriginalHiddenInTheConditions, IsRefused) {
    const std::string delegate = "</saml:NameID></del:Delegate>";
    ExpectRefused({
        Before("InTheConditions", "</saml:Conditions>",
               Refused<ParseException>(
                   "Unknown or duplicate restriction node under Conditions: Assertion")),
        Behind("InTheAudienceRestriction", "<saml:AudienceRestriction>", NotFound("Audience")),
        Behind("InAnAudience", "https://wiki.example/", NotOnlyText("Audience")),
        Before("InTheProxyRestriction", "</saml:ProxyRestriction>", NotEmpty("ProxyRestriction")),
        Behind("InTheRenewRestriction", "\"ext:RenewRestrictionType\" Count=\"1\">",
               NotEmpty("Condition")),
        Behind("InTheDelegationRestriction", "\"del:DelegationRestrictionType\">",
               NotFound("Delegate")),
        Place("InADelegatesName", delegate, "|" + delegate, NotOnlyText("NameID")),
        Place("InADelegate", delegate, "</saml:NameID>|</del:Delegate>", NotFound("NameID")),
        Before("BehindTheConditions", "<saml:Advice>", NotFound("AuthnStatement")),
    });
}

TEST(AnOriginalHiddenInTheAdvice, IsRefused) {
    const std::string value = "value</saml:AttributeValue>";
    ExpectRefused({
        Behind("InTheAdvice", "<saml:Advice>", NotFound("RSAAdvice")),
        Before("InTheRSAAdvice", "</ext:RSAAdvice>", NotFound("Attribute")),
        Behind("InAnAttribute", value, NotFound("AttributeValue")),
        Place("InAnAttributeValue", value, "value|</saml:AttributeValue>",
              NotOnlyText("AttributeValue")),
        Place("AsAnAttributeValue", value, "|</saml:AttributeValue>",
              NotOnlyText("AttributeValue")),
        // Characters are no elements: there is nothing that the signature could refer to.
        {"InACDataSection", Hidden, Met::BehindCoverage, NotOnlyText("AttributeValue"), false, true,
         value, "value<![CDATA[<!--|-->]]></saml:AttributeValue>"},
    });
}

TEST(AnOriginalHiddenInTheStatements, IsRefused) {
    const std::string name = "Alice</saml:AttributeValue>";
    ExpectRefused({
        Before("BehindTheAdvice", "<saml:AuthnStatement ", NotFound("AuthnStatement")),
        Before("FirstInTheAuthnStatement", "<saml:AuthnContext>", NotFound("AuthnContext")),
        Before("LastInTheAuthnStatement", "</saml:AuthnStatement>",
               Unexpected("after AuthnContext")),
        Behind("FirstInTheAuthnContext", "<saml:AuthnContext>", NotFound("AuthnContextClassRef")),
        Before("LastInTheAuthnContext", "</saml:AuthnContext>",
               Unexpected("after AuthnContextClassRef")),
        Before("InTheContextClass", "</saml:AuthnContextClassRef>",
               NotOnlyText("AuthnContextClassRef")),
        Before("BehindTheAuthnStatement", "<saml:AttributeStatement>",
               NotFound("AttributeStatement")),
        Behind("InTheAttributeStatement", "<saml:AttributeStatement>", NotFound("Attribute")),
        Behind("InAnAttribute", name, NotFound("AttributeValue")),
        Place("InAnAttributeValue", name, "Alice|</saml:AttributeValue>",
              NotOnlyText("AttributeValue")),
    });
}

/// A place inside the signature. Within SignedInfo the signature value does not hold any more.
Shape InSignature(const std::string& name, const std::string& from, const std::string& to,
                  const std::string& refusal, bool holdsByItself = false) {
    return {name, Hidden, Met::BeforeCoverage, RefusedSignatureSyntax(refusal), holdsByItself, true,
            from, to};
}
Shape Unread(const std::string& name, const std::string& from, const std::string& to,
             bool holdsByItself) {
    return {name, Hidden, Met::ByTheResolver, {}, holdsByItself, true, from, to};
}

constexpr char kNotTextual[] =
    "' must only have textual content (but has extra children or is empty).";

TEST(AnOriginalHiddenInSignedInfo, IsRefused) {
    const std::string c14n = "Algorithm=\"http://www.w3.org/2001/10/xml-exc-c14n#\"";
    const std::string noDigestMethod = "Expected element 'DigestMethod' not found.";
    ExpectRefused({
        InSignature("FirstInSignedInfo", "<ds:SignedInfo>", "<ds:SignedInfo>|",
                    "Expected element 'CanonicalizationMethod' not found."),
        InSignature("LastInSignedInfo", "</ds:SignedInfo>", "|</ds:SignedInfo>",
                    "Expected element 'Reference' not found."),
        InSignature("InCanonicalizationMethod", "<ds:CanonicalizationMethod " + c14n + "/>",
                    "<ds:CanonicalizationMethod " + c14n + ">|</ds:CanonicalizationMethod>",
                    "Element 'CanonicalizationMethod' may not have children"),
        InSignature("InSignatureMethod", "#rsa-sha256\"/>", "#rsa-sha256\">|</ds:SignatureMethod>",
                    "Element 'SignatureMethod' may not have children"),
        InSignature("FirstInReference", "<ds:Transforms>", "|<ds:Transforms>", noDigestMethod),
        InSignature("BehindTransforms", "</ds:Transforms>", "</ds:Transforms>|", noDigestMethod),
        InSignature("InTransforms", "<ds:Transforms>", "<ds:Transforms>|",
                    "Expected element 'Transform' not found."),
        InSignature("InDigestMethod", "#sha256\"/>", "#sha256\">|</ds:DigestMethod>",
                    "Element 'DigestMethod' may not have children"),
        InSignature("InDigestValue", "</ds:DigestValue>", "|</ds:DigestValue>",
                    std::string("Element 'DigestValue") + kNotTextual),
        InSignature("LastInReference", "</ds:Reference>", "|</ds:Reference>",
                    "Unexpected child nodes under 'Reference'"),
        Unread("InTheEnvelopedTransform", "#enveloped-signature\"/>",
               "#enveloped-signature\">|</ds:Transform>", false),
        Unread("InTheCanonicalization", "<ds:Transform " + c14n + "/>",
               "<ds:Transform " + c14n + ">|</ds:Transform>", false),
        Unread("InInclusiveNamespaces", "<ds:Transform " + c14n + "/>",
               "<ds:Transform " + c14n +
                   "><ec:InclusiveNamespaces xmlns:ec=\"http://www.w3.org/2001/10/xml-exc-c14n#\" "
                   "PrefixList=\"\">|</ec:InclusiveNamespaces></ds:Transform>",
               false),
    });
}

TEST(AnOriginalHiddenInTheSignature, IsRefused) {
    const std::string extraKeyInfo = "Unexpected extra element(s) after <X509Data>";
    const std::string extraInSignature = "Unexpected child nodes under 'Signature'";
    ExpectRefused({
        InSignature("FirstInTheSignature", "<ds:SignedInfo>", "|<ds:SignedInfo>",
                    "Expected element 'SignedInfo' not found."),
        InSignature("BehindSignedInfo", "</ds:SignedInfo>", "</ds:SignedInfo>|",
                    "Expected element 'SignatureValue' not found."),
        InSignature("InSignatureValue", "</ds:SignatureValue>", "|</ds:SignatureValue>",
                    std::string("Element 'SignatureValue") + kNotTextual),
        InSignature("BehindSignatureValue", "</ds:SignatureValue>", "</ds:SignatureValue>|",
                    extraInSignature),
        InSignature("InTheFirstCertificate", "<ds:X509Data><ds:X509Certificate>",
                    "<ds:X509Data><ds:X509Certificate>|",
                    std::string("Element 'X509Certificate") + kNotTextual),
        InSignature("FirstInKeyInfo", "<ds:KeyInfo>", "<ds:KeyInfo>|",
                    "Expected element 'X509Data' not found."),
        InSignature("LastInKeyInfo", "</ds:KeyInfo>", "|</ds:KeyInfo>", extraKeyInfo),
        InSignature("AsKeyValue", "</ds:X509Data>", "</ds:X509Data><ds:KeyValue>|</ds:KeyValue>",
                    extraKeyInfo),
        InSignature("BehindKeyInfo", "</ds:KeyInfo>", "</ds:KeyInfo>|", extraInSignature),
        InSignature("InAnObject", "</ds:KeyInfo>", "</ds:KeyInfo><ds:Object>|</ds:Object>",
                    extraInSignature),
        InSignature("InAManifest", "</ds:KeyInfo>",
                    "</ds:KeyInfo><ds:Object><ds:Manifest>|</ds:Manifest></ds:Object>",
                    extraInSignature),
        Unread("FirstInX509Data", "<ds:X509Data>", "<ds:X509Data>|", true),
        Unread("LastInX509Data", "</ds:X509Data>", "|</ds:X509Data>", true),
        Unread("InX509SubjectName", "</ds:X509Data>",
               "<ds:X509SubjectName>|</ds:X509SubjectName></ds:X509Data>", true),
        Unread("InX509IssuerSerial", "</ds:X509Data>",
               "<ds:X509IssuerSerial><ds:X509IssuerName>|</ds:X509IssuerName>"
               "</ds:X509IssuerSerial></ds:X509Data>",
               true),
        Unread("InAForeignElementOfX509Data", "<ds:X509Data>",
               "<ds:X509Data><x:Deep xmlns:x=\"urn:x\"><x:Deeper>|</x:Deeper></x:Deep>", true),
    });
}

std::string InFront(const Shape& shape, const TokenSpec& evil, const Genuine& genuine) {
    return Forge::Replaced(shape.to, "|", genuine.original) + WithSignature(evil, genuine);
}

// Texts, comments and instructions are not in the tree of elements.
TEST(AnOriginalHiddenOutsideTheTree, IsNotFound) {
    const auto unseen = [](const std::string& name, const std::string& from,
                           const std::string& to) {
        return Shape{name, Hidden, Met::ByNobody, {}, false, true, from, to};
    };
    const auto inFront = [](const std::string& name, const std::string& to) {
        return Shape{name, InFront, Met::ByNobody, {}, false, true, {}, to};
    };
    ExpectRefused({
        unseen("InACommentInTheAdvice", "<saml:Advice>", "<saml:Advice><!--|-->"),
        unseen("InACommentInX509Data", "<ds:X509Data>", "<ds:X509Data><!--|-->"),
        unseen("InACDataSectionInX509Data", "<ds:X509Data>", "<ds:X509Data><![CDATA[|]]>"),
        inFront("InACommentInFront", "<!--|-->"),
        inFront("InAnInstructionInFront", "<?x |?>"),
        inFront("InAnEntityThatIsNotUsed", "<!DOCTYPE saml:Assertion [<!ENTITY e '|'>]>"),
    });
}

/// The original stands in an entity, which the certificates' element refers to.
std::string InAnEntity(const Shape&, const TokenSpec& evil, const Genuine& genuine) {
    return "<!DOCTYPE saml:Assertion [<!ENTITY original '" + genuine.original + "'>]>" +
           Forge::Replaced(WithSignature(evil, genuine), "<ds:X509Data>",
                           "<ds:X509Data>&original;");
}

TEST(AnOriginalHiddenInAnEntity, IsFoundWhereTheEntityIsUsed) {
    ExpectRefused({{"UsedInX509Data", InAnEntity, Met::ByTheResolver, {}, true}});
}

// The other way about: what is added to a genuine token, in the one place that takes anything, says
// nothing, and cannot have the token's identifier.
TEST(AnEvilAssertionHiddenInAGenuineToken, SaysNothing) {
    const auto with = [](const Genuine& genuine, const TokenSpec& evil) {
        return Forge::Replaced(genuine.token, "<ds:X509Data>",
                               "<ds:X509Data>" + Forge::Write(evil));
    };
    const Genuine& byIdentifier = SignedByIdentifier();
    const Genuine& asRoot = SignedAsRoot();
    ExpectOutcomes({
        {"OtherId.ByIdentifier", with(byIdentifier, AdministratorSpec("_evil")),
         Accepted(byIdentifier.spec)},
        {"SameId.ByIdentifier", with(byIdentifier, AdministratorSpec("_genuine")),
         RefusedAsDuplicate()},
        {"OtherId.AsRoot", with(asRoot, AdministratorSpec("_evil")), Accepted(asRoot.spec)},
        {"SameId.AsRoot", with(asRoot, AdministratorSpec("_genuine")), Accepted(asRoot.spec)},
    });
}

}  // namespace
}  // namespace Saml::Attacks
