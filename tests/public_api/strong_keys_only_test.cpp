#include "strong_keys_only.h"

#include "support/system_policy.h"
#include "token_service.h"

#include <gtest/gtest.h>

#include <exception>
#include <string>

using namespace Saml;
using namespace Saml::Xml::Security;

namespace {

/// What comes of a token, with the resolver of the example and without it.
std::string Outcome(const TokenService& service, const std::string& token, bool strongOnly) {
    boost::intrusive_ptr<KeyInfoResolver> resolver;
    CreateTrustSetKeyResolver({service.certificate()}, resolver);
    if (strongOnly) resolver = new StrongKeysOnly(resolver);
    try {
        return CreateSamlToken(token, resolver.get())->GetSubject().Name;
    } catch (const InvalidSignatureException& refusal) {
        return refusal.what();
    }
}

constexpr char kNoKey[] = "Signature verification error. No verification key available.";

TEST(StrongKeysOnly, OffersAStrongKey) {
    const TokenService service;
    EXPECT_EQ(Outcome(service, service.Issue(), true), "jdoe");
}

TEST(StrongKeysOnly, OffersNoShortKey) {
    const TokenService service(1024);
    EXPECT_EQ(Outcome(service, service.Issue(), false), "jdoe");
    EXPECT_EQ(Outcome(service, service.Issue(), true), kNoKey);
}

TEST(StrongKeysOnly, OffersNoKeyForSignaturesWithSha1) {
    SKIP_WHERE_SHA1_SIGNATURES_ARE_REFUSED();
    const TokenService service;
    for (const SigningMethods& methods : {SigningMethods{Algorithm::RsaSha1, Algorithm::Sha1},
                                          SigningMethods{Algorithm::RsaSha1, Algorithm::Sha256}}) {
        EXPECT_EQ(Outcome(service, service.Issue(methods), false), "jdoe");
        EXPECT_EQ(Outcome(service, service.Issue(methods), true), kNoKey);
    }
}

TEST(StrongKeysOnly, OffersNoKeyForDigestsWithSha1) {
    const TokenService service;
    const SigningMethods methods{Algorithm::RsaSha256, Algorithm::Sha1};
    EXPECT_EQ(Outcome(service, service.Issue(methods), false), "jdoe");
    EXPECT_EQ(Outcome(service, service.Issue(methods), true), kNoKey);
}

TEST(StrongKeysOnly, OffersNoKeyWithoutKeyInfo) {
    const TokenService service;
    SigningMethods methods;
    methods.sendsCertificate = false;
    EXPECT_EQ(Outcome(service, service.Issue(methods), false), "jdoe");
    EXPECT_EQ(Outcome(service, service.Issue(methods), true), kNoKey);
}

}  // namespace
