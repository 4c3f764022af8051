#include "oracle/chains/described_certificate.h"
#include "oracle/chains/openssl_verify.h"
#include "oracle/chains/random_hierarchy.h"
#include "saml/security/x509_key_info.h"
#include "support/random_seed.h"
#include "support/resolving.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <iterator>
#include <list>
#include <map>
#include <set>
#include <string>
#include <vector>

// Random certificate hierarchies: the trust-chain resolver offers the signer's key where
// `openssl verify` finds a chain, and nothing where it finds none. Both ask the same libcrypto:
// what is compared is what is asked, and what is made of the answer.
namespace Chains {
namespace {

using OpenSslVerify::Verdict;

constexpr std::uint64_t kUsualSeed = 20240229;
constexpr std::uint64_t kShards = 10;
constexpr std::uint64_t kShardSize = 50;

using Places = std::vector<std::size_t>;

/// A question to a judge of chains: places in the list of a hierarchy's certificates.
struct Question {
    Places trusted;
    Places sent;  ///< The signer first.
};

bool operator!=(const Question& left, const Question& right) {
    return left.trusted != right.trusted || left.sent != right.sent;
}

bool Holds(const Places& places, std::size_t place) {
    return std::find(places.begin(), places.end(), place) != places.end();
}

std::vector<Certificate> IssueAll(const Hierarchy& hierarchy) {
    std::vector<Certificate> certificates;
    for (const Description& description : hierarchy.certificates)
        certificates.push_back(Issue(description));
    return certificates;
}

Verdict OpenSslAnswers(const std::vector<Certificate>& certificates, const Question& question) {
    std::vector<std::string> trusted;
    for (const std::size_t place : question.trusted)
        trusted.push_back(certificates[place].pem);
    std::vector<std::string> others;
    for (auto place = question.sent.begin() + 1; place != question.sent.end(); ++place)
        others.push_back(certificates[*place].pem);
    return OpenSslVerify::Judge(certificates[question.sent.front()].pem, others, trusted);
}

std::list<Saml::ByteBlob> Ders(const std::vector<Certificate>& certificates, const Places& places) {
    std::list<Saml::ByteBlob> ders;
    for (const std::size_t place : places)
        ders.push_back(certificates[place].der);
    return ders;
}

/// The keys that the resolver offers.
Saml::Xml::Security::Keys WeAnswer(const std::vector<Certificate>& certificates,
                                   const Question& question) {
    using namespace Saml::Xml::Security;
    boost::intrusive_ptr<KeyInfoResolver> resolver;
    CreateTrustChainKeyResolver(Ders(certificates, question.trusted), resolver);
    const boost::intrusive_ptr<KeyInfo> keyInfo(
        new X509KeyInfo("ds", Ders(certificates, question.sent)));
    return KeysOf(*resolver, keyInfo.get());
}

/// What the resolver promises beyond chain building.
enum class Rule {
    None,
    /// A trusted signer answers for itself alone; what is sent or trusted above it is nobody's
    /// business. `openssl verify` prefers a longer chain, and refuses when something is wrong
    /// there.
    TrustedSignerIsTheSoleAnchor,
    /// Of what is sent behind the signer only authorities are kept. `openssl verify` takes the
    /// first certificate that has the issuer's name, and fails when it is no authority.
    OnlyAuthoritiesAreKept,
};

const char* NameOf(Rule rule) {
    switch (rule) {
        case Rule::None:
            return "no rule";
        case Rule::TrustedSignerIsTheSoleAnchor:
            return "a trusted signer is the sole anchor";
        case Rule::OnlyAuthoritiesAreKept:
            return "only authorities are kept";
    }
    return "unknown";
}

/// What the rule makes of a question.
struct Narrowed {
    Rule rule = Rule::None;
    Question question;
};

/// OpenSSL's classes of authorities, X509_check_ca(3).
bool IsAuthority(const Description& description) {
    if (description.isVersion1) return description.subject == description.issuer;
    if (description.usage == Usage::Signature) return false;
    if (description.constraints != Constraints::Absent)
        return description.constraints == Constraints::Authority;
    return description.usage == Usage::CertSign;
}

Narrowed Narrow(const Hierarchy& hierarchy) {
    const Question asked{hierarchy.trusted, hierarchy.sent};
    const std::size_t signer = hierarchy.signer;
    if (Holds(asked.trusted, signer))
        return {Rule::TrustedSignerIsTheSoleAnchor, {{signer}, {signer}}};

    Question kept{asked.trusted, {signer}};
    std::copy_if(asked.sent.begin() + 1, asked.sent.end(), std::back_inserter(kept.sent),
                 [&](std::size_t place) { return IsAuthority(hierarchy.certificates[place]); });
    return {kept != asked ? Rule::OnlyAuthoritiesAreKept : Rule::None, kept};
}

/// What stands above the signer as far as names lead, sent or trusted.
Places Above(const Hierarchy& hierarchy) {
    Places candidates = hierarchy.trusted;
    candidates.insert(candidates.end(), hierarchy.sent.begin(), hierarchy.sent.end());
    Places above{hierarchy.signer};  // and, while it grows, what stands above the one at `i`
    for (std::size_t i = 0; i < above.size(); ++i)
        for (const std::size_t place : candidates)
            if (hierarchy.certificates[place].subject == hierarchy.certificates[above[i]].issuer &&
                !Holds(above, place))
                above.push_back(place);
    above.erase(above.begin());
    return above;
}

/// Whether a chain that holds `authority` above `below` may fail for it.
bool IsDoubtful(const Description& authority, const Places& below,
                const std::vector<Description>& all) {
    return authority.validity != Validity::Current || authority.isVersion1 ||
           authority.constraints != Constraints::Authority || !IsAuthority(authority) ||
           authority.pathLength || authority.hasUnknownCriticalExtension ||
           std::any_of(below.begin(), below.end(), [&](std::size_t place) {
               return all[place].issuer == authority.subject &&
                      all[place].signingKey != authority.key;
           });
}

/// Whether the rule may let us accept what `openssl verify` refuses. The description tells: there
/// must be something that stands in that command's way and that the rule takes out.
bool Predicts(const Narrowed& narrowed, const Hierarchy& hierarchy) {
    const std::vector<Description>& all = hierarchy.certificates;
    const Places& sent = hierarchy.sent;
    if (narrowed.rule == Rule::TrustedSignerIsTheSoleAnchor) {
        const Places above = Above(hierarchy);
        Places below = above;
        below.push_back(hierarchy.signer);
        return std::any_of(above.begin(), above.end(),
                           [&](std::size_t place) { return IsDoubtful(all[place], below, all); });
    }
    if (narrowed.rule == Rule::OnlyAuthoritiesAreKept)
        for (auto dropped = sent.begin() + 1; dropped != sent.end(); ++dropped) {
            if (IsAuthority(all[*dropped])) continue;
            const bool hidesAnother = std::any_of(dropped, sent.end(), [&](std::size_t hidden) {
                return IsAuthority(all[hidden]) && all[hidden].subject == all[*dropped].subject &&
                       !Holds(hierarchy.trusted, hidden);
            });
            if (hidesAnother) return true;
        }
    return false;
}

struct Counts {
    int accepted = 0;
    int refused = 0;
    std::map<Rule, int> differing;
};

/// Compares the answers about one hierarchy and counts the outcome.
void Compare(const Hierarchy& hierarchy, Counts& counts) {
    const std::vector<Certificate> certificates = IssueAll(hierarchy);
    const Question asked{hierarchy.trusted, hierarchy.sent};
    const Saml::Xml::Security::Keys keys = WeAnswer(certificates, asked);
    const Verdict theirs = OpenSslAnswers(certificates, asked);

    const Description& signer = hierarchy.certificates[hierarchy.signer];
    const bool accepted = !keys.empty();
    if (accepted) {
        EXPECT_EQ(keys, Saml::Xml::Security::Keys{*PublicKeyOfPool(signer.key)});
    }
    if (accepted == theirs.accepted) {
        ++(accepted ? counts.accepted : counts.refused);
    }

    const Narrowed narrowed = Narrow(hierarchy);
    const Verdict promised =
        narrowed.question != asked ? OpenSslAnswers(certificates, narrowed.question) : theirs;
    EXPECT_EQ(accepted, promised.accepted)
        << "openssl about what the resolver keeps: " << promised.said
        << "openssl about all: " << theirs.said;
    // Then the chain is the signer alone, and the verdict can be told without OpenSSL.
    if (narrowed.rule == Rule::TrustedSignerIsTheSoleAnchor) {
        EXPECT_EQ(accepted, signer.validity == Validity::Current &&
                                (signer.isVersion1 || !signer.hasUnknownCriticalExtension));
    }
    if (accepted != theirs.accepted) {
        ++counts.differing[narrowed.rule];
        EXPECT_TRUE(accepted && Predicts(narrowed, hierarchy))
            << "rule: " << NameOf(narrowed.rule) << "\nopenssl: " << theirs.said;
    }
}

class TrustChains : public testing::TestWithParam<std::uint64_t> {};

TEST_P(TrustChains, EndWhereOpenSslVerifyEndsThem) {
    const std::uint64_t seed = RandomSeed(kUsualSeed);
    Counts counts;
    for (std::uint64_t i = 0; i < kShardSize; ++i) {
        const std::uint64_t index = GetParam() * kShardSize + i;
        const Hierarchy hierarchy = RandomHierarchy(seed, index);
        SCOPED_TRACE("seed " + std::to_string(seed) + ", hierarchy " + std::to_string(index) +
                     "\n" + Summary(hierarchy));
        Compare(hierarchy, counts);
    }

    std::cout << kShardSize << " hierarchies: both accept " << counts.accepted << ", both refuse "
              << counts.refused << "\n";
    RecordProperty("both accept", counts.accepted);
    RecordProperty("both refuse", counts.refused);
    for (const auto& [rule, count] : counts.differing) {
        std::cout << "only we accept, since " << NameOf(rule) << ": " << count << "\n";
        RecordProperty(NameOf(rule), count);
    }
    // Were all of them refused, agreement would mean nothing. Usual are 25 and 19.
    EXPECT_GE(counts.accepted, 5);
    EXPECT_GE(counts.refused, 5);
}

INSTANTIATE_TEST_SUITE_P(Oracle, TrustChains, testing::Range<std::uint64_t>(0, kShards),
                         [](const auto& row) { return "Shard" + std::to_string(row.param); });

TEST(RandomHierarchies, HaveEveryFeatureAndEveryRuleOften) {
    const std::uint64_t seed = RandomSeed(kUsualSeed);
    std::map<std::string, int> counts;
    for (std::uint64_t index = 0; index < kShards * kShardSize; ++index) {
        const Hierarchy hierarchy = RandomHierarchy(seed, index);
        for (const std::string& feature : hierarchy.features)
            ++counts[feature];
        const Narrowed narrowed = Narrow(hierarchy);
        if (Predicts(narrowed, hierarchy)) ++counts[NameOf(narrowed.rule)];
    }
    std::set<std::string> expected = AllFeatures();
    expected.insert(NameOf(Rule::TrustedSignerIsTheSoleAnchor));
    expected.insert(NameOf(Rule::OnlyAuthoritiesAreKept));
    for (const std::string& name : expected) {
        std::cout << name << ": " << counts[name] << "\n";
        EXPECT_GE(counts[name], 5) << name;
    }
}

}  // namespace
}  // namespace Chains
