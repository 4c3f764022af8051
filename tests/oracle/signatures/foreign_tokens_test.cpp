#include "oracle/signatures/matrix_tokens.h"
#include "oracle/signatures/spoiled_tokens.h"
#include "oracle/signatures/xmlsec1.h"
#include "saml/token.h"
#include "support/system_policy.h"
#include "support/test_keys.h"
#include "support/thrown.h"
#include "support/token_forge.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

// Tokens that xmlsec1 signed, through both resolvers.
namespace SignatureMatrix {
namespace {

using namespace Saml;
namespace Algorithm = Xml::Security::Algorithm;
using TestKeys::CertificateNamed;

std::string TamperedWith(const std::string& xml) {
    return Forge::Replaced(xml, ">jdoe@corp<", ">root@corp<");
}

class TokensOfXmlSec1 : public testing::TestWithParam<std::tuple<Method, KeySize>> {};

TEST_P(TokensOfXmlSec1, AreAcceptedByBothResolversAndRefusedWhenSpoiled) {
    const auto& [method, size] = GetParam();
    if (method.identifier == std::string(Algorithm::RsaSha1))
        SKIP_WHERE_SHA1_SIGNATURES_ARE_REFUSED();
    const ResolverHandle resolvers[] = {ChainBelowRoot(), SetOf(size.signer)};
    SpoilingTrial trial(20011001, SpoilingTrial::Witness::XmlSec1);
    for (const Cell& cell : CellsForXmlSec1(method, size)) {
        SCOPED_TRACE(cell.Name());
        const std::string xml = SignedByXmlSec1(cell);
        for (const ResolverHandle& resolver : resolvers) {
            ExpectWhatWasSaid(*TokenFrom(xml, cell.style, resolver), cell.kind);
            EXPECT_EQ(MessageOf<InvalidSignatureException>(
                          [&] { TokenFrom(TamperedWith(xml), cell.style, resolver); }),
                      "Failed to verify signature: token might have been tampered with.");
        }
        EXPECT_EQ(MessageOf<InvalidSignatureException>(
                      [&] { TokenFrom(xml, cell.style, SetOf("attacker-leaf")); }),
                  "Signature verification error. No verification key available.");
        trial.SpoilAndJudge(xml, cell);
    }
    trial.ExpectUsefulCounts();
}

INSTANTIATE_TEST_SUITE_P(Oracle, TokensOfXmlSec1,
                         testing::Combine(testing::ValuesIn(kMethods),
                                          testing::ValuesIn(kKeySizes)),
                         [](const auto& row) {
                             return std::string(std::get<0>(row.param).name) + "With" +
                                    std::get<1>(row.param).name;
                         });

/// The template of a signature with the usual choices over the whole assertion.
XmlSec1::TemplateForm UsualForm(const Forge::TokenSpec& spec) {
    XmlSec1::TemplateForm form;
    form.uri = "#" + spec.id;
    form.signatureMethod = Algorithm::RsaSha256;
    form.digestMethod = Algorithm::Sha256;
    return form;
}

std::string Signed(Forge::TokenSpec spec, const XmlSec1::TemplateForm& form) {
    spec.signature = XmlSec1::Template(form);
    return XmlSec1::Sign(Forge::Write(spec));
}

TEST(TokenOfXmlSec1, NeedsNoKeyInfoWhenItsSignerAloneIsTrusted) {
    Forge::TokenSpec spec;
    XmlSec1::TemplateForm form = UsualForm(spec);
    form.hasKeyInfo = false;
    const std::string xml = Signed(spec, form);

    ResolverHandle chain;
    Xml::Security::CreateTrustChainKeyResolver({CertificateNamed("leaf").der}, chain);
    EXPECT_EQ(CreateSamlToken(xml, chain.get())->GetId(), spec.id);
    EXPECT_EQ(CreateSamlToken(xml, SetOf("leaf").get())->GetId(), spec.id);
}

// The list names prefixes that the apex declares: there both readings of it agree.
TEST(TokenOfXmlSec1, MayNamePrefixesThatItDoesNotUse) {
    Forge::TokenSpec spec;
    spec.renewRestriction = true;
    spec.renewCount = "1";
    XmlSec1::TemplateForm form = UsualForm(spec);
    form.prefixList = "ext xsi del";
    const std::string xml = Signed(spec, form);

    EXPECT_TRUE(CreateSamlToken(xml, ChainBelowRoot().get())->IsRenewable());
}

// Exclusive C14N 3 lets a listed prefix count at every element, the library at the apex only. So a
// declaration further inside that no name makes use of is signed for xmlsec1 and not for us.
TEST(TokenOfXmlSec1, ProtectsListedPrefixesAtItsApexOnly) {
    Forge::TokenSpec spec;
    XmlSec1::TemplateForm form = UsualForm(spec);
    form.prefixList = "ext";
    const std::string xml = Signed(spec, form);

    const std::string inside =
        Forge::Replaced(xml, "<saml:AuthnContext>", "<saml:AuthnContext xmlns:ext=\"urn:other\">");
    EXPECT_EQ(CreateSamlToken(inside, ChainBelowRoot().get())->GetId(), spec.id);
    EXPECT_FALSE(XmlSec1::Verifies(inside));

    const std::string atTheApex = Forge::Replaced(xml, " xmlns:ext=\"", " xmlns:ext=\"urn:other:");
    EXPECT_EQ(MessageOf<InvalidSignatureException>(
                  [&] { CreateSamlToken(atTheApex, ChainBelowRoot().get()); }),
              "Failed to verify signature: token might have been tampered with.");
    EXPECT_FALSE(XmlSec1::Verifies(atTheApex));
}

TEST(TokenOfXmlSec1, IsRefusedWhenItIsOver) {
    Forge::TokenSpec spec;
    spec.notBefore = "2020-01-01T00:00:00.000Z";
    spec.notOnOrAfter = "2020-01-01T08:00:00.000Z";
    const std::string xml = Signed(spec, UsualForm(spec));

    EXPECT_EQ(MessageOf<ParseException>([&] { CreateSamlToken(xml, ChainBelowRoot().get()); }),
              "The token has expired at: 2020-01-01T08:00:00.000Z");
}

}  // namespace
}  // namespace SignatureMatrix
