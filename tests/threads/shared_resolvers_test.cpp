#include "saml/token.h"
#include "support/resolving.h"
#include "support/test_keys.h"
#include "support/token_account.h"
#include "support/token_forge.h"
#include "threads/many_threads.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

namespace Saml::Threads {
namespace {

using Forge::Replaced;
using Xml::Security::Ders;
using Xml::Security::KeyInfoResolver;
using ResolverPtr = boost::intrusive_ptr<KeyInfoResolver>;

std::string Signed(const Forge::TokenSpec& spec, const char* key,
                   const std::vector<const char*>& sent) {
    return Forge::Sign(Forge::Write(spec), {TestKeys::KeyNamed(key).privateKey, Ders(sent)});
}

/// Some that are accepted, others that are refused at different stages.
std::vector<std::string> Tokens() {
    Forge::TokenSpec holderOfKey;
    holderOfKey.holderOfKeyCertificate = Base64::Encode(*TestKeys::CertificateNamed("leaf").der);
    Forge::TokenSpec expired;
    expired.notBefore = "2020-01-01T00:00:00Z";
    expired.notOnOrAfter = "2020-01-01T01:00:00Z";
    const std::string bearer = Signed({}, "leaf", {"leaf", "intermediate"});
    return {bearer,
            Signed(holderOfKey, "leaf", {"leaf"}),
            Signed({}, "leaf", {"expired-leaf", "intermediate"}),
            Signed({}, "attacker", {"attacker-leaf", "attacker-intermediate"}),
            Signed(expired, "leaf", {"leaf", "intermediate"}),
            Signed({}, "leaf", {}),
            Replaced(bearer, "jdoe", "root"),
            Replaced(bearer, "</saml:Assertion>", "")};
}

std::string Judge(const std::string& xml, KeyInfoResolver& resolver) {
    return Oracle::Told(Oracle::AccountOf(*CreateSamlToken(xml, &resolver)));
}

void ExpectSameJudgements(const ResolverPtr& resolver) {
    const std::vector<std::string> tokens = Tokens();
    ExpectSameOnManyThreads(60, static_cast<int>(tokens.size()), [&](int kind) {
        return Judge(tokens[static_cast<std::size_t>(kind)], *resolver);
    });
}

TEST(SharedTrustChainResolver, JudgesOnManyThreadsAsOnOne) {
    ResolverPtr resolver;
    CreateTrustChainKeyResolver(Ders({"root", "self-signed", "expired-root"}), resolver);
    ExpectSameJudgements(resolver);
}

TEST(SharedTrustSetResolver, JudgesOnManyThreadsAsOnOne) {
    ResolverPtr resolver;
    CreateTrustSetKeyResolver(Ders({"leaf", "expired-leaf", "self-signed"}), resolver);
    ExpectSameJudgements(resolver);
}

/// OpenSSL finds out some things about a certificate when they are first asked for.
TEST(SharedTrustChainResolver, IsFirstUsedByManyThreads) {
    const std::string token = Signed({}, "leaf", {"leaf", "intermediate"});
    for (int i = 0; i < 5; ++i) {
        ResolverPtr usedBefore;
        CreateTrustChainKeyResolver(Ders({"root"}), usedBefore);
        ResolverPtr fresh;
        CreateTrustChainKeyResolver(Ders({"root"}), fresh);
        bool isFirst = true;  // the run on this thread, before the others begin
        ExpectSameOnManyThreads(2, 1, [&](int) {
            if (isFirst) {
                isFirst = false;
                return Judge(token, *usedBefore);
            }
            return Judge(token, *fresh);
        });
    }
}

}  // namespace
}  // namespace Saml::Threads
