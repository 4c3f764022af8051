#include "saml/security/trust_chain_resolver.h"

#include "saml/security/x509_key_info.h"
#include "support/forged_certificate.h"
#include "support/resolving.h"
#include "support/test_keys.h"
#include "support/thrown.h"

#include <gtest/gtest.h>

#include <atomic>
#include <list>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace Saml::Xml::Security {
namespace {

using Bytes = std::vector<unsigned char>;
using Names = std::vector<const char*>;
using TestKeys::CertificateNamed;
using TestKeys::ForgedCertificate;
using TestKeys::KeyNamed;
using TestKeys::ToBlob;

/// `offered` is the name of the key; null for none. Wherever a chain is to be refused, two
/// certificates are trusted or some are sent, so that the single trusted one's key does not come
/// in.
struct ChainCase {
    const char* name;
    Names trusted;
    Names sent;
    const char* offered;
};
void PrintTo(const ChainCase& row, std::ostream* out) {
    *out << row.name;
}

std::string NameOf(const testing::TestParamInfo<ChainCase>& row) {
    return row.param.name;
}

class TrustChain : public testing::TestWithParam<ChainCase> {};

TEST_P(TrustChain, OffersTheSignersKeyWhenItEndsAtATrustedCertificate) {
    X509TrustChainKeyResolver resolver(Ders(GetParam().trusted));
    const boost::intrusive_ptr<KeyInfo> keyInfo(new X509KeyInfo("ds", Ders(GetParam().sent)));
    EXPECT_EQ(KeysOf(resolver, keyInfo.get()), ExpectedKeys(GetParam().offered));
}

INSTANTIATE_TEST_SUITE_P(
    TrustedRoot, TrustChain,
    testing::Values(
        ChainCase{"LeafAndIntermediate", {"root"}, {"leaf", "intermediate"}, "leaf"},
        ChainCase{"LeafIntermediateAndRoot", {"root"}, {"leaf", "intermediate", "root"}, "leaf"},
        ChainCase{"LeafAndRootAndIntermediate", {"root"}, {"leaf", "root", "intermediate"}, "leaf"},
        ChainCase{"TwoIntermediates", {"root"}, {"leaf-of-lower", "intermediate", "lower"}, "leaf"},
        ChainCase{"LeafOfTheRoot", {"root"}, {"leaf-of-root"}, "leaf"},
        ChainCase{"LeafAlone", {"root"}, {"leaf"}, nullptr},
        ChainCase{"IntermediateMissingInBetween", {"root"}, {"leaf-of-lower", "lower"}, nullptr},
        ChainCase{"TrustedTwice", {"root", "root"}, {"leaf", "intermediate"}, "leaf"},
        ChainCase{"AmongOthers", {"attacker-root", "root"}, {"leaf", "intermediate"}, "leaf"},
        ChainCase{"UnrelatedChain",
                  {"root"},
                  {"attacker-leaf", "attacker-intermediate", "attacker-root"},
                  nullptr},
        ChainCase{"UnrelatedChainWithTheTrustedRoot",
                  {"root"},
                  {"attacker-leaf", "attacker-intermediate", "attacker-root", "root"},
                  nullptr},
        ChainCase{"ChainOfANamesakeRoot",
                  {"root"},
                  {"attacker-leaf", "attacker-intermediate", "attacker-root", "false-root"},
                  nullptr},
        ChainCase{"TheRootItself", {"root"}, {"root"}, "root"}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    TrustedIntermediate, TrustChain,
    testing::Values(
        ChainCase{"Leaf", {"intermediate"}, {"leaf"}, "leaf"},
        ChainCase{"LeafAndIntermediate", {"intermediate"}, {"leaf", "intermediate"}, "leaf"},
        ChainCase{
            "LeafIntermediateAndRoot", {"intermediate"}, {"leaf", "intermediate", "root"}, "leaf"},
        ChainCase{"UpperOfTwoLeafAndLower", {"intermediate"}, {"leaf-of-lower", "lower"}, "leaf"},
        ChainCase{"UpperOfTwoLeafAlone", {"intermediate"}, {"leaf-of-lower"}, nullptr},
        ChainCase{"LowerOfTwo", {"lower"}, {"leaf-of-lower"}, "leaf"},
        ChainCase{"NotOnTheWay", {"lower"}, {"leaf", "intermediate", "root"}, nullptr},
        ChainCase{"ForgedLeafNamingIt", {"intermediate"}, {"false-leaf"}, nullptr},
        ChainCase{
            "ForgedLeafWithItsKeyIdentifier", {"intermediate"}, {"false-leaf-with-id"}, nullptr},
        ChainCase{"ForgedLeafAndTheGenuineIntermediate",
                  {"intermediate"},
                  {"false-leaf", "intermediate", "root"},
                  nullptr},
        ChainCase{"ForgedLeafWithItsKeyIdentifierAndTheGenuineIntermediate",
                  {"intermediate"},
                  {"false-leaf-with-id", "intermediate", "root"},
                  nullptr},
        ChainCase{"ForgedLeafAndTheForgedIntermediate",
                  {"intermediate"},
                  {"false-leaf-with-id", "false-intermediate"},
                  nullptr},
        ChainCase{"ForgedLowerNamingIt",
                  {"intermediate"},
                  {"leaf-of-false-lower", "false-lower"},
                  nullptr},
        ChainCase{"ForgedLowerNamingItAndTheGenuineOnes",
                  {"intermediate"},
                  {"leaf-of-false-lower", "false-lower", "intermediate", "root"},
                  nullptr}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    TrustedSigner, TrustChain,
    testing::Values(
        ChainCase{"Leaf", {"leaf"}, {"leaf"}, "leaf"},
        ChainCase{"LeafAndIntermediate", {"leaf"}, {"leaf", "intermediate"}, "leaf"},
        ChainCase{"LeafIntermediateAndRoot", {"leaf"}, {"leaf", "intermediate", "root"}, "leaf"},
        ChainCase{"LeafAndAnUnrelatedCa", {"leaf"}, {"leaf", "attacker-root"}, "leaf"},
        ChainCase{"LeafAndExpiredIntermediate", {"leaf"}, {"leaf", "expired-intermediate"}, "leaf"},
        ChainCase{"TrustedTogetherWithItsExpiredIntermediate",
                  {"leaf", "expired-intermediate"},
                  {"leaf"},
                  "leaf"},
        ChainCase{"TrustedTogetherWithItsExpiredRoot",
                  {"expired-root", "leaf-of-root"},
                  {"leaf-of-root"},
                  "leaf"},
        ChainCase{"CloneWithAnotherKey", {"leaf"}, {"clone-of-leaf"}, nullptr},
        ChainCase{"CloneWithAnotherKeyIssuedByTheSameCa",
                  {"leaf"},
                  {"issued-clone-of-leaf", "intermediate", "root"},
                  nullptr},
        ChainCase{"OnlyThrownInBehindTheAttackersChain",
                  {"leaf"},
                  {"attacker-leaf", "attacker-intermediate", "attacker-root", "leaf"},
                  nullptr},
        ChainCase{"OnlyThrownInThoughACa",
                  {"self-signed-ca"},
                  {"attacker-leaf", "attacker-intermediate", "attacker-root", "self-signed-ca"},
                  nullptr},
        ChainCase{"SelfSigned", {"self-signed"}, {"self-signed"}, "leaf"},
        ChainCase{"SelfSignedCa", {"self-signed-ca"}, {"self-signed-ca"}, "leaf"},
        ChainCase{"SelfSignedOfVersion1", {"self-signed-v1"}, {"self-signed-v1"}, "leaf"},
        ChainCase{"SelfSignedExpired", {"self-signed-expired"}, {"self-signed-expired"}, nullptr},
        ChainCase{"SelfSignedNotYetValid", {"self-signed-future"}, {"self-signed-future"}, nullptr},
        ChainCase{"SelfSignedUntrusted", {"root"}, {"self-signed"}, nullptr},
        ChainCase{"SelfSignedUntrustedCa", {"root"}, {"self-signed-ca"}, nullptr},
        ChainCase{"SelfSignedNamesake", {"self-signed"}, {"false-self-signed"}, nullptr},
        ChainCase{"SelfSignedNamesakeWithTheTrustedOneBehind",
                  {"self-signed-ca"},
                  {"false-self-signed", "self-signed-ca"},
                  nullptr},
        ChainCase{"NamesakeOfTheRoot", {"root"}, {"false-root"}, nullptr},
        ChainCase{"NamesakeOfTheRootWithTheRootBehind", {"root"}, {"false-root", "root"}, nullptr},
        ChainCase{"ExpiredSelfSignedWithACurrentTrustedTwin",
                  {"self-signed"},
                  {"self-signed-expired"},
                  nullptr}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    ValidityPeriods, TrustChain,
    testing::Values(
        ChainCase{"ExpiredLeaf", {"root"}, {"expired-leaf", "intermediate"}, nullptr},
        ChainCase{"NotYetValidLeaf", {"root"}, {"future-leaf", "intermediate"}, nullptr},
        ChainCase{"ExpiredIntermediate", {"root"}, {"leaf", "expired-intermediate"}, nullptr},
        ChainCase{"NotYetValidIntermediate", {"root"}, {"leaf", "future-intermediate"}, nullptr},
        ChainCase{"ExpiredRoot", {"expired-root"}, {"leaf", "intermediate"}, nullptr},
        ChainCase{"ExpiredIntermediateBesideTheCurrentOne",
                  {"root"},
                  {"leaf", "expired-intermediate", "intermediate"},
                  "leaf"},
        ChainCase{"ExpiredTrustedIntermediate", {"expired-intermediate"}, {"leaf"}, nullptr},
        ChainCase{"ExpiredTrustedIntermediateSentToo",
                  {"expired-intermediate"},
                  {"leaf", "expired-intermediate"},
                  nullptr},
        ChainCase{"ExpiredTrustedIntermediateAndItsCurrentTwinSent",
                  {"expired-intermediate"},
                  {"leaf", "intermediate"},
                  nullptr},
        ChainCase{"ExpiredTrustedLeaf", {"expired-leaf"}, {"expired-leaf"}, nullptr},
        ChainCase{"NotYetValidTrustedLeaf",
                  {"future-leaf"},
                  {"future-leaf", "intermediate", "root"},
                  nullptr}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    AuthorityRules, TrustChain,
    testing::Values(
        ChainCase{"SoundAuthority", {"root"}, {"leaf-of-authority", "authority-sound"}, "leaf"},
        ChainCase{"NoCa", {"root"}, {"leaf-of-authority", "authority-no-ca"}, nullptr},
        ChainCase{"NoCertSign", {"root"}, {"leaf-of-authority", "authority-no-cert-sign"}, nullptr},
        ChainCase{"NoBasicConstraints",
                  {"root"},
                  {"leaf-of-authority", "authority-no-basic-constraints"},
                  nullptr},
        ChainCase{"SoundAuthorityTrusted", {"authority-sound"}, {"leaf-of-authority"}, "leaf"},
        ChainCase{"NoCaTrusted", {"authority-no-ca"}, {"leaf-of-authority"}, nullptr},
        ChainCase{"NoCaTrustedAndSent",
                  {"authority-no-ca"},
                  {"leaf-of-authority", "authority-no-ca"},
                  nullptr},
        ChainCase{"NoCertSignTrusted", {"authority-no-cert-sign"}, {"leaf-of-authority"}, nullptr},
        ChainCase{"NoBasicConstraintsTrusted",
                  {"authority-no-basic-constraints"},
                  {"leaf-of-authority"},
                  nullptr},
        ChainCase{
            "LeafAsAnAuthority", {"root"}, {"clone-of-leaf", "leaf", "intermediate"}, nullptr},
        ChainCase{"PathLengthKept", {"root"}, {"leaf-of-narrow", "narrow"}, "leaf"},
        ChainCase{
            "PathLengthBroken", {"root"}, {"leaf-below-narrow", "below-narrow", "narrow"}, nullptr},
        ChainCase{"PathLengthBrokenBelowATrustedIntermediate",
                  {"narrow"},
                  {"leaf-below-narrow", "below-narrow"},
                  nullptr},
        ChainCase{"TrustedBelowAPathLengthThatForbidsIt",
                  {"below-narrow"},
                  {"leaf-below-narrow", "below-narrow"},
                  "leaf"},
        ChainCase{"TrustedBelowAPathLengthThatForbidsItWithTheWholeChain",
                  {"below-narrow"},
                  {"leaf-below-narrow", "below-narrow", "narrow", "root"},
                  "leaf"}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    Namesakes, TrustChain,
    testing::Values(
        ChainCase{"LeafOfATrustedA", {"same-name-a"}, {"leaf-of-a"}, "leaf"},
        ChainCase{"LeafOfAAndBSent", {"same-name-a"}, {"leaf-of-a", "same-name-b"}, "leaf"},
        ChainCase{"LeafOfAWithoutIdentifierAndBSent",
                  {"same-name-a"},
                  {"leaf-of-a-without-id", "same-name-b"},
                  "leaf"},
        ChainCase{"LeafOfB", {"same-name-a"}, {"leaf-of-b"}, nullptr},
        ChainCase{"LeafOfBAndB", {"same-name-a"}, {"leaf-of-b", "same-name-b"}, nullptr},
        ChainCase{"LeafOfBWithoutIdentifier", {"same-name-a"}, {"leaf-of-b-without-id"}, nullptr},
        ChainCase{"LeafOfBWithoutIdentifierAndB",
                  {"same-name-a"},
                  {"leaf-of-b-without-id", "same-name-b"},
                  nullptr},
        // What is no CA is not kept. If it were, it would be taken for the issuer, since it comes
        // first and has the name and the key of the real one, and the chain would end there.
        ChainCase{"TwinOfTheIntermediateThatIsNoCaComesFirst",
                  {"root"},
                  {"leaf", "twin-of-intermediate-no-ca", "intermediate"},
                  "leaf"},
        ChainCase{"TwinOfTheIntermediateThatIsNoCaAlone",
                  {"root"},
                  {"leaf", "twin-of-intermediate-no-ca"},
                  nullptr}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    KeptCertificates, TrustChain,
    testing::Values(
        ChainCase{"BlanksInFrontAreSkipped",
                  {"root", "lower"},
                  {"!null", "!empty", "leaf", "!null", "!empty", "intermediate"},
                  "leaf"},
        ChainCase{
            "GarbageInBetweenIsSkipped", {"root"}, {"leaf", "!garbage", "intermediate"}, "leaf"},
        ChainCase{"SignerThatIsNoCaBehindGarbage", {"leaf", "root"}, {"!garbage", "leaf"}, nullptr},
        ChainCase{"SelfSignedSignerThatIsNoCaBehindGarbage",
                  {"self-signed", "root"},
                  {"!garbage", "self-signed"},
                  nullptr},
        ChainCase{"SignerThatIsACaBehindGarbage",
                  {"self-signed-ca", "root"},
                  {"!garbage", "self-signed-ca"},
                  "leaf"},
        ChainCase{"SignerOfVersion1BehindGarbage",
                  {"self-signed-v1", "root"},
                  {"!garbage", "self-signed-v1"},
                  "leaf"},
        ChainCase{"AuthorityBehindGarbageAndLeafBecomesTheSigner",
                  {"root", "lower"},
                  {"!garbage", "leaf", "intermediate"},
                  "intermediate"},
        ChainCase{
            "UntrustedAuthorityBehindGarbage", {"root"}, {"!garbage", "attacker-root"}, nullptr}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    NothingKept, TrustChain,
    testing::Values(
        ChainCase{"OneTrusted", {"root"}, {}, "root"},
        ChainCase{"OneTrustedExpired", {"expired-root"}, {}, "root"},
        ChainCase{"OneTrustedNotYetValid", {"future-leaf"}, {}, "leaf"},
        ChainCase{"OneTrustedBlanksSent", {"root"}, {"!null", "!empty"}, "root"},
        ChainCase{"OneTrustedGarbageSent", {"root"}, {"!garbage", "!garbage"}, "root"},
        ChainCase{"OneTrustedGarbageAndNoCaSent", {"root"}, {"!garbage", "attacker-leaf"}, nullptr},
        ChainCase{"OneTrustedSentBehindGarbageAndNoCa", {"leaf"}, {"!garbage", "leaf"}, nullptr},
        ChainCase{"TwoTrusted", {"root", "leaf"}, {}, nullptr},
        ChainCase{"OneTrustedTwice", {"root", "root"}, {}, nullptr}),
    NameOf);

TEST(TrustChainResolver, OffersTheKeyOfTheSingleTrustedWithoutKeyInfo) {
    X509TrustChainKeyResolver one(Ders({"root"}));
    EXPECT_EQ(KeysOf(one, nullptr), ExpectedKeys("root"));
    X509TrustChainKeyResolver two(Ders({"root", "leaf"}));
    EXPECT_EQ(KeysOf(two, nullptr), ExpectedKeys(nullptr));
}

TEST(TrustChainResolver, OffersTheKeyOfTheSingleTrustedForKeyInfoAboutSomethingElse) {
    X509TrustChainKeyResolver resolver(Ders({"root"}));
    const boost::intrusive_ptr<KeyInfo> keyInfo(new OtherKeyInfo);
    EXPECT_EQ(KeysOf(resolver, keyInfo.get()), ExpectedKeys("root"));
}

TEST(TrustChainResolver, AppendsNothingForAnEmptyListOfCertificates) {
    const X509TrustChainKeyResolver resolver(Ders({"root", "leaf"}));
    std::list<ByteBlob> keys;
    resolver.AppendKeys({}, keys);
    EXPECT_TRUE(keys.empty());
}

TEST(TrustChainResolver, KnowsASignerWithBytesBehindIt) {
    X509TrustChainKeyResolver resolver(Ders({"leaf", "root"}));
    Bytes longer = *CertificateNamed("leaf").der;
    longer.push_back('x');
    const boost::intrusive_ptr<KeyInfo> keyInfo(
        new X509KeyInfo("ds", {std::make_shared<const Bytes>(longer)}));
    EXPECT_EQ(KeysOf(resolver, keyInfo.get()), ExpectedKeys("leaf"));
}

TEST(TrustChainResolver, OffersAKeyOfAnotherTypeInItsOwnForm) {
    X509TrustChainKeyResolver resolver(Ders({"root", "lower"}));
    const boost::intrusive_ptr<KeyInfo> keyInfo(
        new X509KeyInfo("ds", Ders({"ec-leaf", "intermediate"})));
    EXPECT_EQ(KeysOf(resolver, keyInfo.get()),
              Keys{*ExtractCertPubKey(CertificateNamed("ec-leaf").der)});
}

TEST(TrustChainResolver, CannotOfferAKeyWithoutAFormOfItsOwn) {
    X509TrustChainKeyResolver resolver(Ders({"ed25519-self-signed"}));
    const boost::intrusive_ptr<KeyInfo> keyInfo(
        new X509KeyInfo("ds", Ders({"ed25519-self-signed"})));
    std::list<ByteBlob> keys{ToBlob("stale")};
    EXPECT_EQ(MessageOf<CryptoException>([&] { resolver.Resolve(keyInfo.get(), keys); }),
              "Crypto Exception: Invalid or unsupported public key");
    EXPECT_TRUE(keys.empty());
}

TEST(TrustChainResolver, CannotOfferAKeyThatCannotBeDecoded) {
    ForgedCertificate form;
    form.keyBits = "garbage";
    X509TrustChainKeyResolver resolver({form.Der()});
    std::list<ByteBlob> keys{ToBlob("stale")};
    EXPECT_EQ(MessageOf<InvalidArgumentException>([&] { resolver.Resolve(nullptr, keys); }),
              "Invalid x509 certificate");
    EXPECT_TRUE(keys.empty());
}

TEST(TrustChainResolver, EndsAmongThousandsOfAuthoritiesOfTheSameName) {
    X509TrustChainKeyResolver resolver(Ders({"root"}));
    ForgedCertificate form;
    form.keyBits =
        std::string(KeyNamed("attacker").publicKey->begin(), KeyNamed("attacker").publicKey->end());
    form.isAuthority = true;
    form.issuer = "Intermediate";
    form.subject = "Intermediate";
    std::list<ByteBlob> forged;
    for (form.serial = 1; form.serial <= 2000; ++form.serial)
        forged.push_back(form.Der());

    std::list<ByteBlob> genuineFirst = Ders({"leaf", "intermediate"});
    genuineFirst.insert(genuineFirst.end(), forged.begin(), forged.end());
    std::list<ByteBlob> forgedOnly = Ders({"leaf"});
    forgedOnly.insert(forgedOnly.end(), forged.begin(), forged.end());
    const boost::intrusive_ptr<KeyInfo> sound(new X509KeyInfo("ds", genuineFirst));
    const boost::intrusive_ptr<KeyInfo> hostile(new X509KeyInfo("ds", forgedOnly));
    EXPECT_EQ(KeysOf(resolver, sound.get()), ExpectedKeys("leaf"));
    EXPECT_EQ(KeysOf(resolver, hostile.get()), ExpectedKeys(nullptr));
}

TEST(TrustChainResolver, EndsOnChainsLongerThanAnyPath) {
    X509TrustChainKeyResolver resolver(Ders({"root"}));
    ForgedCertificate form;
    form.keyBits =
        std::string(KeyNamed("attacker").publicKey->begin(), KeyNamed("attacker").publicKey->end());
    form.isAuthority = true;
    std::list<ByteBlob> sent;
    for (int depth = 0; depth < 500; ++depth) {
        form.subject = "Authority " + std::to_string(depth);
        form.issuer = "Authority " + std::to_string(depth + 1);
        sent.push_back(form.Der());
    }
    const boost::intrusive_ptr<KeyInfo> keyInfo(new X509KeyInfo("ds", sent));
    EXPECT_EQ(KeysOf(resolver, keyInfo.get()), ExpectedKeys(nullptr));
}

TEST(TrustChainResolver, ServesSeveralThreadsAtOnce) {
    boost::intrusive_ptr<KeyInfoResolver> resolver;
    CreateTrustChainKeyResolver(Ders({"root", "self-signed"}), resolver);
    const std::list<ByteBlob> chains[] = {Ders({"leaf", "intermediate"}), Ders({"self-signed"}),
                                          Ders({"attacker-leaf", "attacker-intermediate"}),
                                          Ders({"leaf-of-lower", "lower", "intermediate"})};
    const Keys leafKey = ExpectedKeys("leaf");
    const Keys expected[] = {leafKey, leafKey, Keys{}, leafKey};

    std::atomic<int> surprises{0};
    std::vector<std::thread> threads;
    for (std::size_t first = 0; first < 4; ++first)
        threads.emplace_back([&, first] {
            for (std::size_t i = first; i < first + 20; ++i) {
                const boost::intrusive_ptr<KeyInfo> keyInfo(new X509KeyInfo("ds", chains[i % 4]));
                if (KeysOf(*resolver, keyInfo.get()) != expected[i % 4]) ++surprises;
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(surprises, 0);
}

TEST(CreateTrustChainKeyResolver, ReplacesTheResult) {
    boost::intrusive_ptr<KeyInfoResolver> resolver;
    CreateTrustChainKeyResolver(Ders({"root"}), resolver);
    EXPECT_EQ(KeysOf(*resolver, nullptr), ExpectedKeys("root"));
    CreateTrustChainKeyResolver(Ders({"leaf"}), resolver);
    EXPECT_EQ(KeysOf(*resolver, nullptr), ExpectedKeys("leaf"));
    EXPECT_NE(dynamic_cast<X509TrustChainKeyResolver*>(resolver.get()), nullptr);
}

TEST(CreateTrustChainKeyResolver, RefusesListsWithoutUseAndLeavesTheResult) {
    boost::intrusive_ptr<KeyInfoResolver> resolver;
    CreateTrustChainKeyResolver(Ders({"root"}), resolver);
    const boost::intrusive_ptr<KeyInfoResolver> before = resolver;
    EXPECT_EQ(
        MessageOf<InvalidArgumentException>([&] { CreateTrustChainKeyResolver({}, resolver); }),
        "No trusted certificates provided");
    EXPECT_EQ(MessageOf<InvalidArgumentException>([&] {
                  CreateTrustChainKeyResolver(Ders({"root", "!garbage"}), resolver);
              }),
              "Invalid X.509 Certificate");
    EXPECT_EQ(MessageOf<InvalidArgumentException>(
                  [&] { CreateTrustChainKeyResolver(Ders({"!null"}), resolver); }),
              "Invalid X.509 Certificate");
    EXPECT_EQ(resolver, before);
}

}  // namespace
}  // namespace Saml::Xml::Security
