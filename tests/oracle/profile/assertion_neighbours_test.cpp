#include "oracle/profile/assertion_neighbours.h"

#include "oracle/profile/full_assertion.h"
#include "oracle/profile/token_prediction.h"
#include "saml/token.h"
#include "support/token_account.h"

#include <boost/core/demangle.hpp>
#include <gtest/gtest.h>

#include <ctime>
#include <iostream>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <typeinfo>

// Every single-fault neighbour of an assertion in which everything stands that the profile knows.
// What must be said of it, to the letter, is told by a grammar that the library does not know.
namespace {

using namespace Oracle;
using Saml::TestKeys::CertificateNamed;
using Saml::TestKeys::KeyNamed;

/// To print; the rest would say the same.
constexpr int kEnoughDisagreements = 20;

const char* NameOf(Confirmation confirmation) {
    return confirmation == Confirmation::Bearer ? "Bearer" : "HolderOfKey";
}

/// One time for all documents of the program.
long long Now() {
    static const long long now = std::time(nullptr);
    return now;
}

const Trust& TrustInTheLeaf() {
    static const Trust trust = {
        &CertificateNamed("leaf"),
        {&CertificateNamed("leaf"), &CertificateNamed("intermediate"), &CertificateNamed("root")}};
    return trust;
}

Outcome Observe(const std::string& xml) {
    static const boost::intrusive_ptr<Saml::Xml::Security::KeyInfoResolver> resolver = [] {
        boost::intrusive_ptr<Saml::Xml::Security::KeyInfoResolver> made;
        Saml::Xml::Security::CreateTrustSetKeyResolver({CertificateNamed("leaf").der}, made);
        return made;
    }();
    try {
        return {{}, Told(AccountOf(*Saml::CreateSamlToken(xml, resolver.get())))};
    } catch (Saml::ParseException* thrown) {
        const std::unique_ptr<Saml::ParseException> refusal(thrown);
        return {"Saml::ParseException*", refusal->what()};
    } catch (const std::exception& refusal) {
        return {boost::core::demangle(typeid(refusal).name()), refusal.what()};
    }
}

/// Compares what is predicted with what the library says, and counts.
class Comparison {
  public:
    void Compare(const Neighbour& neighbour) {
        const std::string xml = Written(neighbour.document);
        const Outcome expected = Judge(neighbour, xml);
        ++documents_;
        if (expected.text != kTampered) return;
        // The reader is content. What is left is that somebody else wrote it: sign what it says.
        Neighbour afresh = neighbour;
        SignAfresh(afresh.document, KeyNamed("leaf"));
        const std::string signedAfresh = Written(afresh.document);
        if (signedAfresh == xml) return;
        afresh.fault += ", signed afresh";
        Judge(afresh, signedAfresh);
        ++signedAfresh_;
    }

    int Documents() const { return documents_; }
    int SignedAfresh() const { return signedAfresh_; }
    int Accepted() const { return accepted_; }
    int Disagreements() const { return disagreements_; }

    void Print(const std::string& name) const {
        std::cout << name << ": " << documents_ << " neighbours and " << signedAfresh_
                  << " of them signed afresh, " << accepted_ << " accepted, " << messages_.size()
                  << " different refusals\n";
        testing::Test::RecordProperty("neighbours", documents_);
        testing::Test::RecordProperty("signed_afresh", signedAfresh_);
    }

  private:
    Outcome Judge(const Neighbour& neighbour, const std::string& xml) {
        const Outcome expected = Predict(neighbour.document, TrustInTheLeaf(), Now());
        const Outcome observed = Observe(xml);
        if (expected.exception.empty())
            ++accepted_;
        else
            messages_.insert(expected.text);
        if (expected == observed) return expected;
        ++disagreements_;
        ADD_FAILURE() << neighbour.fault << " at " << neighbour.place << "\nexpected " << expected
                      << "\nobserved " << observed << "\nin " << xml;
        return expected;
    }

    int documents_ = 0;
    int signedAfresh_ = 0;
    int accepted_ = 0;
    int disagreements_ = 0;
    std::set<std::string> messages_;
};

TEST(FullAssertion, IsAcceptedAndSaysWhatIsWritten) {
    for (const Confirmation confirmation : {Confirmation::Bearer, Confirmation::HolderOfKey}) {
        const Markup document = FullAssertion(confirmation, Now());
        const Outcome expected = Predict(document, TrustInTheLeaf(), Now());
        EXPECT_EQ(expected.exception, "") << expected.text;
        EXPECT_EQ(Observe(Written(document)), expected) << NameOf(confirmation);
    }
}

class AssertionNeighbours : public testing::TestWithParam<FaultFamily> {};

TEST_P(AssertionNeighbours, AreJudgedAsTheGrammarSays) {
    const FaultFamily& family = GetParam();
    Comparison comparison;
    for (const Confirmation confirmation : {Confirmation::Bearer, Confirmation::HolderOfKey})
        family.each(FullAssertion(confirmation, Now()), [&](const Neighbour& neighbour) {
            if (comparison.Disagreements() < kEnoughDisagreements) comparison.Compare(neighbour);
        });
    comparison.Print(family.name);
    EXPECT_GE(comparison.Documents(), 300);
    // What stands behind the signature in reading order is judged in these alone.
    EXPECT_GT(comparison.SignedAfresh(), 0);
    EXPECT_GT(comparison.Accepted(), 0);
}

INSTANTIATE_TEST_SUITE_P(Grammar, AssertionNeighbours, testing::ValuesIn(FaultFamilies()),
                         [](const testing::TestParamInfo<FaultFamily>& row) {
                             return std::string(row.param.name);
                         });

/// How often `part` stands in `text`.
int Occurrences(const std::string& text, const std::string& part) {
    int count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

TEST(AssertionNeighboursCount, IsOverAThousandAndEveryElementAndAttributeHasItsFaults) {
    std::map<std::string, int> byFault;
    std::set<std::string> texts;
    int all = 0;
    int elements = 0;
    int attributes = 0;
    for (const Confirmation confirmation : {Confirmation::Bearer, Confirmation::HolderOfKey}) {
        const Markup base = FullAssertion(confirmation, Now());
        const std::string xml = Written(base);
        elements += Occurrences(xml, "</");
        attributes += Occurrences(xml, "=\"");
        for (const FaultFamily& family : FaultFamilies())
            family.each(base, [&](const Neighbour& neighbour) {
                ++all;
                ++byFault[neighbour.fault];
                texts.insert(Written(neighbour.document));
            });
    }
    for (const auto& [fault, count] : byFault) {
        std::cout << count << "\t" << fault << "\n";
        EXPECT_GE(count, 2) << fault;
    }
    std::cout << all << " neighbours by " << byFault.size() << " kinds of fault, " << texts.size()
              << " different texts; of two assertions with " << elements << " elements and "
              << attributes << " attributes\n";
    RecordProperty("neighbours", all);
    RecordProperty("different_texts", static_cast<int>(texts.size()));

    EXPECT_GT(texts.size(), 1000U);
    for (const char* const fault :
         {"removed", "duplicated", "renamed", "prefix bound to another namespace",
          "an extra attribute", "an extra attribute with a prefix", "an unused declaration",
          "a processing instruction inside", "a reference to text inside"})
        EXPECT_EQ(byFault[fault], elements) << fault;
    for (const char* const fault : {"a foreign element inside", "text inside",
                                    "a CDATA section inside", "a comment inside", "blanks inside"})
        EXPECT_GT(byFault[fault], elements) << fault;
    EXPECT_EQ(byFault["an attribute removed"], attributes);
    EXPECT_EQ(byFault["an attribute repeated"], attributes);
}

}  // namespace
