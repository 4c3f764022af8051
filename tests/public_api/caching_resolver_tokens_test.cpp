// Whole tokens through the cache: it changes how often certificates are looked at, and no verdict.
#include "examples/caching_resolver.h"
#include "saml/token.h"
#include "support/resolving.h"
#include "support/test_keys.h"
#include "support/thrown.h"
#include "support/token_forge.h"
#include "threads/many_threads.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

using namespace Saml;
using namespace Saml::Xml::Security;

namespace {

using ResolverPtr = boost::intrusive_ptr<KeyInfoResolver>;
using std::chrono::milliseconds;
using std::chrono::minutes;

constexpr char kTampered[] = "Failed to verify signature: token might have been tampered with.";
constexpr char kNoKey[] = "Signature verification error. No verification key available.";

/// The library's trust chain below some trusted certificates, until they are withdrawn.
class WatchedChain final : public KeyInfoResolver {
  public:
    explicit WatchedChain(const std::vector<const char*>& trusted) {
        CreateTrustChainKeyResolver(Ders(trusted), chain_);
    }
    void Resolve(KeyInfo* keyInfo, std::list<ByteBlob>& keys) override {
        ++asked;
        chain_->Resolve(keyInfo, keys);
        if (withdrawn) keys.clear();
    }
    std::atomic<int> asked{0};
    std::atomic<bool> withdrawn{false};

  private:
    ResolverPtr chain_;
};

std::string Signed(const std::string& id, const char* key, const std::vector<const char*>& sent,
                   const Forge::SignatureSpec& choices = {}) {
    Forge::TokenSpec spec;
    spec.id = id;
    return Forge::Sign(Forge::Write(spec), {TestKeys::KeyNamed(key).privateKey, Ders(sent)},
                       choices);
}

class CachedTrustChain : public testing::Test {
  protected:
    ResolverPtr CacheAround(const ResolverPtr& inner) {
        const CachingKeyInfoResolver::Bounds bounds{64, minutes(5)};
        return ResolverPtr(new CachingKeyInfoResolver(inner, bounds, [this] { return now_; }));
    }
    std::string IdOf(const std::string& token) {
        return CreateSamlToken(token, cache_.get())->GetId();
    }
    std::string RefusalOf(const std::string& token) {
        return MessageOf<InvalidSignatureException>([&] { IdOf(token); });
    }

    std::chrono::steady_clock::time_point now_{std::chrono::hours(1)};
    const boost::intrusive_ptr<WatchedChain> chain_{
        new WatchedChain(std::vector<const char*>{"root"})};
    ResolverPtr cache_ = CacheAround(chain_);
    const std::string honest_ = Signed("_honest", "leaf", {"leaf", "intermediate"});
};

TEST_F(CachedTrustChain, LooksOnceAtTheCertificatesOfManyTokens) {
    for (const std::string id : {"_1", "_2", "_3"})
        EXPECT_EQ(IdOf(Signed(id, "leaf", {"leaf", "intermediate"})), id);
    EXPECT_EQ(chain_->asked, 1);
}

TEST_F(CachedTrustChain, RefusesATamperedTokenOfARememberedSigner) {
    EXPECT_EQ(IdOf(honest_), "_honest");
    EXPECT_EQ(RefusalOf(Forge::Replaced(honest_, "jdoe", "root")), kTampered);
    EXPECT_EQ(IdOf(honest_), "_honest");
}

TEST_F(CachedTrustChain, RefusesAForgeryThatSendsARememberedSignersCertificates) {
    IdOf(honest_);
    EXPECT_EQ(RefusalOf(Signed("_forged", "attacker", {"leaf", "intermediate"})), kTampered);
    EXPECT_EQ(chain_->asked, 1);
}

TEST_F(CachedTrustChain, GivesNobodyElseARememberedSignersKey) {
    IdOf(honest_);
    EXPECT_EQ(RefusalOf(Signed("_1", "attacker", {"attacker-leaf", "leaf", "intermediate"})),
              kNoKey);
    // The leaf's own signature, behind whom it does not speak for: the intermediate's key is asked.
    EXPECT_EQ(RefusalOf(Signed("_2", "leaf", {"intermediate", "leaf"})), kTampered);
    EXPECT_EQ(RefusalOf(Signed("_3", "leaf", {"attacker-leaf", "leaf", "intermediate"})), kNoKey);
    EXPECT_EQ(IdOf(Signed("_4", "leaf", {"leaf", "intermediate", "attacker-leaf"})), "_4");
    EXPECT_EQ(chain_->asked, 5);
}

// Its certificate goes unread, so that the single trusted key is offered: for this token only.
TEST_F(CachedTrustChain, IsNotPoisonedByACertificateThatGoesUnread) {
    Forge::SignatureSpec plain;
    plain.prefix = "";
    const std::string honest = Signed("_honest", "leaf", {"leaf-of-root"}, plain);
    const std::string odd =
        Forge::Replaced(Signed("_odd", "root", {"leaf-of-root"}, plain), "<X509Certificate>",
                        "<X509Certificate xmlns=\"http://www.w3.org/2000/09/xmldsig#\""
                        " :xmlns=\"http://www.w3.org/2000/09/xmldsig#\">");
    EXPECT_EQ(IdOf(odd), "_odd");
    EXPECT_EQ(IdOf(honest), "_honest");
    EXPECT_EQ(IdOf(odd), "_odd");
    EXPECT_EQ(chain_->asked, 2);
}

TEST_F(CachedTrustChain, StaysWithAWithdrawnSignerForTheAgeAtMost) {
    IdOf(honest_);
    chain_->withdrawn = true;
    now_ += minutes(5) - milliseconds(1);
    EXPECT_EQ(IdOf(honest_), "_honest");
    now_ += milliseconds(1);
    EXPECT_EQ(RefusalOf(honest_), kNoKey);
}

TEST_F(CachedTrustChain, StartsEmptyWhenTrustIsSwapped) {
    IdOf(honest_);
    cache_ = CacheAround(new WatchedChain({"attacker-root"}));
    EXPECT_EQ(RefusalOf(honest_), kNoKey);
    EXPECT_EQ(IdOf(Signed("_new", "attacker", {"attacker-leaf", "attacker-intermediate"})), "_new");
}

/// Fewer places than signers, and a short age, so that entries come and go all the time.
TEST_F(CachedTrustChain, JudgesOnManyThreadsAsOnOne) {
    const std::vector<std::string> tokens = {
        honest_,
        Signed("_other", "leaf", {"leaf", "intermediate"}),
        Signed("_direct", "leaf", {"leaf-of-root"}),
        Signed("_lower", "leaf", {"leaf-of-lower", "lower", "intermediate"}),
        Signed("_attacker", "attacker", {"attacker-leaf", "attacker-intermediate"}),
        Signed("_forged", "attacker", {"leaf", "intermediate"}),
        Forge::Replaced(honest_, "jdoe", "root")};
    for (const CachingKeyInfoResolver::Bounds bounds :
         {CachingKeyInfoResolver::Bounds{2, milliseconds(1)}, {64, minutes(5)}}) {
        cache_ = new CachingKeyInfoResolver(chain_, bounds);
        Threads::ExpectSameOnManyThreads(40, static_cast<int>(tokens.size()), [&](int kind) {
            return IdOf(tokens[static_cast<std::size_t>(kind)]);
        });
    }
}

}  // namespace
