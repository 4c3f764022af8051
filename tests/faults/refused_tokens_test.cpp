#include "faults/faulty_tokens.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace Saml::Faults {
namespace {

using Forge::Replaced;
using Forge::SignatureSpec;
using Forge::TokenSpec;

constexpr char kTampered[] =
    "InvalidSignatureException: Failed to verify signature: token might have been tampered with.";
constexpr char kNoKey[] =
    "InvalidSignatureException: Signature verification error. No verification key available.";

/// A token that is refused, and by what.
struct Refusal {
    const char* name;
    const char* refusal;
    std::string (*token)();
    Stage stage;
    Trust trust = Trust::Set;
    std::vector<const char*> trusted{"leaf"};
    /// Memory that is short from before the signer's certificate is read makes that unreadable, as
    /// if none had been sent: then a single trusted key is tried, for which memory is short as
    /// well.
    bool triesTheSingleKey = false;
};
void PrintTo(const Refusal& row, std::ostream* out) {
    *out << row.name;
}

class RefusedToken : public testing::TestWithParam<Refusal> {};

TEST_P(RefusedToken, IsRefusedStill) {
    const Refusal& row = GetParam();
    Failures failures = FailuresUpTo(row.stage, row.trust);
    if (row.triesTheSingleKey)
        failures.openSsl.insert(
            "InvalidSignatureException: Signature verification error. Crypto Exception: Failed to "
            "initialize signature verification context.");
    ExpectSoundInShortage(CallOfText(row.token(), CreateResolver(row.trust, row.trusted)),
                          row.refusal, failures);
}

std::string Usual() {
    return SignedToken({}, {"leaf"});
}
std::string Written(void (*change)(TokenSpec&)) {
    TokenSpec spec;
    spec.signature = Forge::HollowSignature("#" + spec.id);
    change(spec);
    return Forge::Write(spec);
}
std::string SignedWith(void (*change)(TokenSpec&)) {
    TokenSpec spec;
    change(spec);
    return SignedToken(spec, {"leaf"});
}

INSTANTIATE_TEST_SUITE_P(
    Parsing, RefusedToken,
    testing::Values(
        Refusal{"NotWellFormed", "XMLParseException: mismatched tag",
                [] { return Replaced(Usual(), "</saml:Subject>", "</saml:Subjects>"); },
                Stage::Parsing},
        Refusal{"CutOff", "XMLParseException: no element found",
                [] { return Replaced(Usual(), "</saml:Assertion>", ""); }, Stage::Parsing},
        Refusal{"SecondRoot", "XMLParseException: junk after document element",
                [] { return Usual() + "<more/>"; }, Stage::Parsing},
        Refusal{"RecursiveEntity", "XMLParseException: recursive entity reference",
                [] {
                    return "<!DOCTYPE x [<!ENTITY a '&b;'><!ENTITY b '&a;'>]>" +
                           Replaced(Usual(), "jdoe", "&a;");
                },
                Stage::Parsing},
        Refusal{"InstructionInside", "XMLParseException: parsing aborted",
                [] { return Replaced(Usual(), "</saml:Issuer>", "<?x?></saml:Issuer>"); },
                Stage::Parsing}),
    [](const auto& row) { return std::string(row.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Reading, RefusedToken,
    testing::Values(
        Refusal{"AnotherRoot", "ParseException: Expected element 'Assertion' not found.",
                [] { return std::string("<root>text</root>"); }, Stage::Reading},
        Refusal{"AnotherVersion", "ParseException: Invalid token version",
                [] { return Written([](TokenSpec& s) { s.version = "1.1"; }); }, Stage::Reading},
        Refusal{"NoSignature",
                "ParseException: Signature syntax error: Expected element 'Signature' "
                "not found.",
                [] { return Forge::Write({}); }, Stage::Reading},
        Refusal{"UnsupportedTransform",
                "ParseException: Signature syntax error: Unsupported transformation "
                "algorithm: http://www.w3.org/2000/09/xmldsig#base64",
                [] { return Replaced(Usual(), "xmldsig#enveloped-signature", "xmldsig#base64"); },
                Stage::Reading},
        Refusal{"NoDate", "ParseException: Conditions/@NotBefore is not a date",
                [] { return Written([](TokenSpec& s) { s.notBefore = "yesterday"; }); },
                Stage::Reading},
        Refusal{"CDataInAName",
                "ParseException: Element 'NameID' must only have textual content (but "
                "has extra children or is empty).",
                [] { return Written([](TokenSpec& s) { s.subject.value = "<![CDATA[a@b]]>"; }); },
                Stage::Reading},
        Refusal{"Expired",
                "ParseException: The token has expired at: "
                "2020-01-01T01:00:00Z",
                [] {
                    return SignedWith([](TokenSpec& s) {
                        s.notBefore = "2020-01-01T00:00:00Z";
                        s.notOnOrAfter = "2020-01-01T01:00:00Z";
                    });
                },
                Stage::Reading},
        Refusal{"ConfirmationEndsEarly", "ParseException: Invalid token subject validity",
                [] {
                    return Written(
                        [](TokenSpec& s) { s.confirmationNotOnOrAfter = "2020-01-01T01:00:00Z"; });
                },
                Stage::Reading},
        Refusal{"DelegateWithoutDelegation",
                "ParseException: Token SubjectConfirmation contains delegate id, but "
                "no delegation restriction is present",
                [] { return Written([](TokenSpec& s) { s.delegateId = s.subject; }); },
                Stage::Reading},
        Refusal{"SignatureOfSomethingElse",
                "ParseException: Token's signature must cover the entire "
                "token",
                [] { return Written([](TokenSpec& s) { s.id = "_other"; }); }, Stage::Reading}),
    [](const auto& row) { return std::string(row.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Verifying, RefusedToken,
    testing::Values(
        Refusal{"AlteredValue", kTampered, [] { return Replaced(Usual(), "jdoe", "root"); },
                Stage::Digesting},
        Refusal{"UnsupportedDigest",
                "InvalidSignatureException: Signature verification error. The "
                "following hash algorithm is unsupported: http://www.w3.org/2001/04/xmlenc#sha3",
                [] { return Replaced(Usual(), "xmlenc#sha256", "xmlenc#sha3"); }, Stage::Reading},
        Refusal{
            "UnsupportedSignatureMethod",
            "InvalidSignatureException: Signature verification error. The "
            "signature algorithm is not supported: http://www.w3.org/2001/04/xmldsig-more#rsa-md5",
            [] { return Replaced(Usual(), "more#rsa-sha256", "more#rsa-md5"); }, Stage::Digesting},
        Refusal{"SignatureValueThatIsNoBase64", kTampered,
                [] { return Replaced(Usual(), "<ds:SignatureValue>", "<ds:SignatureValue>*"); },
                Stage::Digesting},
        Refusal{"SignatureValueOfSomethingElse", kTampered,
                [] { return Replaced(Usual(), "<ds:SignatureValue>", "<ds:SignatureValue>AAAA"); },
                Stage::Verifying},
        Refusal{"NamesThatAreNone",
                "ParseException: Failed to parse the UPN NameID: `jdoe'; name or "
                "domain part is missing.",
                [] { return SignedWith([](TokenSpec& s) { s.subject.value = "jdoe"; }); },
                Stage::Verifying},
        Refusal{"TwoSolutionValues",
                "pointer to ParseException: More than one value found for attribute "
                "isSolution.",
                [] {
                    return SignedWith([](TokenSpec& s) {
                        s.attributes = {{ProfileUri::IsSolution, {"true", "true"}}};
                    });
                },
                Stage::Verifying}),
    [](const auto& row) { return std::string(row.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Resolving, RefusedToken,
    testing::Values(Refusal{"NoKeyInfo",
                            kNoKey,
                            [] { return SignedToken({}, {}); },
                            Stage::Digesting,
                            Trust::Set,
                            {"leaf", "root"}},
                    Refusal{"UnknownSignerBySet",
                            kNoKey,
                            Usual,
                            Stage::Digesting,
                            Trust::Set,
                            {"self-signed", "root"}},
                    Refusal{"ExpiredSignerBySet",
                            kNoKey,
                            [] { return SignedToken({}, {"expired-leaf"}); },
                            Stage::Digesting,
                            Trust::Set,
                            {"expired-leaf"}},
                    Refusal{"ExpiredSingleSignerBySet",
                            kNoKey,
                            [] { return SignedToken({}, {}); },
                            Stage::Digesting,
                            Trust::Set,
                            {"expired-leaf"}},
                    Refusal{"ExpiredCertificateOfTheTrustedKeyBySet",
                            kNoKey,
                            [] { return SignedToken({}, {"self-signed-expired"}); },
                            Stage::Digesting,
                            Trust::Set,
                            {"self-signed"},
                            true},
                    Refusal{"UnknownSignerByChain",
                            kNoKey,
                            [] {
                                return SignedToken({}, {"leaf", "intermediate"});
                            },
                            Stage::Resolving,
                            Trust::Chain,
                            {"attacker-root", "false-root"}},
                    Refusal{"ExpiredSignerByChain",
                            kNoKey,
                            [] {
                                return SignedToken({}, {"expired-leaf", "intermediate"});
                            },
                            Stage::Resolving,
                            Trust::Chain,
                            {"root"},
                            true},
                    Refusal{"ExpiredCertificateOfTheTrustedKeyByChain",
                            kNoKey,
                            [] { return SignedToken({}, {"self-signed-expired"}); },
                            Stage::Resolving,
                            Trust::Chain,
                            {"self-signed"},
                            true},
                    Refusal{"SignerBehindGarbage",
                            kNoKey,
                            [] {
                                return SignedToken({}, {"!garbage", "leaf"});
                            },
                            Stage::Digesting,
                            Trust::Chain,
                            {"self-signed"},
                            true}),
    [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace Saml::Faults
