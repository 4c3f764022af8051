#include "examples/caching_resolver.h"

#include "support/resolving.h"
#include "support/test_keys.h"
#include "support/thrown.h"
#include "support/token_forge.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <list>
#include <stdexcept>
#include <string>
#include <vector>

using namespace Saml;
using namespace Saml::Xml;
using namespace Saml::Xml::Security;

namespace {

using std::chrono::milliseconds;
using std::chrono::minutes;

/// Answers as it is told to, and counts how often it is asked.
class CountingResolver final : public KeyInfoResolver {
  public:
    void Resolve(KeyInfo*, std::list<ByteBlob>& keys) override {
        ++asked;
        keys = answer();
    }
    int asked = 0;
    std::function<std::list<ByteBlob>()> answer = [this] {
        return std::list<ByteBlob>{TestKeys::ToBlob("answer " + std::to_string(asked))};
    };
};

/// What a signature sent, of which the cache sees the element only: the root of `xml` or its child.
class SentKeyInfo final : public KeyInfo {
  public:
    explicit SentKeyInfo(const std::string& xml) : document_(Forge::Parse(xml)) {}
    bool IsX509() override { return true; }
    void GetElement(boost::intrusive_ptr<ElementNode>& out) override {
        ElementNode* const root = document_->GetRootElement();
        out = root->GetLocalName() == "KeyInfo" ? root : root->GetFirstChildElement("KeyInfo");
    }

  private:
    boost::intrusive_ptr<Document> document_;
};

std::string Certificate(const std::string& base64) {
    return "<X509Certificate>" + base64 + "</X509Certificate>";
}

std::string KeyInfoOf(const std::string& content) {
    return "<KeyInfo xmlns=\"http://www.w3.org/2000/09/xmldsig#\"><X509Data>" + content +
           "</X509Data></KeyInfo>";
}

std::string Canonical(const std::string& xml) {
    boost::intrusive_ptr<Canonicalizer> canonicalizer;
    CreateCanonicalizer(Algorithm::ExclusiveC14N, canonicalizer);
    StringWriter out;
    canonicalizer->Canonicalize(Forge::Parse(xml)->GetRootElement(), out);
    return out.data;
}

/// What an answer of the counting resolver looks like.
Keys Answer(int number) {
    return {*TestKeys::ToBlob("answer " + std::to_string(number))};
}

class CachingResolver : public testing::Test {
  protected:
    CachingResolver() { Bound({64, minutes(5)}); }

    void Bound(CachingKeyInfoResolver::Bounds bounds) {
        cache_ = new CachingKeyInfoResolver(inner_, bounds, [this] { return now_; });
    }

    Keys Ask(const std::string& keyInfo) {
        const boost::intrusive_ptr<SentKeyInfo> sent(new SentKeyInfo(keyInfo));
        return KeysOf(*cache_, sent.get());
    }

    const boost::intrusive_ptr<CountingResolver> inner_{new CountingResolver};
    boost::intrusive_ptr<CachingKeyInfoResolver> cache_;
    std::chrono::steady_clock::time_point now_{std::chrono::hours(1)};
    const std::string a_ = KeyInfoOf(Certificate("AAAA"));
    const std::string b_ = KeyInfoOf(Certificate("BBBB"));
    const std::string c_ = KeyInfoOf(Certificate("CCCC"));
};

TEST_F(CachingResolver, AsksOnceForTheSameCertificates) {
    EXPECT_EQ(Ask(a_), Answer(1));
    EXPECT_EQ(Ask(a_), Answer(1));
    EXPECT_EQ(Ask(a_), Answer(1));
    EXPECT_EQ(inner_->asked, 1);
}

TEST_F(CachingResolver, AsksAgainWhenTheAnswerIsTooOld) {
    Ask(a_);
    now_ += minutes(5) - milliseconds(1);
    EXPECT_EQ(Ask(a_), Answer(1));
    now_ += milliseconds(1);
    EXPECT_EQ(Ask(a_), Answer(2));
    EXPECT_EQ(Ask(a_), Answer(2));
}

TEST_F(CachingResolver, KeepsNoAnswerYoungByUse) {
    Ask(a_);
    for (int minute = 1; minute < 5; ++minute) {
        now_ += minutes(1);
        EXPECT_EQ(Ask(a_), Answer(1));
    }
    now_ += minutes(1);
    EXPECT_EQ(Ask(a_), Answer(2));
}

TEST_F(CachingResolver, CountsTheAgeFromTheQuestion) {
    inner_->answer = [this] {
        now_ += minutes(4);  // a slow directory
        return std::list<ByteBlob>{TestKeys::ToBlob("answer " + std::to_string(inner_->asked))};
    };
    Ask(a_);
    now_ += minutes(1);
    EXPECT_EQ(Ask(a_), Answer(2));
}

TEST_F(CachingResolver, ForgetsWhatWasUsedLeastRecentlyWhenItIsFull) {
    Bound({2, minutes(5)});
    EXPECT_EQ(Ask(a_), Answer(1));
    EXPECT_EQ(Ask(b_), Answer(2));
    EXPECT_EQ(Ask(a_), Answer(1));  // now `b_` is the older one
    EXPECT_EQ(Ask(c_), Answer(3));
    EXPECT_EQ(Ask(a_), Answer(1));
    EXPECT_EQ(Ask(c_), Answer(3));
    EXPECT_EQ(Ask(b_), Answer(4));
    EXPECT_EQ(Ask(a_), Answer(5));
}

TEST_F(CachingResolver, RemembersNothingWithoutRoomOrTime) {
    for (const CachingKeyInfoResolver::Bounds bounds :
         {CachingKeyInfoResolver::Bounds{0, minutes(5)}, {64, minutes(0)}}) {
        Bound(bounds);
        const int before = inner_->asked;
        Ask(a_);
        Ask(a_);
        EXPECT_EQ(inner_->asked, before + 2);
    }
}

TEST_F(CachingResolver, RemembersNoRefusal) {
    const auto answer = inner_->answer;
    inner_->answer = [] { return std::list<ByteBlob>(); };
    EXPECT_EQ(Ask(a_), Keys());
    EXPECT_EQ(Ask(a_), Keys());
    inner_->answer = answer;  // it is trusted from now on
    EXPECT_EQ(Ask(a_), Answer(3));
}

TEST_F(CachingResolver, LetsRefusalsTakeNoRoom) {
    Bound({1, minutes(5)});
    Ask(a_);
    const auto answer = inner_->answer;
    inner_->answer = [] { return std::list<ByteBlob>(); };
    Ask(b_);
    inner_->answer = answer;
    EXPECT_EQ(Ask(a_), Answer(1));
}

TEST_F(CachingResolver, PassesAnExceptionOnAndDoesNotRememberIt) {
    const auto answer = inner_->answer;
    inner_->answer = []() -> std::list<ByteBlob> { throw std::runtime_error("no directory"); };
    EXPECT_EQ(MessageOf<std::runtime_error>([this] { Ask(a_); }), "no directory");
    EXPECT_EQ(MessageOf<std::runtime_error>([this] { Ask(a_); }), "no directory");
    inner_->answer = answer;
    EXPECT_EQ(Ask(a_), Answer(3));
    EXPECT_EQ(Ask(a_), Answer(3));
}

TEST_F(CachingResolver, DoesNotRememberAnswersToNoCertificates) {
    const std::string empty = "<KeyInfo xmlns=\"http://www.w3.org/2000/09/xmldsig#\"/>";
    for (const std::string& keyInfo :
         {empty, KeyInfoOf(""), KeyInfoOf("<X509SubjectName>CN=A</X509SubjectName>")}) {
        const int before = inner_->asked;
        EXPECT_EQ(Ask(keyInfo), Answer(before + 1));
        EXPECT_EQ(Ask(keyInfo), Answer(before + 2));
    }
    const boost::intrusive_ptr<OtherKeyInfo> other(new OtherKeyInfo);
    for (KeyInfo* const keyInfo :
         {static_cast<KeyInfo*>(other.get()), static_cast<KeyInfo*>(nullptr)}) {
        const int before = inner_->asked;
        EXPECT_EQ(KeysOf(*cache_, keyInfo), Answer(before + 1));
        EXPECT_EQ(KeysOf(*cache_, keyInfo), Answer(before + 2));
    }
}

TEST_F(CachingResolver, NeedsAResolverToAsk) {
    EXPECT_EQ(MessageOf<InvalidArgumentException>([] {
                  const boost::intrusive_ptr<KeyInfoResolver> cache(
                      new CachingKeyInfoResolver(nullptr, {}));
              }),
              "A cache needs a resolver to ask.");
}

/// Key information that is not that of the certificates "AAAA" and "BBBB", in this order.
struct DifferenceCase {
    const char* name;
    std::string keyInfo;
};

class CachingResolverTellsApart : public CachingResolver,
                                  public testing::WithParamInterface<DifferenceCase> {};

TEST_P(CachingResolverTellsApart, WhatIsNotTheSame) {
    const std::string both = KeyInfoOf(Certificate("AAAA") + Certificate("BBBB"));
    EXPECT_EQ(Ask(both), Answer(1));
    EXPECT_EQ(Ask(GetParam().keyInfo), Answer(2));
    EXPECT_EQ(Ask(both), Answer(1));
    EXPECT_EQ(Ask(GetParam().keyInfo), Answer(2));
}

INSTANTIATE_TEST_SUITE_P(
    CachingResolver, CachingResolverTellsApart,
    testing::Values(
        DifferenceCase{"Another", KeyInfoOf(Certificate("AAAA") + Certificate("CCCC"))},
        DifferenceCase{"Fewer", KeyInfoOf(Certificate("AAAA"))},
        DifferenceCase{"Reordered", KeyInfoOf(Certificate("BBBB") + Certificate("AAAA"))},
        DifferenceCase{"OneInFront",
                       KeyInfoOf(Certificate("CCCC") + Certificate("AAAA") + Certificate("BBBB"))},
        DifferenceCase{"OneBehind",
                       KeyInfoOf(Certificate("AAAA") + Certificate("BBBB") + Certificate("CCCC"))},
        DifferenceCase{"OneTwice",
                       KeyInfoOf(Certificate("AAAA") + Certificate("AAAA") + Certificate("BBBB"))},
        DifferenceCase{"RunTogether", KeyInfoOf(Certificate("AAAABBBB"))},
        DifferenceCase{"CutElsewhere", KeyInfoOf(Certificate("AAAABB") + Certificate("BB"))},
        DifferenceCase{"OtherCase", KeyInfoOf(Certificate("AAAA") + Certificate("bbbb"))},
        DifferenceCase{"AnotherNamespace",
                       KeyInfoOf(Certificate("AAAA") + "<X509Certificate xmlns=\"urn:other\">BBBB"
                                                       "</X509Certificate>")},
        DifferenceCase{"WithAName", KeyInfoOf(Certificate("AAAA") + Certificate("BBBB") +
                                              "<X509SubjectName>CN=A</X509SubjectName>")}),
    [](const auto& row) { return std::string(row.param.name); });

// Readers do not find a default namespace that is declared in two spellings, so the certificate
// goes unread; the canonical form shows none of this (see docs/choices.md).
TEST_F(CachingResolver, TellsApartWhatIsReadDifferentlyInSpiteOfOneCanonicalForm) {
    const std::string odd = KeyInfoOf(
        "<X509Certificate xmlns=\"http://www.w3.org/2000/09/xmldsig#\""
        " :xmlns=\"http://www.w3.org/2000/09/xmldsig#\">AAAA</X509Certificate>");
    ASSERT_EQ(Canonical(odd), Canonical(a_));
    EXPECT_EQ(Ask(odd), Answer(1));
    EXPECT_EQ(Ask(a_), Answer(2));
}

TEST_F(CachingResolver, TellsApartWhatIsWrittenAlikeUnderOtherDeclarations) {
    const auto under = [](const std::string& uri) {
        return "<a xmlns:d=\"http://www.w3.org/2000/09/xmldsig#\" xmlns:x=\"" + uri +
               "\"><d:KeyInfo><d:X509Data><x:X509Certificate>AAAA</x:X509Certificate>"
               "</d:X509Data></d:KeyInfo></a>";
    };
    EXPECT_EQ(Ask(under("http://www.w3.org/2000/09/xmldsig#")), Answer(1));
    EXPECT_EQ(Ask(under("urn:other")), Answer(2));
    EXPECT_EQ(Ask(under("http://www.w3.org/2000/09/xmldsig#")), Answer(1));
}

}  // namespace
