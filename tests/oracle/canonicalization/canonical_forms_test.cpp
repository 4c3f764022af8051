#include "support/canonical_forms.h"

#include "oracle/canonicalization/greater_than_signs.h"
#include "oracle/canonicalization/libxml2_canonicalizer.h"
#include "oracle/canonicalization/random_trees.h"
#include "oracle/canonicalization/tree_features.h"
#include "saml/security/signature_context.h"
#include "support/dice.h"
#include "support/random_seed.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <iostream>
#include <string>
#include <vector>

// Canonical forms of random trees, by this library and by libxml2.
namespace Saml::Xml::Security {
namespace {

using LibXml2::WithGreaterThanSignsEscaped;
using RandomTrees::CDataSections;

constexpr std::uint64_t kUsualSeed = 20010315;
constexpr std::size_t kShards = 10;
constexpr std::size_t kTreesOfAShard = 2000;

std::vector<ElementNode*> ElementsOf(Document& document) {
    std::vector<ElementNode*> elements;
    std::vector<Node*> pending{document.GetRootElement()};
    while (!pending.empty()) {
        Node* const node = pending.back();
        pending.pop_back();
        auto* const element = dynamic_cast<ElementNode*>(node);
        if (element == nullptr) continue;
        elements.push_back(element);
        const std::vector<Node*> children = ChildrenOf(*node);
        pending.insert(pending.end(), children.rbegin(), children.rend());
    }
    return elements;
}

std::string OneLine(const std::vector<std::string>& words) {
    std::string line;
    for (const std::string& word : words)
        line += (line.empty() ? "" : " ") + word;
    return line;
}

/// A tree in both libraries.
class TreeInBoth {
  public:
    TreeInBoth(const std::string& ourText, const std::string& theirText)
        : ourText_(ourText),
          theirText_(theirText),
          document_(Parsed(ourText)),
          elements_(ElementsOf(*document_)),
          theirs_(theirText) {}

    /// Fails the running test when they differ.
    void ExpectOneForm(const LibXml2::CanonicalPart& part) const {
        const std::string ours = OurForm(part);
        const std::string theirs = WithGreaterThanSignsEscaped(theirs_.CanonicalForm(part));
        EXPECT_EQ(ours, theirs)
            << (part.method == LibXml2::Method::Exclusive ? "exclusive" : "inclusive")
            << " form of element " << part.apex << " <" << elements_[part.apex]->GetQualifiedName()
            << ">"
            << (part.leftOut ? " without element " + std::to_string(*part.leftOut) : std::string())
            << ", PrefixList '" << OneLine(part.prefixes) << "', of\n"
            << ourText_ << (theirText_ != ourText_ ? "\nfor libxml2\n" + theirText_ : "");
    }

    void ExpectToBeTheSameTree(std::size_t countOfElements) const {
        EXPECT_TRUE(theirs_.IsNamespaceWellFormed()) << theirText_;
        EXPECT_EQ(theirs_.CountOfElements(), countOfElements) << theirText_;
        EXPECT_EQ(elements_.size(), countOfElements) << ourText_;
    }

  private:
    std::string OurForm(const LibXml2::CanonicalPart& part) const {
        ElementNode& apex = *elements_.at(part.apex);
        if (part.method == LibXml2::Method::Inclusive)
            return CanonicalForm(Algorithm::InclusiveC14N, apex);
        const SignatureContext context("");
        const auto canonicalizer =
            part.prefixes.empty()
                ? context.CreateCanonicalizer(Algorithm::ExclusiveC14N)
                : context.CreateCanonicalizer(Algorithm::ExclusiveC14N, OneLine(part.prefixes));
        const ExcludeNodeFilter filter(
            part.leftOut ? dynamic_cast<NodeImpl*>(elements_.at(*part.leftOut)) : nullptr);
        return CanonicalForm(*canonicalizer, apex, filter);
    }

    std::string ourText_;
    std::string theirText_;
    Held<Document> document_;
    std::vector<ElementNode*> elements_;
    LibXml2::ParsedText theirs_;
};

/// How many forms were compared, by their kind.
struct Counts {
    std::size_t trees = 0;
    std::size_t exclusive = 0;
    std::size_t withPrefixList = 0;
    std::size_t withElementLeftOut = 0;
    std::size_t inclusive = 0;

    void Report() const {
        std::cout << trees << " trees: " << exclusive << " exclusive forms, " << withPrefixList
                  << " with a PrefixList, " << withElementLeftOut << " with an element left out, "
                  << inclusive << " inclusive forms\n";
        testing::Test::RecordProperty("trees", std::to_string(trees));
        testing::Test::RecordProperty(
            "forms", std::to_string(exclusive + withPrefixList + withElementLeftOut + inclusive));
    }
};

/// Some of the prefixes that the list may name, in any order; a word that nobody declares now and
/// then.
std::vector<std::string> RandomPrefixList(const RandomTrees::Element& apex, Dice& dice) {
    std::vector<std::string> prefixes = RandomTrees::PrefixesForAList(apex);
    dice.Shuffle(prefixes);
    prefixes.resize(prefixes.empty() ? 0 : 1 + dice.Below(prefixes.size()));
    if (dice.Below(8) == 0) prefixes.push_back("nobody");
    return prefixes;
}

/// One below `apex`, or `apex` itself when it has no child elements.
std::size_t RandomElementBelow(const RandomTrees::Element& apex, Dice& dice) {
    std::vector<std::size_t> numbers;
    for (const RandomTrees::Content& content : apex.content)
        if (content.element) numbers.push_back(content.element->number);
    if (numbers.empty()) return apex.number;
    const std::size_t first = numbers.front();
    // Every number up to that of the last child lies below the apex.
    return first + dice.Below(numbers.back() - first + 1);
}

void CompareFormsAt(const RandomTrees::Element& apex, const TreeInBoth& both, Dice& dice,
                    Counts& counts) {
    LibXml2::CanonicalPart part;
    part.apex = apex.number;
    both.ExpectOneForm(part);
    ++counts.exclusive;

    part.prefixes = RandomPrefixList(apex, dice);
    if (!part.prefixes.empty()) {
        both.ExpectOneForm(part);
        ++counts.withPrefixList;
    }

    part.leftOut = RandomElementBelow(apex, dice);
    if (*part.leftOut != apex.number) {
        both.ExpectOneForm(part);
        ++counts.withElementLeftOut;
    }

    if (!RandomTrees::IsBelowXmlAttributes(apex)) {
        both.ExpectOneForm({LibXml2::Method::Inclusive, apex.number});
        ++counts.inclusive;
    }
}

class RandomTreesShard : public testing::TestWithParam<std::size_t> {
  protected:
    /// Compares the forms of many trees, each at its root and at a random element, and stops at the
    /// first tree that shows a difference.
    void CompareForms(std::size_t countOfTrees, CDataSections sections) {
        const std::uint64_t seed = RandomSeed(kUsualSeed);
        Counts counts;
        for (std::size_t number = 0; number != countOfTrees && !HasFailure(); ++number) {
            Dice dice(seed, {GetParam(), number});
            const RandomTrees::Tree tree = RandomTrees::Grow(dice, sections);
            SCOPED_TRACE("seed " + std::to_string(seed) + ", tree " + std::to_string(number));
            const TreeInBoth both(RandomTrees::Write(tree, sections),
                                  RandomTrees::Write(tree, CDataSections::No));
            both.ExpectToBeTheSameTree(tree.elements.size());
            if (HasFailure()) break;
            CompareFormsAt(*tree.root, both, dice, counts);
            CompareFormsAt(*tree.elements[dice.Below(tree.elements.size())], both, dice, counts);
            ++counts.trees;
        }
        counts.Report();
        EXPECT_EQ(counts.trees, countOfTrees);
        EXPECT_GT(counts.withPrefixList, countOfTrees / 4);
        EXPECT_GT(counts.withElementLeftOut, countOfTrees / 4);
        EXPECT_GT(counts.inclusive, countOfTrees);
    }
};

class CanonicalForms : public RandomTreesShard {};

TEST_P(CanonicalForms, AreThoseOfLibXml2) {
    CompareForms(kTreesOfAShard, CDataSections::No);
}

INSTANTIATE_TEST_SUITE_P(Oracle, CanonicalForms, testing::Range<std::size_t>(0, kShards));

class CanonicalFormsOfCDataSections : public RandomTreesShard {};

// They contribute nothing here: libxml2 is given the text that never had them.
TEST_P(CanonicalFormsOfCDataSections, AreThoseOfLibXml2WithoutThem) {
    CompareForms(kTreesOfAShard, CDataSections::Yes);
}

INSTANTIATE_TEST_SUITE_P(Oracle, CanonicalFormsOfCDataSections,
                         testing::Range<std::size_t>(kShards, kShards + 1));

TEST(RandomTrees, HaveEveryFeatureThatTheyAreMadeFor) {
    const std::uint64_t seed = RandomSeed(kUsualSeed);
    RandomTrees::FeatureCounts counts = RandomTrees::NoFeatures();
    for (std::size_t number = 0; number != kTreesOfAShard / 2; ++number) {
        Dice dice(seed, {0, number});
        const auto sections = number % 4 == 0 ? CDataSections::Yes : CDataSections::No;
        RandomTrees::CountFeatures(RandomTrees::Grow(dice, sections), counts);
    }
    for (const auto& [feature, count] : counts) {
        std::cout << count << " times " << feature << "\n";
        EXPECT_GT(count, 0u) << feature << " (seed " << seed << ")";
    }
}

// The comparison hides nothing but the one replacement.
TEST(EscapingGreaterThanSigns, ChangesTheValuesOfACanonicalFormOnly) {
    EXPECT_EQ(WithGreaterThanSignsEscaped("<a b=\">'>\" c=\"&gt;&quot;\">\">&gt;</a>"),
              "<a b=\"&gt;'&gt;\" c=\"&gt;&quot;\">\">&gt;</a>");
}

}  // namespace
}  // namespace Saml::Xml::Security
