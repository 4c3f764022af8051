// Which signature counts, where it stands, and what its references may say.
#include "hostile/attacks/provider.h"
#include "hostile/attacks/refusals.h"
#include "hostile/attacks/stolen_signature.h"
#include "support/test_keys.h"

#include <gtest/gtest.h>

namespace Saml::Attacks {
namespace {

using Forge::Replaced;

std::string RefusedAsUntrusted() {
    return RefusedVerification("No verification key available.");
}
std::string Unresolved(const std::string& uri) {
    return RefusedVerification("The URI could not be resolved: " + uri);
}

/// `xml` with a signature of the attacker, who sends a certificate of his own or the provider's.
std::string SignedByAttacker(const std::string& xml, const std::vector<std::string>& certificates) {
    Forge::Signer attacker{TestKeys::KeyNamed("attacker").privateKey, {}};
    for (const std::string& name : certificates)
        attacker.certificates.push_back(TestKeys::CertificateNamed(name).der);
    return Forge::Sign(xml, attacker);
}
std::string SignatureIn(const std::string& token) {
    const std::string end = "</ds:Signature>";
    const std::size_t begin = token.find("<ds:Signature ");
    return token.substr(begin, token.find(end) + end.size() - begin);
}

TEST(SeveralSignatures, AreRefusedWhicheverComesFirst) {
    const Genuine& genuine = SignedByIdentifier();
    const std::string evil = Forge::Write(AdministratorSpec("_evil"));
    const std::string evilToken = SignedByAttacker(evil, {"attacker-leaf"});
    const std::string own = SignatureIn(evilToken);
    const std::string stolen = genuine.signature;
    ExpectOutcomes({
        {"TwiceTheGenuine", Replaced(genuine.token, stolen, stolen + stolen), NotFound("Subject")},
        {"GenuineThenTheAttackers", Replaced(genuine.token, stolen, stolen + own),
         NotFound("Subject")},
        {"AttackersThenTheGenuine", Replaced(genuine.token, stolen, own + stolen),
         RefusedAsUncovered()},
        {"EvilWithItsOwnAndAStolenOne", Replaced(evilToken, own, own + stolen),
         NotFound("Subject")},
        {"EvilWithAStolenOneAndItsOwn", Replaced(evilToken, own, stolen + own),
         RefusedAsUncovered()},
        {"EvilWithAStolenOneAtTheEnd",
         Replaced(evilToken, "</saml:AttributeStatement></saml:Assertion>",
                  "</saml:AttributeStatement>" + stolen + "</saml:Assertion>"),
         Refused<ParseException>("Unexpected elements under Assertion")},
        {"GenuineNestedInAnEvilTokenWithItsOwn",
         Replaced(evilToken, "</saml:AttributeStatement></saml:Assertion>",
                  "</saml:AttributeStatement>" + genuine.token + "</saml:Assertion>"),
         Refused<ParseException>("Unexpected elements under Assertion")},
        {"GenuineNestedInTheAdviceOfAnEvilTokenWithItsOwn",
         Replaced(evilToken, "<saml:Advice>", "<saml:Advice>" + genuine.token),
         NotFound("RSAAdvice")},
        {"GenuineNestedInTheCertificatesOfAnEvilTokenWithItsOwn",
         Replaced(evilToken, "<ds:X509Data>", "<ds:X509Data>" + genuine.token),
         RefusedAsUntrusted()},
        {"SignatureInTheSignature", Replaced(evilToken, "<ds:X509Data>", "<ds:X509Data>" + stolen),
         RefusedAsUntrusted()},
        {"SignatureInAnObjectOfTheSignature",
         Replaced(evilToken, "</ds:Signature>",
                  "<ds:Object>" + stolen + "</ds:Object></ds:Signature>"),
         RefusedSignatureSyntax("Unexpected child nodes under 'Signature'")},
        {"OwnSignature", evilToken, RefusedAsUntrusted()},
        {"OwnSignatureUnderTheProvidersCertificate",
         SignedByAttacker(evil, {"leaf", "intermediate"}), RefusedAsTampered()},
        {"OwnSignatureWithTheGenuineKeyInfo",
         Replaced(evilToken, own.substr(own.find("<ds:KeyInfo>")),
                  stolen.substr(stolen.find("<ds:KeyInfo>"))),
         RefusedAsTampered()},
        {"OwnSignedInfoWithTheGenuineValue",
         Replaced(evilToken, own.substr(own.find("<ds:SignatureValue>")),
                  stolen.substr(stolen.find("<ds:SignatureValue>"))),
         RefusedAsTampered()},
    });
}

TEST(ASignatureInAnotherPlace, IsNotFound) {
    const Genuine& genuine = SignedByIdentifier();
    const std::string noSignature =
        RefusedSignatureSyntax("Expected element 'Signature' not found.");
    const auto moved = [&](const std::string& name, const std::string& anchor,
                           const std::string& outcome) {
        return Attack{name, Replaced(genuine.original, anchor, genuine.signature + anchor),
                      outcome};
    };
    ExpectOutcomes({
        moved("BeforeTheIssuer", "<saml:Issuer ", NotFound("Issuer")),
        moved("InTheIssuer", "</saml:Issuer>",
              Refused<ParseException>("Element 'Issuer' must only have textual content (but has "
                                      "extra children or is empty).")),
        moved("InTheSubject", "</saml:Subject>", noSignature),
        moved("BehindTheSubject", "<saml:Conditions ", noSignature),
        moved("InTheConditions", "</saml:Conditions>", noSignature),
        moved("InTheAdvice", "</saml:Advice>", noSignature),
        moved("InTheStatements", "</saml:AttributeStatement>", noSignature),
        moved("AtTheEnd", "</saml:Assertion>", noSignature),
        {"WithoutSubjectAndConditions",
         "<saml:Assertion xmlns:saml=\"urn:oasis:names:tc:SAML:2.0:assertion\" ID=\"_genuine\" "
         "IssueInstant=\"2020-01-01T00:00:00Z\" Version=\"2.0\"><saml:Issuer Format=\"f\">x"
         "</saml:Issuer></saml:Assertion>",
         Refused<ParseException>("Expected element ds:Signature not found")},
        {"TextInItsPlace", Replaced(genuine.token, genuine.signature, "Signature"),
         Refused<ParseException>("Expected element ds:Signature not found")},
        {"InAnotherNamespace",
         Replaced(genuine.token, "xmlns:ds=\"http://www.w3.org/2000/09/xmldsig#\"",
                  "xmlns:ds=\"http://www.w3.org/2000/09/xmldsig\""),
         RefusedSignatureSyntax("Element 'Signature has unexpected namespace: "
                                "'http://www.w3.org/2000/09/xmldsig'")},
    });
}

/// The genuine token with another reference text; nothing else is changed.
std::string WithUri(const std::string& uri) {
    return Replaced(SignedByIdentifier().token, "URI=\"#_genuine\"", "URI=\"" + uri + "\"");
}

TEST(AReferenceInAnotherForm, DoesNotCoverTheToken) {
    std::vector<Attack> attacks;
    for (const char* const uri : {"#xpointer(/)",
                                  "#xpointer(id('_genuine'))",
                                  "#xpointer(//*[@ID='_genuine'])",
                                  "#element(/1)",
                                  "#xmlns(s=urn:x)xpointer(/s:Assertion)",
                                  "_genuine",
                                  "##_genuine",
                                  "#_genuine#",
                                  "#_genuine ",
                                  " #_genuine",
                                  "?#_genuine",
                                  "#_GENUINE",
                                  "#%5Fgenuine",
                                  "#",
                                  "#*",
                                  "file:///etc/passwd",
                                  "http://idp.example/token.xml",
                                  "token.xml#_genuine",
                                  "cid:token",
                                  "data:text/xml,x",
                                  " ",
                                  "#_genuine,#_evil"})
        attacks.push_back({"'" + std::string(uri) + "'", WithUri(uri), RefusedAsUncovered()});
    // These name the assertion, but are not what was signed.
    attacks.push_back({"TheRootInsteadOfTheIdentifier", WithUri(""), RefusedAsTampered()});
    attacks.push_back({"NoneInsteadOfTheIdentifier",
                       Replaced(SignedByIdentifier().token, " URI=\"#_genuine\"", ""),
                       RefusedAsTampered()});
    attacks.push_back({"TheIdentifierInsteadOfTheRoot",
                       Replaced(SignedAsRoot().token, "URI=\"\"", "URI=\"#_genuine\""),
                       RefusedAsTampered()});
    attacks.push_back({"NoneInsteadOfTheRoot", Replaced(SignedAsRoot().token, " URI=\"\"", ""),
                       RefusedAsTampered()});
    attacks.push_back({"ByACharacterReference", WithUri("&#35;&#x5f;genuine"),
                       Accepted(SignedByIdentifier().spec)});
    ExpectOutcomes(attacks);
}

std::string ReferenceIn(const std::string& token) {
    const std::string end = "</ds:Reference>";
    const std::size_t begin = token.find("<ds:Reference ");
    return token.substr(begin, token.find(end) + end.size() - begin);
}

/// The genuine token with one more reference, in front of its own or behind it.
std::string WithReference(const std::string& uri, bool inFront) {
    const std::string own = ReferenceIn(SignedByIdentifier().token);
    const std::string added = Replaced(own, "#_genuine", uri);
    return Replaced(SignedByIdentifier().token, own, inFront ? added + own : own + added);
}

// Each reference must be resolved, wherever it stands; none is passed over for another that holds.
TEST(AnAddedReference, IsNeverPassedOver) {
    std::vector<Attack> attacks;
    for (const bool inFront : {true, false}) {
        const std::string place = inFront ? "InFront" : "Behind";
        for (const char* const uri :
             {"#nothing", "#", "#xpointer(/)", "file:///etc/passwd", "http://idp.example/"})
            attacks.push_back(
                {place + ".'" + uri + "'", WithReference(uri, inFront), Unresolved(uri)});
        attacks.push_back(
            {place + ".Repeated", WithReference("#_genuine", inFront), RefusedAsTampered()});
        attacks.push_back({place + ".Root", WithReference("", inFront), RefusedAsTampered()});
    }
    ExpectOutcomes(attacks);
}

/// What the provider signs with references to each of these.
std::string SignedWithReferences(const std::string& xml, const std::vector<std::string>& uris) {
    const boost::intrusive_ptr<Xml::Document> document = Forge::Parse(xml);
    Provider::SignInPlace(*document->GetRootElement(), uris);
    StringWriter text;
    document->GetRootElement()->Write(text);
    return text.data;
}

// Attributes of a restriction are not examined: a place for an identifier of a part.
TEST(AReferenceToAPartOfTheToken, DoesNotStandForTheWhole) {
    const Forge::TokenSpec spec = Provider::CustomerSpec();
    const std::string part = "<saml:AudienceRestriction ID=\"_part\">";
    const std::string xml = Replaced(Forge::Write(spec), "<saml:AudienceRestriction>", part);
    const std::string both = SignedWithReferences(xml, {"#_part", "#_genuine"});
    const std::string alone = SignedWithReferences(xml, {"#_part"});
    const std::string partAndRoot = SignedWithReferences(xml, {"#_part", ""});
    ExpectOutcomes({
        {"PartAndWhole", both, Accepted(spec)},
        {"PartAndRoot", partAndRoot, Accepted(spec)},
        {"PartAlone", alone, RefusedAsUncovered()},
        {"PartAloneAndAnotherSubject", Replaced(alone, "mallory@corp", "admin@corp"),
         RefusedAsUncovered()},
        {"PartBecomesTheWhole",
         Replaced(Replaced(Replaced(alone, " ID=\"_part\"", ""), "_genuine", "_part"),
                  "mallory@corp", "admin@corp"),
         RefusedAsTampered()},
        {"PartWithoutIdentifier", Replaced(both, " ID=\"_part\"", ""), Unresolved("#_part")},
        {"PartChangedInside", Replaced(both, "https://wiki.example/", "https://bank.example/"),
         RefusedAsTampered()},
        {"WholeWithoutItsReference",
         Replaced(both, ReferenceIn(both.substr(both.find("</ds:Reference>") + 1)), ""),
         RefusedAsUncovered()},
        {"PartWithoutItsReference", Replaced(both, ReferenceIn(both), ""), RefusedAsTampered()},
    });
}

}  // namespace
}  // namespace Saml::Attacks
