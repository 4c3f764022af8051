#include "issuing_example.h"
#include "token_service.h"
#include "trust_example.h"

#include <gtest/gtest.h>

#include <list>
#include <string>

using namespace Saml;
using namespace Saml::Xml;
using namespace Saml::Xml::Security;

namespace {

/// A token of the service without its signature.
std::string Unsigned(const TokenService& service) {
    const boost::intrusive_ptr<Document> document = ParseDocument(service.Issue());
    ElementNode* const root = document->GetRootElement();
    root->RemoveChild(root->GetFirstChildElement("Signature"));
    boost::intrusive_ptr<Canonicalizer> canonicalizer;
    CreateCanonicalizer(Algorithm::InclusiveC14N, canonicalizer);
    StringWriter out;
    canonicalizer->Canonicalize(root, out);
    return out.data;
}

TEST(IssuingGuide, MakesTokensThatAreAccepted) {
    const TokenService service;
    const std::string text =
        SignedAssertion(Unsigned(service), service.privateKey(), {service.certificate()});
    boost::intrusive_ptr<KeyInfoResolver> resolver;
    CreateTrustSetKeyResolver({service.certificate()}, resolver);
    const auto token = CreateSamlToken(text, resolver.get());
    EXPECT_EQ(token->GetSubject(), (PrincipalId{"jdoe", "corp.example"}));
    EXPECT_EQ(token->GetXml(), text);
}

TEST(IssuingGuide, MakesTokensOfWhoeverHasTheKey) {
    const TokenService service;
    const TokenService stranger;
    const std::string text =
        SignedAssertion(Unsigned(service), stranger.privateKey(), {service.certificate()});
    boost::intrusive_ptr<KeyInfoResolver> resolver;
    CreateTrustSetKeyResolver({service.certificate()}, resolver);
    EXPECT_THROW(CreateSamlToken(text, resolver.get()), InvalidSignatureException);
}

TEST(TrustGuide, ReplacesTheResolverForWhoeverComesNext) {
    const TokenService older;
    const TokenService newer;
    Trust trust;
    trust.Replace({older.certificate()});
    const Trust::Resolver kept = trust.Current();
    trust.Replace({newer.certificate()});

    EXPECT_NO_THROW(CreateSamlToken(older.Issue(), kept.get()));
    EXPECT_THROW(CreateSamlToken(older.Issue(), trust.Current().get()), InvalidSignatureException);
    EXPECT_NO_THROW(CreateSamlToken(newer.Issue(), trust.Current().get()));
}

TEST(TrustGuide, KeepsTheResolverWhenTheReplacementIsNone) {
    const TokenService service;
    Trust trust;
    trust.Replace({service.certificate()});
    EXPECT_THROW(trust.Replace({}), InvalidArgumentException);
    EXPECT_NO_THROW(CreateSamlToken(service.Issue(), trust.Current().get()));
}

TEST(TrustGuide, IsRightThatASecondCertificateEndsTheTrialWithoutKeyInfo) {
    const TokenService service;
    const TokenService other;
    SigningMethods withoutCertificate;
    withoutCertificate.sendsCertificate = false;
    const std::string token = service.Issue(withoutCertificate);
    Trust trust;
    trust.Replace({service.certificate()});
    EXPECT_NO_THROW(CreateSamlToken(token, trust.Current().get()));
    trust.Replace({service.certificate(), other.certificate()});
    try {
        CreateSamlToken(token, trust.Current().get());
        FAIL() << "accepted";
    } catch (const InvalidSignatureException& refusal) {
        EXPECT_STREQ(refusal.what(),
                     "Signature verification error. No verification key available.");
    }
}

}  // namespace
