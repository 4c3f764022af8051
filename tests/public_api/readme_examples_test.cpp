#include "token_service.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

using namespace Saml;
using namespace Saml::Xml::Security;

// The README's examples.
std::string WhoIsCalling(const std::string& tokenXml, const std::string& trustedPem);
std::shared_ptr<const SamlToken> CreateSamlTokenWithinLimits(const std::string& xml,
                                                             KeyInfoResolver* resolver);

namespace {

TEST(ReadmeExample, NamesTheCallerOfAValidToken) {
    const TokenService service;
    EXPECT_EQ(WhoIsCalling(service.Issue(), service.certificatePem()), "jdoe@corp.example");
}

TEST(ReadmeExample, NamesNobodyForATokenOfASignerWhoIsNotTrusted) {
    EXPECT_EQ(WhoIsCalling(TokenService().Issue(), TokenService().certificatePem()), "");
}

TEST(ReadmeExample, NamesNobodyForARefusalByAThrownPointer) {
    const TokenService service;
    const std::string token =
        service.Issue("<saml2:AttributeValue>false</saml2:AttributeValue>", "");
    EXPECT_EQ(WhoIsCalling(token, service.certificatePem()), "");
}

class ReadmeExampleWithLimits : public testing::Test {
  protected:
    ReadmeExampleWithLimits() { CreateTrustSetKeyResolver({service_.certificate()}, resolver_); }
    TokenService service_;
    boost::intrusive_ptr<KeyInfoResolver> resolver_;
};

TEST_F(ReadmeExampleWithLimits, AcceptsAValidToken) {
    const auto token = CreateSamlTokenWithinLimits(service_.Issue(), resolver_.get());
    EXPECT_EQ(token->GetSubject(), (PrincipalId{"jdoe", "corp.example"}));
}

TEST_F(ReadmeExampleWithLimits, RefusesEntityDeclarations) {
    const std::string token = "<!DOCTYPE a [<!ENTITY e \"x\">]>" + service_.Issue();
    EXPECT_NO_THROW(CreateSamlToken(token, resolver_.get()));
    EXPECT_THROW(CreateSamlTokenWithinLimits(token, resolver_.get()), Xml::XMLParseException);
}

TEST_F(ReadmeExampleWithLimits, RefusesMoreContentThanOneMebibyte) {
    const std::string token = "<a>" + std::string(1 << 20, 'x') + "</a>";
    EXPECT_THROW(CreateSamlToken(token, resolver_.get()), ParseException);
    EXPECT_THROW(CreateSamlTokenWithinLimits(token, resolver_.get()), Xml::XMLParseException);
}

}  // namespace
