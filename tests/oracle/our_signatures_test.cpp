#include "oracle/xmlsec1.h"
#include "saml/security.h"
#include "support/test_keys.h"
#include "support/token_forge.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

// What the library signs, xmlsec1 verifies.
namespace Saml {
namespace {

namespace Algorithm = Xml::Security::Algorithm;
using TestKeys::CertificateNamed;

Forge::Signer Signer() {
    return {CertificateNamed("leaf").key->privateKey,
            {CertificateNamed("leaf").der, CertificateNamed("intermediate").der}};
}

struct Method {
    const char* name;
    const char* signature;
    const char* digest;
};
constexpr Method kMethods[] = {{"RsaSha1", Algorithm::RsaSha1, Algorithm::Sha1},
                               {"RsaSha256", Algorithm::RsaSha256, Algorithm::Sha256},
                               {"RsaSha384", Algorithm::RsaSha384, Algorithm::Sha384Rfc4051},
                               {"RsaSha512", Algorithm::RsaSha512, Algorithm::Sha512}};

struct Style {
    const char* name;
    const char* samlPrefix;
    const char* dsigPrefix;
};
constexpr Style kStyles[] = {{"DefaultDeclarations", "", ""}, {"UsualPrefixes", "saml2", "ds"}};

class OurSignatures : public testing::TestWithParam<std::tuple<Method, Style>> {};

TEST_P(OurSignatures, AreVerifiedByXmlSec1AndRefusedByItWhenAltered) {
    const Method& method = std::get<0>(GetParam());
    const Style& style = std::get<1>(GetParam());
    Forge::TokenSpec spec;
    spec.prefix = style.samlPrefix;
    spec.attributes = {{ProfileUri::GroupIdentity, {"corp\\Staff", "corp\\&lt;&#xE9;&gt; &#x9;."}}};
    for (const std::string& uri : {"#" + spec.id, std::string()}) {
        SCOPED_TRACE("URI '" + uri + "'");
        Forge::SignatureSpec choices;
        choices.uri = uri;
        choices.signatureMethod = method.signature;
        choices.digestMethod = method.digest;
        choices.prefix = style.dsigPrefix;
        const std::string xml = Forge::Sign(Forge::Write(spec), Signer(), choices);
        EXPECT_TRUE(XmlSec1::Verifies(xml));
        EXPECT_FALSE(XmlSec1::Verifies(Forge::Replaced(xml, ">jdoe@corp<", ">root@corp<")));
    }
}

INSTANTIATE_TEST_SUITE_P(Oracle, OurSignatures,
                         testing::Combine(testing::ValuesIn(kMethods), testing::ValuesIn(kStyles)),
                         [](const auto& row) {
                             return std::string(std::get<0>(row.param).name) +
                                    std::get<1>(row.param).name;
                         });

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
}  // namespace Saml
