#include "oracle/xmlsec1.h"
#include "saml/token.h"
#include "support/test_keys.h"
#include "support/thrown.h"
#include "support/token_forge.h"

#include <gtest/gtest.h>

#include <list>
#include <set>
#include <string>
#include <tuple>
#include <vector>

// Tokens that xmlsec1 signed, through both resolvers.
namespace Saml {
namespace {

namespace Algorithm = Xml::Security::Algorithm;
using TestKeys::CertificateNamed;
using Xml::Security::KeyInfoResolver;

using ResolverHandle = boost::intrusive_ptr<KeyInfoResolver>;

ResolverHandle ChainBelowRoot() {
    ResolverHandle resolver;
    Xml::Security::CreateTrustChainKeyResolver({CertificateNamed("root").der}, resolver);
    return resolver;
}

ResolverHandle SetOf(const std::string& certificate) {
    ResolverHandle resolver;
    Xml::Security::CreateTrustSetKeyResolver({CertificateNamed(certificate).der}, resolver);
    return resolver;
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
    bool declaredAbove;  ///< By an element around the assertion.
};
constexpr Style kStyles[] = {{"DefaultDeclarations", "", "", false},
                             {"UsualPrefixes", "saml2", "ds", false},
                             {"DeclaredByAnAncestor", "saml2", "ds", true}};

struct Kind {
    const char* name;
    bool holderOfKey;
    bool delegated;
};
constexpr Kind kKinds[] = {{"Bearer", false, false},
                           {"DelegatedBearer", false, true},
                           {"HolderOfKey", true, false},
                           {"DelegatedHolderOfKey", true, true}};

Forge::TokenSpec SpecOf(const Style& style, const Kind& kind) {
    Forge::TokenSpec spec;
    spec.prefix = style.samlPrefix;
    if (kind.holderOfKey)
        spec.holderOfKeyCertificate = Base64::Encode(*CertificateNamed("self-signed").der);
    if (kind.delegated) {
        const Forge::Name service{ProfileUri::UpnNameFormat, "report@corp"};
        spec.delegates = {{{ProfileUri::UpnNameFormat, "portal@corp"}}, {service}};
        spec.delegateId = service;
    }
    spec.audience = {"https://a.example/?x=1&amp;y=2", "https://b.example/"};
    spec.proxyCount = "1";
    spec.attributes = {{ProfileUri::GroupIdentity, {"corp\\Staff", "corp\\&lt;&#xE9;&gt;"}}};
    return spec;
}

/// Moves the declarations of both prefixes from the assertion and its signature to an element
/// around them.
std::string InEnvelope(const std::string& xml) {
    const std::string declaration = " xmlns:saml2=\"urn:oasis:names:tc:SAML:2.0:assertion\"";
    return "<e:Envelope xmlns:e=\"urn:example:envelope\"" + declaration +
           " xmlns:ds=\"http://www.w3.org/2000/09/xmldsig#\"><e:Body>" +
           Forge::Replaced(xml, declaration, "") + "</e:Body></e:Envelope>";
}

std::string SignedToken(const Method& method, const Style& style, const Kind& kind,
                        const std::string& uri) {
    Forge::TokenSpec spec = SpecOf(style, kind);
    XmlSec1::TemplateForm form;
    form.prefix = style.dsigPrefix;
    form.declaresPrefix = !style.declaredAbove;
    form.uri = uri.empty() ? "" : "#" + spec.id;
    form.signatureMethod = method.signature;
    form.digestMethod = method.digest;
    spec.signature = XmlSec1::Template(form);
    const std::string xml = Forge::Write(spec);
    return XmlSec1::Sign(style.declaredAbove ? InEnvelope(xml) : xml);
}

std::shared_ptr<const SamlToken> TokenFrom(const std::string& xml, const Style& style,
                                           const ResolverHandle& resolver) {
    if (!style.declaredAbove) return CreateSamlToken(xml, resolver.get());
    const auto document = Forge::Parse(xml);
    Xml::ElementNode* const body = document->GetRootElement()->GetFirstChildElement("Body");
    return CreateSamlTokenFromDom(body->GetFirstChildElement("Assertion"), resolver.get());
}

void ExpectWhatWasSaid(const SamlToken& token, const Kind& kind) {
    EXPECT_EQ(token.GetSubject().Name, "jdoe");
    EXPECT_EQ(token.GetSubject().Domain, "corp");
    EXPECT_EQ(token.GetConfirmationType(),
              kind.holderOfKey ? ConfirmationType::HolderOfKey : ConfirmationType::Bearer);
    EXPECT_EQ(token.GetHolderOfKeyCertificate() != nullptr, kind.holderOfKey);
    if (kind.holderOfKey) {
        EXPECT_EQ(*token.GetHolderOfKeyCertificate(), *CertificateNamed("self-signed").der);
    }

    const std::vector<DelegateInfo> chain = token.GetDelegationChain();
    ASSERT_EQ(chain.size(), kind.delegated ? 2u : 0u);
    if (kind.delegated) {
        EXPECT_EQ(chain.back().Delegate.Name, "report");
    }

    std::set<std::string> audience;
    token.GetAudience(audience);
    EXPECT_EQ(audience,
              (std::set<std::string>{"https://a.example/?x=1&y=2", "https://b.example/"}));
    const std::vector<PrincipalId> groups = token.GetGroups();
    ASSERT_EQ(groups.size(), 2u);
    EXPECT_EQ(groups.back().Name, "<\xC3\xA9>");
    EXPECT_TRUE(token.IsDelegable());
}

class TokensOfXmlSec1 : public testing::TestWithParam<std::tuple<Method, Style>> {};

TEST_P(TokensOfXmlSec1, AreAcceptedByBothResolversAndRefusedWhenAltered) {
    const Method& method = std::get<0>(GetParam());
    const Style& style = std::get<1>(GetParam());
    const ResolverHandle resolvers[] = {ChainBelowRoot(), SetOf("leaf")};
    for (const Kind& kind : kKinds) {
        for (const std::string uri : {"#id", ""}) {
            if (uri.empty() && style.declaredAbove) continue;  // would sign the envelope
            SCOPED_TRACE(std::string(kind.name) + " URI '" + uri + "'");
            const std::string xml = SignedToken(method, style, kind, uri);
            const std::string altered = Forge::Replaced(xml, ">jdoe@corp<", ">root@corp<");
            for (const ResolverHandle& resolver : resolvers) {
                ExpectWhatWasSaid(*TokenFrom(xml, style, resolver), kind);
                EXPECT_EQ(MessageOf<InvalidSignatureException>(
                              [&] { TokenFrom(altered, style, resolver); }),
                          "Failed to verify signature: token might have been tampered with.");
            }
            EXPECT_EQ(MessageOf<InvalidSignatureException>(
                          [&] { TokenFrom(xml, style, SetOf("attacker-leaf")); }),
                      "Signature verification error. No verification key available.");
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Oracle, TokensOfXmlSec1,
                         testing::Combine(testing::ValuesIn(kMethods), testing::ValuesIn(kStyles)),
                         [](const auto& row) {
                             return std::string(std::get<0>(row.param).name) +
                                    std::get<1>(row.param).name;
                         });

TEST(TokenOfXmlSec1, NeedsNoKeyInfoWhenItsSignerAloneIsTrusted) {
    Forge::TokenSpec spec;
    XmlSec1::TemplateForm form;
    form.uri = "#" + spec.id;
    form.signatureMethod = Algorithm::RsaSha256;
    form.digestMethod = Algorithm::Sha256;
    form.hasKeyInfo = false;
    spec.signature = XmlSec1::Template(form);
    const std::string xml = XmlSec1::Sign(Forge::Write(spec));

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
    XmlSec1::TemplateForm form;
    form.uri = "#" + spec.id;
    form.signatureMethod = Algorithm::RsaSha256;
    form.digestMethod = Algorithm::Sha256;
    form.prefixList = "ext xsi del";
    spec.signature = XmlSec1::Template(form);
    const std::string xml = XmlSec1::Sign(Forge::Write(spec));

    EXPECT_TRUE(CreateSamlToken(xml, ChainBelowRoot().get())->IsRenewable());
}

TEST(TokenOfXmlSec1, IsRefusedWhenItIsOver) {
    Forge::TokenSpec spec;
    spec.notBefore = "2020-01-01T00:00:00.000Z";
    spec.notOnOrAfter = "2020-01-01T08:00:00.000Z";
    XmlSec1::TemplateForm form;
    form.uri = "#" + spec.id;
    form.signatureMethod = Algorithm::RsaSha256;
    form.digestMethod = Algorithm::Sha256;
    spec.signature = XmlSec1::Template(form);
    const std::string xml = XmlSec1::Sign(Forge::Write(spec));

    EXPECT_EQ(MessageOf<ParseException>([&] { CreateSamlToken(xml, ChainBelowRoot().get()); }),
              "The token has expired at: 2020-01-01T08:00:00.000Z");
}

}  // namespace
}  // namespace Saml
