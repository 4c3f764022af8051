#include "saml/security/trust_set_resolver.h"

#include "saml/security/x509_key_info.h"
#include "support/forged_certificate.h"
#include "support/resolving.h"
#include "support/test_keys.h"
#include "support/thrown.h"

#include <gtest/gtest.h>

#include <list>
#include <memory>
#include <string>
#include <vector>

namespace Saml::Xml::Security {
namespace {

using Bytes = std::vector<unsigned char>;
using Names = std::vector<const char*>;
using TestKeys::CertificateNamed;
using TestKeys::ForgedCertificate;
using TestKeys::KeyNamed;
using TestKeys::ToBlob;

/// `offered` is the name of the key; null for none.
struct SetCase {
    const char* name;
    Names trusted;
    Names sent;
    const char* offered;
};
void PrintTo(const SetCase& row, std::ostream* out) {
    *out << row.name;
}

class TrustSet : public testing::TestWithParam<SetCase> {};

TEST_P(TrustSet, OffersTheKeyOfATrustedSignerOnly) {
    X509TrustSetKeyResolver resolver(Ders(GetParam().trusted));
    const boost::intrusive_ptr<KeyInfo> keyInfo(new X509KeyInfo("ds", Ders(GetParam().sent)));
    EXPECT_EQ(KeysOf(resolver, keyInfo.get()), ExpectedKeys(GetParam().offered));
}

INSTANTIATE_TEST_SUITE_P(
    SignerSent, TrustSet,
    testing::Values(
        SetCase{"TheTrustedOne", {"leaf"}, {"leaf"}, "leaf"},
        SetCase{"OneOfTheTrusted", {"root", "leaf"}, {"leaf"}, "leaf"},
        SetCase{"TheSameTrustedTwice", {"leaf", "leaf"}, {"leaf"}, "leaf"},
        SetCase{"WithItsIssuers", {"leaf"}, {"leaf", "intermediate", "root"}, "leaf"},
        SetCase{"SelfSigned", {"self-signed"}, {"self-signed"}, "leaf"},
        SetCase{"IssuedByATrustedCa", {"intermediate"}, {"leaf"}, nullptr},
        SetCase{"IssuedByATrustedCaWithTheCa",
                {"intermediate", "root"},
                {"leaf", "intermediate", "root"},
                nullptr},
        SetCase{"SecondBehindAnUntrusted", {"leaf"}, {"attacker-leaf", "leaf"}, nullptr},
        SetCase{"ExpiredTrusted", {"expired-leaf"}, {"expired-leaf"}, nullptr},
        SetCase{"NotYetValidTrusted", {"future-leaf"}, {"future-leaf"}, nullptr},
        SetCase{"AnotherPeriodOfATrusted", {"leaf"}, {"expired-leaf"}, nullptr},
        SetCase{"CloneWithAnotherKey", {"leaf"}, {"clone-of-leaf"}, nullptr},
        SetCase{"NamesakeOfASelfSigned", {"self-signed"}, {"false-self-signed"}, nullptr},
        SetCase{"ExpiredAmongCurrent", {"root", "expired-leaf"}, {"expired-leaf"}, nullptr}),
    [](const auto& row) { return std::string(row.param.name); });

INSTANTIATE_TEST_SUITE_P(
    NothingUsableInFront, TrustSet,
    testing::Values(
        SetCase{"GarbageThenTheSigner", {"leaf", "root"}, {"!garbage", "leaf"}, "leaf"},
        SetCase{"EmptyThenTheSigner", {"leaf", "root"}, {"!empty", "leaf"}, "leaf"},
        SetCase{"NullThenTheSigner", {"leaf", "root"}, {"!null", "leaf"}, "leaf"},
        SetCase{"GarbageThenAnUntrusted", {"leaf"}, {"!garbage", "attacker-leaf"}, nullptr}),
    [](const auto& row) { return std::string(row.param.name); });

INSTANTIATE_TEST_SUITE_P(
    NoSignerSent, TrustSet,
    testing::Values(SetCase{"OneTrusted", {"root"}, {}, "root"},
                    SetCase{"OneTrustedAndGarbageSent", {"root"}, {"!garbage", "!empty"}, "root"},
                    SetCase{"OneTrustedButExpired", {"expired-root"}, {}, nullptr},
                    SetCase{"OneTrustedButNotYetValid", {"future-leaf"}, {}, nullptr},
                    SetCase{"TwoTrusted", {"root", "leaf"}, {}, nullptr},
                    SetCase{"OneTrustedTwice", {"root", "root"}, {}, nullptr}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(TrustSetResolver, KnowsASignerWithBytesBehindIt) {
    X509TrustSetKeyResolver resolver(Ders({"leaf", "root"}));
    Bytes longer = *CertificateNamed("leaf").der;
    longer.push_back('x');
    const boost::intrusive_ptr<KeyInfo> keyInfo(
        new X509KeyInfo("ds", {std::make_shared<const Bytes>(longer)}));
    EXPECT_EQ(KeysOf(resolver, keyInfo.get()), ExpectedKeys("leaf"));
}

TEST(TrustSetResolver, TakesAnUnreadableValidityPeriodForCurrent) {
    ForgedCertificate form;
    form.keyBits = std::string("\x30\x07\x02\x02\x03\x03\x02\x01\x03", 9);
    form.notBefore = "not any time!";
    form.notAfter = "not any time!";
    X509TrustSetKeyResolver resolver({form.Der()});
    const boost::intrusive_ptr<KeyInfo> keyInfo(new X509KeyInfo("ds", {form.Der()}));
    EXPECT_EQ(KeysOf(resolver, keyInfo.get()), Keys{*ToBlob(form.keyBits)});
}

TEST(TrustSetResolver, OffersTheKeyOfTheSingleTrustedWithoutKeyInfo) {
    X509TrustSetKeyResolver one(Ders({"root"}));
    EXPECT_EQ(KeysOf(one, nullptr), ExpectedKeys("root"));
    X509TrustSetKeyResolver two(Ders({"root", "leaf"}));
    EXPECT_EQ(KeysOf(two, nullptr), ExpectedKeys(nullptr));
}

TEST(TrustSetResolver, OffersTheKeyOfTheSingleTrustedForKeyInfoAboutSomethingElse) {
    X509TrustSetKeyResolver resolver(Ders({"root"}));
    const boost::intrusive_ptr<KeyInfo> keyInfo(new OtherKeyInfo);
    EXPECT_EQ(KeysOf(resolver, keyInfo.get()), ExpectedKeys("root"));
}

TEST(TrustSetResolver, CannotOfferAKeyThatCannotBeDecoded) {
    ForgedCertificate form;
    form.keyBits = "garbage";
    X509TrustSetKeyResolver resolver({form.Der()});
    for (const boost::intrusive_ptr<KeyInfo>& keyInfo :
         {boost::intrusive_ptr<KeyInfo>(),
          boost::intrusive_ptr<KeyInfo>(new X509KeyInfo("ds", {form.Der()}))}) {
        std::list<ByteBlob> keys{ToBlob("stale")};
        EXPECT_EQ(
            MessageOf<InvalidArgumentException>([&] { resolver.Resolve(keyInfo.get(), keys); }),
            "Invalid x509 certificate");
        EXPECT_TRUE(keys.empty());
    }
}

TEST(CreateTrustSetKeyResolver, ReplacesTheResult) {
    boost::intrusive_ptr<KeyInfoResolver> resolver;
    CreateTrustSetKeyResolver(Ders({"root"}), resolver);
    EXPECT_EQ(KeysOf(*resolver, nullptr), ExpectedKeys("root"));
    CreateTrustSetKeyResolver(Ders({"leaf"}), resolver);
    EXPECT_EQ(KeysOf(*resolver, nullptr), ExpectedKeys("leaf"));
    EXPECT_NE(dynamic_cast<X509TrustSetKeyResolver*>(resolver.get()), nullptr);
}

TEST(CreateTrustSetKeyResolver, RefusesListsWithoutUseAndLeavesTheResult) {
    boost::intrusive_ptr<KeyInfoResolver> resolver;
    CreateTrustSetKeyResolver(Ders({"root"}), resolver);
    const boost::intrusive_ptr<KeyInfoResolver> before = resolver;
    EXPECT_EQ(MessageOf<InvalidArgumentException>([&] { CreateTrustSetKeyResolver({}, resolver); }),
              "No trusted certificates provided");
    EXPECT_EQ(MessageOf<InvalidArgumentException>([&] {
                  CreateTrustSetKeyResolver(Ders({"root", "!garbage"}), resolver);
              }),
              "Invalid X.509 Certificate");
    EXPECT_EQ(MessageOf<InvalidArgumentException>(
                  [&] { CreateTrustSetKeyResolver(Ders({"!null"}), resolver); }),
              "Invalid X.509 Certificate");
    EXPECT_EQ(resolver, before);
}

}  // namespace
}  // namespace Saml::Xml::Security
