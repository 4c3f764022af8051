#include "oracle/signatures/matrix_tokens.h"
#include "oracle/signatures/signed_parts.h"
#include "oracle/signatures/spoiled_tokens.h"
#include "oracle/signatures/xmlsec1.h"
#include "saml/security.h"
#include "support/system_policy.h"
#include "support/test_keys.h"
#include "support/token_forge.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

// What the library signs, xmlsec1 verifies, and the library itself.
namespace SignatureMatrix {
namespace {

using namespace Saml;
namespace Algorithm = Xml::Security::Algorithm;
using TestKeys::CertificateNamed;

Forge::Signer Signer() {
    return {CertificateNamed("leaf").key->privateKey,
            {CertificateNamed("leaf").der, CertificateNamed("intermediate").der}};
}

class OurSignatures : public testing::TestWithParam<std::tuple<Method, KeySize>> {};

TEST_P(OurSignatures, AreVerifiedByXmlSec1AndRefusedWhenSpoiled) {
    const auto& [method, size] = GetParam();
    if (method.identifier == std::string(Algorithm::RsaSha1))
        SKIP_WHERE_SHA1_SIGNATURES_ARE_REFUSED();
    SpoilingTrial trial(20080610, SpoilingTrial::Witness::XmlSec1);
    for (const Cell& cell : CellsForXmlSec1(method, size)) {
        SCOPED_TRACE(cell.Name());
        const std::string xml = SignedByUs(cell);
        EXPECT_TRUE(XmlSec1::Verifies(xml)) << xml;
        EXPECT_FALSE(XmlSec1::Verifies(Forge::Replaced(xml, ">jdoe@corp<", ">root@corp<")));
        ExpectWhatWasSaid(*TokenFrom(xml, cell.style, ChainBelowRoot()), cell.kind);
        trial.SpoilAndJudge(xml, cell);
    }
    trial.ExpectUsefulCounts();
}

INSTANTIATE_TEST_SUITE_P(Oracle, OurSignatures,
                         testing::Combine(testing::ValuesIn(kMethods),
                                          testing::ValuesIn(kKeySizes)),
                         [](const auto& row) {
                             return std::string(std::get<0>(row.param).name) + "With" +
                                    std::get<1>(row.param).name;
                         });

class OurSignaturesWithFurtherNamesOfSha384 : public testing::TestWithParam<KeySize> {};

// xmlsec1 knows neither name, so that it says nothing about such a token. In its place libxml2 and
// OpenSSL make the digest.
TEST_P(OurSignaturesWithFurtherNamesOfSha384, AreReadByOurselvesAndRefusedWhenSpoiled) {
    SKIP_WHERE_SHA1_SIGNATURES_ARE_REFUSED();  // which are among those of every method
    SpoilingTrial trial(20130411, SpoilingTrial::Witness::None);
    for (const Method& method : kMethods) {
        for (const Cell& cell : CellsForOurselves(method, GetParam())) {
            SCOPED_TRACE(cell.Name());
            const std::string xml = SignedByUs(cell);
            EXPECT_NE(xml.find("DigestValue>" + DigestValueOf(xml, cell) + "<"), std::string::npos)
                << xml;
            ExpectWhatWasSaid(*TokenFrom(xml, cell.style, ChainBelowRoot()), cell.kind);
            trial.SpoilAndJudge(xml, cell);
        }
    }
    trial.ExpectUsefulCounts();
}

INSTANTIATE_TEST_SUITE_P(Oracle, OurSignaturesWithFurtherNamesOfSha384,
                         testing::ValuesIn(kKeySizes),
                         [](const auto& row) { return std::string(row.param.name); });

// A document that is no token, signed by the exported building blocks alone.
TEST(OurSignature, CoversADocumentOfAnyKind) {
    const auto document = Forge::Parse(
        "<order xmlns=\"urn:example:order\" xmlns:x=\"urn:example:extra\">"
        "<x:item b=\"2\" a=\"1 &lt; 2\">five &amp; six</x:item><!-- not signed --></order>");
    Xml::ElementNode* const root = document->GetRootElement();
    boost::intrusive_ptr<Xml::Security::Signature> signature;
    Xml::Security::CreateBlankSignature(root, Algorithm::ExclusiveC14N, Algorithm::RsaSha256,
                                        "dsig", signature);
    root->AppendChild(signature->GetElement());
    boost::intrusive_ptr<Xml::Security::SignatureReference> reference;
    signature->AddReference("", Algorithm::Sha256, reference);
    reference->AddEnvelopedSignatureTransform();
    reference->SetCanonicalizationMethod(Algorithm::ExclusiveC14N);
    signature->SetKeyInfo(Signer().certificates);
    signature->Sign(Signer().privateKey);

    StringWriter out;
    root->Write(out);
    EXPECT_TRUE(XmlSec1::Verifies(out.data));
    EXPECT_FALSE(XmlSec1::Verifies(Forge::Replaced(out.data, ">five ", ">nine ")));
}

}  // namespace
}  // namespace SignatureMatrix
