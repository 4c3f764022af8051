// KeyInfo is not signed: whoever sends the token writes it. xmldsig-core 4.5.
#include "hostile/attacks/hand_made_signature.h"
#include "hostile/attacks/refusals.h"
#include "support/test_keys.h"

#include <gtest/gtest.h>

namespace Saml::Attacks {
namespace {

using namespace std::string_literals;

/// Who trusts one certificate uses its key where a token sends none, so that forgeries without a
/// certificate meet a key, which is not theirs.
std::string RefusedByTheOneTrustedKey() {
    return RefusedAsTampered();
}

/// Signed by the attacker.
std::string ForgedWith(const std::string& keyInfo) {
    HandMadeSignature signature;
    signature.sign = SigningWith("attacker");
    signature.keyInfo = keyInfo;
    return TokenWith(signature);
}

/// Signed by the provider.
std::string GenuineWith(const std::string& keyInfo, const Forge::TokenSpec& spec) {
    HandMadeSignature signature;
    signature.keyInfo = keyInfo;
    return TokenWith(signature, spec);
}

std::string AttackersKeyValue() {
    const ByteBlob der = TestKeys::KeyNamed("attacker").publicKey;
    const std::string text(der->begin(), der->end());
    return "<ds:KeyValue><ds:RSAKeyValue><ds:Modulus>" +
           Base64Text(text.substr(text.size() - 5 - 128, 128)) +
           "</ds:Modulus><ds:Exponent>AQAB</ds:Exponent></ds:RSAKeyValue></ds:KeyValue>";
}

TEST(KeyInformation, OfOtherKindsThanCertificatesIsRefused) {
    const std::string expectsX509 =
        RefusedSignatureSyntax("Expected element 'X509Data' not found.");
    const auto with = [&](const char* name, const std::string& content) {
        return Attack{name, ForgedWith(KeyInfo(content)), expectsX509};
    };
    ExpectOutcomes({
        with("RsaKeyValue", AttackersKeyValue()),
        with("DerEncodedKeyValue",
             "<k:DEREncodedKeyValue xmlns:k=\"http://www.w3.org/2009/xmldsig11#\">AAAA"
             "</k:DEREncodedKeyValue>"),
        with("KeyName", "<ds:KeyName>Signer</ds:KeyName>"),
        with("RetrievalMethodToAFile",
             "<ds:RetrievalMethod URI=\"file:///tmp/attacker.der\" "
             "Type=\"http://www.w3.org/2000/09/xmldsig#rawX509Certificate\"/>"),
        with("RetrievalMethodToTheNet",
             "<ds:RetrievalMethod URI=\"http://attacker.example/key\"/>"),
        with("RetrievalMethodIntoTheToken", "<ds:RetrievalMethod URI=\"#_genuine\"/>"),
        with("PgpData", "<ds:PGPData><ds:PGPKeyID>AAAA</ds:PGPKeyID></ds:PGPData>"),
        with("SpkiData", "<ds:SPKIData><ds:SPKISexp>AAAA</ds:SPKISexp></ds:SPKIData>"),
        with("MgmtData", "<ds:MgmtData>secret</ds:MgmtData>"),
        with("EncryptedKey", "<e:EncryptedKey xmlns:e=\"http://www.w3.org/2001/04/xmlenc#\"/>"),
        with("SecurityTokenReference", "<w:SecurityTokenReference xmlns:w=\"urn:wss\"/>"),
        with("Text", "Signer"),
        with("KeyValueBeforeTheCertificates",
             AttackersKeyValue() + X509Data(X509Certificates({"leaf"}))),
    });
}

TEST(KeyInformation, IsTakenFromOnePlaceOnly) {
    const std::string genuine = X509Data(X509Certificates({"leaf", "intermediate"}));
    const std::string attackers = X509Data(X509Certificates({"attacker-leaf"}));
    const std::string extra =
        RefusedSignatureSyntax("Unexpected extra element(s) after <X509Data>");
    const std::string secondKeyInfo =
        RefusedSignatureSyntax("Unexpected child nodes under 'Signature'");
    ExpectOutcomes({
        {"TwoX509Data", ForgedWith(KeyInfo(genuine + attackers)), extra},
        {"TwoX509DataTheAttackersFirst", ForgedWith(KeyInfo(attackers + genuine)), extra},
        {"TheSameX509DataTwice", ForgedWith(KeyInfo(genuine + genuine)), extra},
        {"AnEmptyX509DataBehind", ForgedWith(KeyInfo(genuine + X509Data(""))), extra},
        {"AKeyValueBehind", ForgedWith(KeyInfo(genuine + AttackersKeyValue())), extra},
        {"TextBehind", ForgedWith(KeyInfo(genuine + "x")), extra},
        {"TwoKeyInfos", ForgedWith(KeyInfo(genuine) + KeyInfo(attackers)), secondKeyInfo},
        {"TwoKeyInfosTheAttackersFirst", ForgedWith(KeyInfo(attackers) + KeyInfo(genuine)),
         secondKeyInfo},
        {"KeyInfoInAnObject",
         ForgedWith(KeyInfo(genuine) + "<ds:Object>" + KeyInfo(attackers) + "</ds:Object>"),
         secondKeyInfo},
        {"KeyInfoOfAnotherNamespace",
         ForgedWith("<x:KeyInfo xmlns:x=\"urn:x\">" + attackers + "</x:KeyInfo>"), secondKeyInfo},
    });
}

TEST(KeyInformation, IsReadStrictly) {
    const std::string certificate = X509Certificates({"attacker-leaf"});
    const std::string notText = RefusedSignatureSyntax(
        "Element 'X509Certificate' must only have textual content (but has extra children or is "
        "empty).");
    const auto holding = [](const std::string& text) {
        return ForgedWith(
            KeyInfo(X509Data("<ds:X509Certificate>" + text + "</ds:X509Certificate>")));
    };
    ExpectOutcomes({
        {"KeyInfoWithAnId",
         ForgedWith("<ds:KeyInfo Id=\"_genuine\">" + X509Data(certificate) + "</ds:KeyInfo>"),
         RefusedSignatureSyntax("Unexpected attributes on element 'KeyInfo'")},
        {"X509DataWithAnId",
         ForgedWith(KeyInfo("<ds:X509Data Id=\"k\">" + certificate + "</ds:X509Data>")),
         RefusedSignatureSyntax("Unexpected attributes on element 'X509Data'")},
        {"CertificateWithAnEncoding",
         ForgedWith(KeyInfo(X509Data("<ds:X509Certificate Encoding=\"hex\">AAAA"
                                     "</ds:X509Certificate>"))),
         RefusedSignatureSyntax("Unexpected attributes on element 'X509Certificate'")},
        {"X509DataOfAnotherNamespace",
         ForgedWith(KeyInfo("<x:X509Data xmlns:x=\"urn:x\">" + certificate + "</x:X509Data>")),
         RefusedSignatureSyntax("Element 'X509Data has unexpected namespace: 'urn:x'")},
        {"EmptyCertificate", holding(""), notText},
        {"BlankCertificate", holding(" \n "), notText},
        {"CertificateInASection", holding("<![CDATA[AAAA]]>"), notText},
        {"CertificateWithAnElement", holding("AAAA<x/>"), notText},
        {"CertificateInTwoTexts", holding("AAAA<!-- -->AAAA"), notText},
        {"CertificateThatIsNoBase64", holding("?"),
         RefusedSignatureSyntax("Malformed base64 data")},
        {"CertificateInPem",
         holding("-----BEGIN CERTIFICATE-----\nAAAA\n-----END CERTIFICATE-----"),
         RefusedSignatureSyntax("Malformed base64 data")},
        {"CertificateBehindAByteOrderMark",
         holding("\xEF\xBB\xBF"
                 "AAAA"),
         RefusedSignatureSyntax("Malformed base64 data")},
    });
}

// Names and numbers of a certificate choose none: the attacker copies them from the provider's.
TEST(KeyInformation, ThatOnlyDescribesACertificateChoosesNoKey) {
    const auto with = [](const char* name, const std::string& content) {
        return Attack{name, ForgedWith(KeyInfo(X509Data(content))), RefusedByTheOneTrustedKey()};
    };
    ExpectOutcomes({
        with("Nothing", ""),
        with("IssuerAndSerial",
             "<ds:X509IssuerSerial><ds:X509IssuerName>CN=Intermediate</ds:X509IssuerName>"
             "<ds:X509SerialNumber>4097</ds:X509SerialNumber></ds:X509IssuerSerial>"),
        with("KeyIdentifier", "<ds:X509SKI>SW50ZXJtZWRpYXRl</ds:X509SKI>"),
        with("SubjectName", "<ds:X509SubjectName>CN=Signer</ds:X509SubjectName>"),
        with("RevocationList", "<ds:X509CRL>AAAA</ds:X509CRL>"),
        with("Digest",
             "<k:X509Digest xmlns:k=\"http://www.w3.org/2009/xmldsig11#\" "
             "Algorithm=\"http://www.w3.org/2001/04/xmlenc#sha256\">AAAA</k:X509Digest>"),
        with("KeyValueInside", AttackersKeyValue()),
        with("CertificateOfAnotherNamespace",
             "<x:X509Certificate xmlns:x=\"urn:x\">AAAA</x:X509Certificate>"),
        with("CertificateOneLevelDown", X509Data(X509Certificates({"attacker-leaf"}))),
        with("CertificateInLowerCase", "<ds:x509certificate>AAAA</ds:x509certificate>"),
    });
}

TEST(KeyInformation, ThatDescribesAnotherDoesNotHideTheCertificate) {
    const Forge::TokenSpec customer = Provider::CustomerSpec();
    const std::string description =
        "<ds:X509SubjectName>CN=Attacker</ds:X509SubjectName><ds:X509SKI>AAAA</ds:X509SKI>";
    const std::string genuine = X509Certificates({"leaf", "intermediate"});
    ExpectOutcomes({
        {"InFront", GenuineWith(KeyInfo(X509Data(description + genuine)), customer),
         Accepted(customer)},
        {"Behind", GenuineWith(KeyInfo(X509Data(genuine + description)), customer),
         Accepted(customer)},
        {"SignedByTheAttacker", ForgedWith(KeyInfo(X509Data(description + genuine))),
         RefusedAsTampered()},
    });
}

// The one certificate that somebody trusts needs not be sent; among two there would be a choice.
TEST(KeyInformation, MayBeMissingForOneTrustedCertificateOnly) {
    const Forge::TokenSpec customer = Provider::CustomerSpec();
    const std::string forged = ForgedWith("");
    const std::string genuine = GenuineWith("", customer);
    const Resolver oneInTheChain = Provider::TrustChain({"leaf"});
    const Resolver twoInTheChain = Provider::TrustChain({"leaf", "root"});
    const Resolver twoInTheSet = Provider::TrustSet({"leaf", "leaf-of-root"});
    const Resolver sameTwice = Provider::TrustSet({"leaf", "leaf"});
    const Resolver expired = Provider::TrustSet({"expired-leaf"});
    const std::string withoutKey = RefusedWithoutKey();
    ExpectOutcomes({
        {"ForgedForOne", forged, RefusedByTheOneTrustedKey()},
        {"ForgedForTheSignersChain", forged, RefusedByTheOneTrustedKey(), oneInTheChain},
        {"ForgedForTwoInTheChain", forged, withoutKey, twoInTheChain},
        {"ForgedForTwoInTheSet", forged, withoutKey, twoInTheSet},
        {"GenuineForTheSigner", genuine, Accepted(customer), Provider::TrustInTheSigner()},
        {"GenuineForTheSignersChain", genuine, Accepted(customer), oneInTheChain},
        // The root is the one certificate, and its key is another.
        {"GenuineForTheRoot", genuine, RefusedAsTampered(), Provider::TrustInTheRoot()},
        {"GenuineForTwoInTheChain", genuine, withoutKey, twoInTheChain},
        {"GenuineForTwoInTheSet", genuine, withoutKey, twoInTheSet},
        // Even between two that are equal.
        {"GenuineForTheSameTwice", genuine, withoutKey, sameTwice},
        {"GenuineForAnExpiredOne", genuine, withoutKey, expired},
        {"EmptyKeyInfoForged", ForgedWith(KeyInfo("")), RefusedByTheOneTrustedKey()},
        {"EmptyKeyInfoGenuine", GenuineWith(KeyInfo(""), customer), Accepted(customer),
         Provider::TrustInTheSigner()},
    });
}

// The KeyInfo of the subject's confirmation tells whose key the presenter must hold: the attacker
// gets one with his own certificate by asking for it.
TEST(KeyInformation, OfTheConfirmationIsNotTheSigners) {
    Forge::TokenSpec holder = Provider::CustomerSpec();
    const ByteBlob attackers = TestKeys::CertificateNamed("attacker-leaf").der;
    holder.holderOfKeyCertificate = Base64Text({attackers->begin(), attackers->end()});
    const auto made = [&](const std::string& signer, const std::string& keyInfo) {
        HandMadeSignature signature;
        signature.sign = SigningWith(signer);
        signature.keyInfo = keyInfo;
        return TokenWith(signature, holder);
    };
    ExpectOutcomes({
        {"SignedByThePresenter", made("attacker", ""), RefusedByTheOneTrustedKey()},
        {"SignedByThePresenterWithTheSignersCertificate",
         made("attacker", Sending({"leaf", "intermediate"})), RefusedAsTampered()},
        {"SignedByThePresenterForTwoTrusted", made("attacker", ""), RefusedWithoutKey(),
         Provider::TrustSet({"leaf", "leaf-of-root"})},
        {"SignedByTheProvider", made("leaf", Sending({"leaf", "intermediate"})), Accepted(holder)},
    });
}

}  // namespace
}  // namespace Saml::Attacks
