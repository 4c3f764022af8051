#include "saml/security/trusted_certificates.h"

#include "saml/foundations.h"
#include "saml/security/certificate_codec.h"
#include "support/forged_certificate.h"
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
using TestKeys::CertificateNamed;
using TestKeys::ForgedCertificate;
using TestKeys::KeyNamed;
using TestKeys::ToBlob;

TEST(TrustedCertificates, MustBeSome) {
    EXPECT_EQ(MessageOf<InvalidArgumentException>([] { TrustedCertificates trusted({}); }),
              "No trusted certificates provided");
}

TEST(TrustedCertificates, MustAllBeCertificates) {
    for (const ByteBlob& der :
         {ByteBlob(), ToBlob(""), ToBlob("garbage"), ToBlob(CertificateNamed("root").pem)})
        EXPECT_EQ(MessageOf<InvalidArgumentException>([&der] {
                      TrustedCertificates trusted({CertificateNamed("root").der, der});
                  }),
                  "Invalid X.509 Certificate");
}

TEST(TrustedCertificates, StandInForASentOneWithTheSameBytes) {
    const TrustedCertificates trusted({CertificateNamed("root").der, CertificateNamed("leaf").der});
    const auto standIn = [&trusted](const char* name) {
        return trusted.ParseSent(std::make_shared<const Bytes>(*CertificateNamed(name).der));
    };
    ASSERT_EQ(trusted.end() - trusted.begin(), 2);
    EXPECT_EQ(standIn("root").get(), trusted.begin()->get());
    EXPECT_EQ(standIn("leaf").get(), (trusted.begin() + 1)->get());
}

TEST(TrustedCertificates, LeaveASentOneWithOtherBytesToTheParser) {
    const TrustedCertificates trusted({CertificateNamed("root").der});
    const CertificateHandle sent = trusted.ParseSent(CertificateNamed("leaf").der);
    ASSERT_NE(sent, nullptr);
    EXPECT_EQ(*EncodeCertificate(*sent), *CertificateNamed("leaf").der);
    EXPECT_EQ(trusted.ParseSent(ToBlob("garbage")), nullptr);
}

TEST(TrustedCertificates, ContainAnEqualOne) {
    const TrustedCertificates trusted(
        {CertificateNamed("root").der, CertificateNamed("self-signed").der});
    EXPECT_TRUE(trusted.Contain(*ParseCertificateDer(CertificateNamed("root").der)));
    EXPECT_TRUE(trusted.Contain(*ParseCertificateDer(CertificateNamed("self-signed").der)));
    EXPECT_FALSE(trusted.Contain(*ParseCertificateDer(CertificateNamed("false-self-signed").der)));
    EXPECT_FALSE(trusted.Contain(*ParseCertificateDer(CertificateNamed("expired-root").der)));
}

TEST(TrustedCertificates, HaveASingleOneOnlyWhenOneWasGiven) {
    const TrustedCertificates one({CertificateNamed("root").der});
    EXPECT_EQ(one.Single(), one.begin()->get());
    const TrustedCertificates twice({CertificateNamed("root").der, CertificateNamed("root").der});
    EXPECT_EQ(twice.Single(), nullptr);
}

struct PeriodCase {
    const char* name;
    const char* notBefore;
    const char* notAfter;
    bool isCurrent;
};
void PrintTo(const PeriodCase& row, std::ostream* out) {
    *out << row.name;
}

class Currency : public testing::TestWithParam<PeriodCase> {};

/// OpenSSL 3.5 reads no certificate with a time of fewer characters than UTCTime has in DER (X.690
/// section 11.8); 3.0 and 1.1.1 read it and find no time in it.
bool IsReadByOpenSsl(const std::string& time) {
    return OPENSSL_VERSION_NUMBER < 0x30500000L || time.size() >= 13;
}

TEST_P(Currency, IsJudgedByBothEndsOfThePeriod) {
    ForgedCertificate form;
    form.keyBits = "no matter";
    form.notBefore = GetParam().notBefore;
    form.notAfter = GetParam().notAfter;
    if (IsReadByOpenSsl(form.notBefore) && IsReadByOpenSsl(form.notAfter))
        EXPECT_EQ(IsCurrent(*ParseCertificateDer(form.Der())), GetParam().isCurrent);
    else
        EXPECT_EQ(MessageOf<InvalidArgumentException>([&] { ParseCertificateDer(form.Der()); }),
                  "Invalid X.509 Certificate");
}

INSTANTIATE_TEST_SUITE_P(
    Certificate, Currency,
    testing::Values(PeriodCase{"Current", "200101000000Z", "491231235959Z", true},
                    PeriodCase{"Expired", "100101000000Z", "110101000000Z", false},
                    PeriodCase{"NotYetValid", "480101000000Z", "491231235959Z", false},
                    PeriodCase{"EndBeforeBeginning", "491231235959Z", "100101000000Z", false},
                    PeriodCase{"UnreadableBeginning", "209901000000Z", "491231235959Z", true},
                    PeriodCase{"UnreadableEnd", "200101000000Z", "499901000000Z", true},
                    PeriodCase{"UnreadableBoth", "not any time!", "not any time!", true},
                    PeriodCase{"TooShortBoth", "garbage", "", true},
                    PeriodCase{"EndWithoutSeconds", "200101000000Z", "1101010000Z", true},
                    PeriodCase{"EndInAnotherZone", "200101000000Z", "110101000000+0100", true},
                    PeriodCase{"UnreadableBeginningExpired", "209901000000Z", "110101000000Z",
                               false},
                    PeriodCase{"UnreadableEndNotYetValid", "480101000000Z", "garbage", false}),
    [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace Saml::Xml::Security
