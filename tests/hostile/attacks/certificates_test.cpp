// Certificates that attackers send with their own signature. RFC 5280 section 6.
#include "hostile/attacks/hand_made_signature.h"
#include "hostile/attacks/refusals.h"
#include "support/big_documents.h"
#include "support/test_keys.h"

#include <gtest/gtest.h>

namespace Saml::Attacks {
namespace {

using namespace std::string_literals;
using Names = std::vector<std::string>;

std::string Made(const std::string& signer, const std::string& certificates,
                 const Forge::TokenSpec& spec = Provider::CustomerSpec()) {
    HandMadeSignature signature;
    signature.sign = SigningWith(signer);
    signature.keyInfo = KeyInfo(X509Data(certificates));
    return TokenWith(signature, spec);
}
std::string Forged(const Names& certificates) {
    return Made("attacker", X509Certificates(certificates));
}
std::string Sent(const std::string& base64) {
    return "<ds:X509Certificate>" + base64 + "</ds:X509Certificate>";
}

TEST(AttackersCertificates, AreNotTrusted) {
    const std::string refused = RefusedWithoutKey();
    ExpectOutcomes({
        {"SelfSigned", Forged({"false-self-signed"}), refused},
        {"SelfSignedRoot", Forged({"attacker-root"}), refused},
        {"LeafAlone", Forged({"attacker-leaf"}), refused},
        {"ChainToItsOwnRoot", Forged({"attacker-leaf", "attacker-intermediate", "attacker-root"}),
         refused},
        {"ChainThatEndsNowhere", Forged({"attacker-leaf", "attacker-intermediate"}), refused},
        {"ChainInReverse", Forged({"attacker-root", "attacker-intermediate", "attacker-leaf"}),
         refused},
        {"GenuineAuthoritiesBehindIt", Forged({"attacker-leaf", "intermediate", "root"}), refused},
        {"GenuineRootBehindIt", Forged({"attacker-root", "root"}), refused},
        {"GenuineChainBehindIt", Forged({"attacker-leaf", "leaf", "intermediate", "root"}),
         refused},
        {"TheSameTwice", Forged({"attacker-leaf", "attacker-leaf"}), refused},
    });
}

TEST(AttackersCertificates, AreNotTrustedForStolenNames) {
    const std::string refused = RefusedWithoutKey();
    ExpectOutcomes({
        {"NameOfTheRoot", Forged({"false-root"}), refused},
        {"NameOfTheRootBeforeTheRoot", Forged({"false-root", "root"}), refused},
        {"NamesOfSignerAndIntermediate", Forged({"false-leaf", "false-intermediate"}), refused},
        {"TheGenuineIntermediateBehindThem",
         Forged({"false-leaf", "false-intermediate", "intermediate"}), refused},
        {"TheGenuineIntermediateInstead", Forged({"false-leaf", "intermediate"}), refused},
        {"TheGenuineIntermediateBetweenThem",
         Forged({"false-leaf", "intermediate", "false-intermediate"}), refused},
        {"KeyIdentifierToo", Forged({"false-leaf-with-id", "false-intermediate"}), refused},
        {"KeyIdentifierTooAndTheGenuineIntermediate",
         Forged({"false-leaf-with-id", "intermediate"}), refused},
        {"NameSerialAndKeyIdentifier", Forged({"clone-of-leaf", "intermediate"}), refused},
        {"NameSerialAndKeyIdentifierWithItsIssuer", Forged({"clone-of-leaf", "false-intermediate"}),
         refused},
        {"OneLevelFurtherDown", Forged({"leaf-of-false-lower", "false-lower", "intermediate"}),
         refused},
        // Issued by the genuine intermediate, to the attacker, in the signer's name: the provider's
        // authorities vouch for it, and who trusts the signer alone does not ask them.
        {"IssuedInTheSignersName", Forged({"issued-clone-of-leaf", "intermediate"}), refused,
         Provider::TrustInTheSigner()},
    });
}

/// Certificates for the attacker's key that somebody issued who may not.
Names IssuedByALeaf() {
    constexpr char kExtensions[] = "basicConstraints=CA:FALSE\nkeyUsage=digitalSignature\n";
    constexpr char kAuthority[] =
        "basicConstraints=critical,CA:TRUE\nkeyUsage=critical,keyCertSign\n";
    TestKeys::Issue({"issued-by-leaf", "Attacker", "attacker", "leaf", kExtensions});
    TestKeys::Issue({"authority-by-leaf", "Attacker CA", "attacker", "leaf", kAuthority});
    return {"issued-by-leaf", "leaf", "intermediate"};
}

TEST(AttackersCertificates, AreNotTrustedWhenTheIssuerIsNoAuthority) {
    const Names byLeaf = IssuedByALeaf();
    const std::string refused = RefusedWithoutKey();
    const Resolver leafAsAnchor = Provider::TrustChain({"leaf"});
    const Resolver all = Provider::TrustChain({"leaf", "intermediate", "root"});
    const std::string token = Forged(byLeaf);
    const std::string fromAuthority = Forged({"authority-by-leaf", "leaf", "intermediate"});
    const std::string pathTooLong =
        Made("leaf", X509Certificates({"leaf-below-narrow", "below-narrow", "narrow"}));
    const std::string noCa =
        Made("leaf", X509Certificates({"leaf-of-authority", "authority-no-ca"}));
    ExpectOutcomes({
        {"AGenuineSigner", token, refused},
        {"AGenuineSignerThatIsTrusted", token, refused, leafAsAnchor},
        {"AGenuineSignerAmongTrustedAuthorities", token, refused, all},
        {"AGenuineSignerMadeAnAuthority", fromAuthority, refused},
        {"AGenuineSignerMadeAnAuthorityAndTrusted", fromAuthority, refused, leafAsAnchor},
        {"AnAuthorityForLeavesOnly", pathTooLong, refused},
        {"AnAuthorityForLeavesOnlyThatIsTrusted", pathTooLong, refused,
         Provider::TrustChain({"narrow"})},
        {"ACertificateThatSaysItIsNone", noCa, refused},
        {"ACertificateThatMayNotSign",
         Made("leaf", X509Certificates({"leaf-of-authority", "authority-no-cert-sign"})), refused},
        {"ACertificateThatDoesNotSay",
         Made("leaf", X509Certificates({"leaf-of-authority", "authority-no-basic-constraints"})),
         refused},
    });
}

TEST(CertificatesOutOfTheirTime, AreNotTrusted) {
    const std::string refused = RefusedWithoutKey();
    const auto by = [](const Names& names) { return Made("leaf", X509Certificates(names)); };
    ExpectOutcomes({
        {"ExpiredSigner", by({"expired-leaf", "intermediate"}), refused},
        {"SignerOfTheFuture", by({"future-leaf", "intermediate"}), refused},
        {"ExpiredSignerThatIsTrusted", by({"expired-leaf"}), refused,
         Provider::TrustSet({"expired-leaf"})},
        {"ExpiredSignerThatIsAnAnchor", by({"expired-leaf"}), refused,
         Provider::TrustChain({"expired-leaf"})},
        {"SignerOfTheFutureThatIsTrusted", by({"future-leaf"}), refused,
         Provider::TrustSet({"future-leaf"})},
        {"ExpiredIntermediate", by({"leaf", "expired-intermediate"}), refused,
         Provider::TrustInTheRoot()},
        {"IntermediateOfTheFuture", by({"leaf", "future-intermediate"}), refused,
         Provider::TrustInTheRoot()},
        {"ExpiredRoot", by({"leaf", "intermediate"}), refused,
         Provider::TrustChain({"expired-root"})},
    });
}

// The first usable certificate is the signer's: nobody tries one after the other until a key fits.
TEST(SeveralCertificates, LendTheirTrustToTheFirstOnly) {
    const Forge::TokenSpec customer = Provider::CustomerSpec();
    const auto genuine = [&](const Names& names) {
        return Made("leaf", X509Certificates(names), customer);
    };
    ExpectOutcomes({
        {"GenuineThenAttackers", Forged({"leaf", "attacker-leaf"}), RefusedWithoutKey(),
         Provider::TrustInTheRoot()},  // without the intermediate there is no chain
        {"GenuineChainThenAttackers", Forged({"leaf", "intermediate", "attacker-leaf"}),
         RefusedAsTampered()},
        {"GenuineThenAttackersForTheSet", Forged({"leaf", "attacker-leaf"}), RefusedAsTampered(),
         Provider::TrustInTheSigner()},
        {"GenuineThenAttackersAuthorities",
         Forged({"leaf", "intermediate", "attacker-intermediate", "attacker-root"}),
         RefusedAsTampered()},
        {"AttackersThenGenuineBySigner", genuine({"attacker-leaf", "leaf", "intermediate"}),
         RefusedWithoutKey()},
        {"AttackersAuthorityAmongGenuine", genuine({"leaf", "attacker-root", "intermediate"}),
         Accepted(customer)},
        {"ForgedAuthorityOfTheSameNameAmongGenuine",
         genuine({"leaf", "intermediate", "false-intermediate"}), Accepted(customer)},
    });
}

TEST(GarbageBeforeCertificates, HelpsNobody) {
    const Forge::TokenSpec customer = Provider::CustomerSpec();
    const std::string garbage = Sent("AAAA") + Sent("AA==") + Sent("MIIBCgKCAQEA");
    const ByteBlob der = TestKeys::CertificateNamed("leaf").der;
    const std::string cut = Sent(Base64Text({der->begin(), der->end() - 1}));
    const std::string attackers = X509Certificates({"attacker-leaf"});
    const std::string genuine = X509Certificates({"leaf", "intermediate"});
    const std::string alone = X509Certificates({"leaf"});
    const Resolver& root = Provider::TrustInTheRoot();
    const Resolver& signer = Provider::TrustInTheSigner();
    ExpectOutcomes({
        {"AloneForged", Made("attacker", garbage), RefusedAsTampered()},
        {"AloneCutOff", Made("attacker", cut), RefusedAsTampered()},
        {"BeforeTheAttackers", Made("attacker", garbage + attackers), RefusedWithoutKey()},
        // A signer behind garbage is passed over, and the authority behind it taken for one: its
        // key is the provider's, too, but has signed nothing.
        {"BeforeTheGenuineForged", Made("attacker", garbage + genuine), RefusedAsTampered()},
        {"BeforeTheGenuineForTheRoot", Made("leaf", garbage + genuine, customer),
         RefusedAsTampered(), root},
        {"BeforeTheGenuineForTheSigner", Made("leaf", garbage + genuine, customer),
         Accepted(customer), signer},
        {"BeforeTheSignerAloneForged", Made("attacker", garbage + alone), RefusedWithoutKey(),
         root},
        {"BeforeTheSignerAlone", Made("leaf", garbage + alone), RefusedWithoutKey(), root},
        {"BehindTheGenuine", Made("leaf", genuine + garbage + cut, customer), Accepted(customer)},
        {"BehindTheGenuineForged", Made("attacker", genuine + garbage), RefusedAsTampered()},
    });
}

TEST(AThousandCertificates, ChangeNothing) {
    const Forge::TokenSpec customer = Provider::CustomerSpec();
    const auto thousand = [](const char* name) {
        return BigDocuments::Repeated(X509Certificates({name}), 1000);
    };
    const std::string genuine = X509Certificates({"leaf", "intermediate"});
    ExpectOutcomes({
        {"AttackersLeaves", Made("attacker", thousand("attacker-leaf")), RefusedWithoutKey()},
        {"AttackersRoots", Made("attacker", thousand("attacker-root")), RefusedWithoutKey()},
        {"FalseIntermediates",
         Made("attacker", X509Certificates({"false-leaf"}) + thousand("false-intermediate")),
         RefusedWithoutKey()},
        {"BehindTheGenuineForged", Made("attacker", genuine + thousand("attacker-root")),
         RefusedAsTampered()},
        {"BehindTheGenuine", Made("leaf", genuine + thousand("attacker-root"), customer),
         Accepted(customer)},
        {"Garbage", Made("attacker", BigDocuments::Repeated(Sent("AAAA"), 1000)),
         RefusedAsTampered()},
    });
}

// The method says RSA, the certificate, although trusted, holds a key of another kind.
TEST(KeysOfOtherKinds, VerifyNothing) {
    const auto by = [](const std::string& key, const std::string& digest,
                       const std::string& certificate) {
        HandMadeSignature signature;
        signature.sign = SigningWith(key, digest);
        signature.keyInfo = Sending({certificate});
        return TokenWith(signature);
    };
    const std::string unsupported =
        RefusedVerification("Crypto Exception: Invalid or unsupported format of the public key");
    // What a resolver throws passes unchanged unless it is a statement about the signature.
    const std::string cannotWrite = Refused<Xml::Security::CryptoException>(
        "Crypto Exception: Invalid or unsupported public key");
    std::vector<Attack> attacks;
    for (const bool chain : {true, false}) {
        const auto trusting = [chain](const std::string& name) {
            return chain ? Provider::TrustChain({name}) : Provider::TrustSet({name});
        };
        const std::string suffix = chain ? "InTheChain" : "InTheSet";
        attacks.push_back({"EllipticCurve" + suffix, by("ec", "SHA256", "ec-self-signed"),
                           unsupported, trusting("ec-self-signed")});
        attacks.push_back({"Ed25519" + suffix, by("ed25519", "", "ed25519-self-signed"),
                           cannotWrite, trusting("ed25519-self-signed")});
        attacks.push_back({"RsaPss" + suffix, by("rsa-pss", "SHA256", "rsa-pss-self-signed"),
                           cannotWrite, trusting("rsa-pss-self-signed")});
    }
    attacks.push_back({"EllipticCurveBelowTheRoot",
                       [] {
                           HandMadeSignature signature;
                           signature.sign = SigningWith("ec");
                           signature.keyInfo = Sending({"ec-leaf", "intermediate"});
                           return TokenWith(signature);
                       }(),
                       unsupported, Provider::TrustInTheRoot()});
    ExpectOutcomes(attacks);
}

}  // namespace
}  // namespace Saml::Attacks
