#include "token_service.h"

#include <gtest/gtest.h>

// The README's example.
std::string WhoIsCalling(const std::string& tokenXml, const std::string& trustedPem);

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

}  // namespace
