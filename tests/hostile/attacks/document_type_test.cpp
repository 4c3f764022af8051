// A document type declaration is no part of the assertion: whoever presents a token may write one.
#include "hostile/attacks/outside_references.h"
#include "hostile/attacks/provider.h"
#include "hostile/attacks/refusals.h"
#include "hostile/attacks/stolen_signature.h"

#include <gtest/gtest.h>

namespace Saml::Attacks {
namespace {

using Forge::Replaced;

const std::string& GenuineToken() {
    return SignedByIdentifier().token;
}
std::string Amplified() {
    return NotParsed("limit on input amplification factor (from DTD and entities) breached");
}
std::string InFirstName(const std::string& markup) {
    return Replaced(GenuineToken(), ">Mallory<", ">" + markup + "<");
}
std::string Repeated(const std::string& text, std::size_t times) {
    std::string repeated;
    for (std::size_t i = 0; i != times; ++i)
        repeated += text;
    return repeated;
}

TEST(OutsideReferences, AreNotFollowed) {
    ExpectOutcomes(OutsideReferences());
}

/// Ten entities, each ten times the one before: "ha" a thousand million times.
std::string Laughs(const std::string& mark, const std::string& reference) {
    std::string declarations = "<!ENTITY " + mark + "l0 'ha'>";
    for (int level = 1; level != 10; ++level)
        declarations += "<!ENTITY " + mark + "l" + std::to_string(level) + " '" +
                        Repeated(reference + "l" + std::to_string(level - 1) + ";", 10) + "'>";
    return declarations;
}

// As far as they are used, they are stopped on the way, by expat's bound on amplification.
TEST(EntityBombs, AreStoppedOrSayNothing) {
    const std::string same = Accepted(SignedByIdentifier().spec);
    const std::string laughs = Laughs("", "&");
    const std::string large = "<!ENTITY large '" + std::string(100000, 'a') + "'>";
    std::vector<Attack> attacks = {
        {"Laughs.InAText", WithDtd(laughs, InFirstName("&l9;")), Amplified()},
        {"Laughs.InAnAttribute",
         WithDtd(laughs, Replaced(GenuineToken(), "\"urn:advisor\"", "\"&l9;\"")), Amplified()},
        {"Laughs.InADefault", WithDtd(laughs + "<!ATTLIST x y CDATA '&l9;'>", GenuineToken()),
         Amplified()},
        {"Laughs.AmongTheCertificates",
         WithDtd(laughs, Replaced(GenuineToken(), "<ds:X509Data>", "<ds:X509Data>&l9;")),
         Amplified()},
        {"Laughs.InAComment",
         WithDtd(laughs, Replaced(GenuineToken(), "<saml:Advice>", "<saml:Advice><!--&l9;-->")),
         same},
        {"Laughs.Unused", WithDtd(laughs, GenuineToken()), same},
        {"Laughs.OfSomeThousand", WithDtd(laughs, InFirstName("&l3;")), RefusedAsTampered()},
        {"Laughs.OfNothing", WithDtd(Replaced(laughs, "'ha'", "''"), InFirstName("Mal&l3;lory")),
         same},
        {"ParameterLaughs", WithDtd(Laughs("% ", "&#37;") + "%l9;", InFirstName("Mal&sent;lory")),
         same},
        {"ParameterLaughs.InEntities", WithDtd(Laughs("% ", "%"), GenuineToken()),
         NotParsed("illegal parameter entity reference")},
        {"Quadratic.InAText", WithDtd(large, InFirstName(Repeated("&large;", 1000))), Amplified()},
        {"Quadratic.InAnAttribute",
         WithDtd(large, Replaced(GenuineToken(), "\"urn:advisor\"",
                                 "\"" + Repeated("&large;", 1000) + "\"")),
         Amplified()},
        {"Quadratic.WithinBounds", WithDtd(large, InFirstName(Repeated("&large;", 10))),
         RefusedAsTampered()},
        {"Recursive", WithDtd("<!ENTITY e '&e;'>", InFirstName("&e;")),
         NotParsed("recursive entity reference")},
        {"RecursiveByAnother", WithDtd("<!ENTITY e '&f;'><!ENTITY f '&e;'>", InFirstName("&e;")),
         NotParsed("recursive entity reference")},
        {"RecursiveAndUnused", WithDtd("<!ENTITY e '&e;'>", GenuineToken()), same},
    };
    for (Attack& attack : attacks)
        attack.trust = Provider::TrustInTheRoot();  // once is enough
    ExpectOutcomes(attacks);
}

/// The genuine token below a default for an attribute.
Attack Defaulted(const std::string& attribute, const std::string& outcome) {
    return {attribute, WithDtd("<!ATTLIST " + attribute + ">", GenuineToken()), outcome};
}
/// The same with the attribute, as written, taken out of the token.
Attack Displaced(const std::string& name, const std::string& written, const std::string& attribute,
                 const std::string& outcome) {
    return {name, WithDtd("<!ATTLIST " + attribute + ">", Replaced(GenuineToken(), written, "")),
            outcome};
}

// What is there counts; what is not there and comes by default is read and digested alike.
TEST(DefaultAttributes, NeverChangeWhatASignedTokenSays) {
    const std::string same = Accepted(SignedByIdentifier().spec);
    const std::string schema = "http://www.w3.org/2001/XMLSchema-instance";
    const std::string nobody =
        RefusedSignatureSyntax("Element 'Signature has unexpected namespace: 'urn:evil'");
    ExpectOutcomes({
        Defaulted("saml:NameID Format CDATA 'urn:evil'", same),
        Defaulted("saml:NameID Format CDATA #FIXED 'urn:evil'", same),
        Defaulted("saml:Assertion Version CDATA '3.0'", same),
        Defaulted("saml:Conditions NotOnOrAfter CDATA '2099-01-01T00:00:00Z'", same),
        Defaulted("saml:ProxyRestriction Count CDATA '99'", same),
        Defaulted("saml:Condition xsi:type CDATA 'del:DelegationRestrictionType'", same),
        Defaulted("saml:Condition Count CDATA '99'",
                  Refused<ParseException>("Unexpected attribute 'Count' on element 'Condition'")),
        // Two attributes of one expanded name; the first by its written name is taken.
        Defaulted("saml:Condition a:type CDATA 'x' xmlns:a CDATA '" + schema + "'",
                  Refused<ParseException>(
                      "Unknown or duplicate restriction node under Conditions: Condition")),
        Defaulted("saml:Condition z:type CDATA 'x' xmlns:z CDATA '" + schema + "'",
                  Refused<ParseException>("Unexpected attribute 'z:type' on element 'Condition'")),
        Defaulted("saml:Attribute FriendlyName CDATA 'isSolution'", RefusedAsTampered()),
        Defaulted("saml:AttributeValue xsi:type CDATA 'xs:string'", RefusedAsTampered()),
        Defaulted("saml:AttributeValue xsi:nil CDATA 'true'", RefusedAsTampered()),
        Defaulted("saml:AudienceRestriction xsi:nil CDATA 'true'", RefusedAsTampered()),
        Defaulted("saml:Advice xsi:nil CDATA 'true'", UnexpectedAttributes("Advice")),
        Defaulted("saml:Conditions xsi:nil CDATA '1'", UnexpectedAttributes("Conditions")),
        Defaulted("saml:SubjectConfirmationData xsi:type CDATA 'KeyInfoConfirmationDataType'",
                  UnexpectedAttributes("SubjectConfirmationData")),
        Defaulted("saml:Subject xml:lang CDATA 'en'", UnexpectedAttributes("Subject")),
        Defaulted("ds:Signature xml:space CDATA 'preserve'",
                  RefusedSignatureSyntax("Unexpected attributes on element 'Signature'")),
        Defaulted("ds:DigestMethod Algorithm CDATA 'http://www.w3.org/2000/09/xmldsig#sha1'", same),
        // Namespaces: unused declarations are not signed, others win or lose against what is there.
        Defaulted("saml:Subject xmlns CDATA 'urn:evil'", same),
        Defaulted("saml:Assertion xmlns:saml CDATA 'urn:evil'", same),
        Defaulted("saml:NameID xmlns:saml CDATA 'urn:evil'",
                  Refused<ParseException>("Element 'NameID' has unexpected namespace")),
        Defaulted("ds:Signature xmlns:ds CDATA 'urn:evil'", same),
        Displaced("NamespaceOfTheSignature", " xmlns:ds=\"http://www.w3.org/2000/09/xmldsig#\"",
                  "ds:Signature xmlns:ds CDATA 'urn:evil'", nobody),
        Displaced("SameNamespaceOfTheSignature", " xmlns:ds=\"http://www.w3.org/2000/09/xmldsig#\"",
                  "ds:Signature xmlns:ds CDATA 'http://www.w3.org/2000/09/xmldsig#'", same),
        Displaced("SameVersion", " Version=\"2.0\"", "saml:Assertion Version CDATA '2.0'", same),
        Displaced("OtherVersion", " Version=\"2.0\"", "saml:Assertion Version CDATA '3.0'",
                  Refused<ParseException>("Invalid token version")),
        Displaced("OtherSource", " AdviceSource=\"urn:advisor\"",
                  "ext:RSAAdvice AdviceSource CDATA 'urn:evil'", RefusedAsTampered()),
        Displaced("SameSource", " AdviceSource=\"urn:advisor\"",
                  "ext:RSAAdvice AdviceSource CDATA 'urn:advisor'", same),
        Displaced("EarlierStart", " NotBefore=\"" + SignedByIdentifier().spec.notBefore + "\"",
                  "saml:Conditions NotBefore CDATA '2000-01-01T00:00:00Z'", RefusedAsTampered()),
        Displaced("SameMethod", " Method=\"urn:oasis:names:tc:SAML:2.0:cm:bearer\"",
                  "saml:SubjectConfirmation Method CDATA 'urn:oasis:names:tc:SAML:2.0:cm:bearer'",
                  same),
        Displaced("OtherMethod", " Method=\"urn:oasis:names:tc:SAML:2.0:cm:bearer\"",
                  "saml:SubjectConfirmation Method CDATA "
                  "'urn:oasis:names:tc:SAML:2.0:cm:holder-of-key'",
                  Refused<ParseException>(
                      "Node 'SubjectConfirmationData is missing required attribute 'xsi:type'")),
    });
}

TEST(OtherDeclarations, SayNothing) {
    const std::string same = Accepted(SignedByIdentifier().spec);
    Forge::TokenSpec company = Provider::CustomerSpec();
    company.attributes[1].values = {"Doe & Co"};
    Forge::TokenSpec written = company;
    written.attributes[1].values = {"Doe &amp; Co"};
    const std::string ampersand = Provider::Signed(written);
    ExpectOutcomes({
        {"ElementTypes", WithDtd("<!ELEMENT saml:NameID EMPTY>", GenuineToken()), same},
        {"BlanksInElementContent",
         WithDtd("<!ELEMENT saml:Subject (saml:NameID)>",
                 Replaced(GenuineToken(), "<saml:Subject>", "<saml:Subject> ")),
         RefusedAsTampered()},
        {"AnotherRoot", "<!DOCTYPE html>" + GenuineToken(), same},
        {"PredefinedEntities", WithDtd("<!ENTITY amp 'evil'><!ENTITY lt 'evil'>", ampersand),
         Accepted(company)},
        {"FirstOfTwoEntities",
         WithDtd("<!ENTITY e 'Mallory'><!ENTITY e 'Alice'>", InFirstName("&e;")), same},
        {"CommentsAndInstructions", WithDtd("<!-- x --><?x y?>", GenuineToken()), same},
        {"ConditionalSection", WithDtd("<![IGNORE[<x>]]>", GenuineToken()),
         NotParsed("syntax error")},
        {"TwoDocumentTypes", "<!DOCTYPE x><!DOCTYPE x>" + GenuineToken(),
         NotParsed("syntax error")},
        {"BehindTheRoot", GenuineToken() + "<!DOCTYPE x>",
         NotParsed("junk after document element")},
        {"InTheRoot", Replaced(GenuineToken(), "<saml:Advice>", "<saml:Advice><!DOCTYPE x>"),
         NotWellFormed()},
        {"Unfinished", "<!DOCTYPE x [" + GenuineToken(), NotParsed("syntax error")},
        {"WithoutARoot", "<!DOCTYPE x>", NotParsed("no element found")},
        {"ElementByAnEntity",
         WithDtd("<!ENTITY e '<saml:NameID Format=\"x\">admin@corp</saml:NameID>'>",
                 Replaced(GenuineToken(), "<saml:Subject>", "<saml:Subject>&e;")),
         NotFound("SubjectConfirmation")},
        {"EndTagByAnEntity", WithDtd("<!ENTITY e '</saml:NameID>'>", InFirstName("&e;")),
         NotParsed("asynchronous entity")},
    });
}

}  // namespace
}  // namespace Saml::Attacks
