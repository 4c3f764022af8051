#include "saml/security/canonical_attributes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace Saml::Xml::Security {
namespace {

/// The entries in their present order, as written: `xmlns:p=u`, `a=1`.
std::vector<std::string> Listed(const CanonicalAttributes& attributes) {
    std::vector<std::string> listed;
    for (const CanonicalAttribute& attribute : attributes) {
        std::string entry(attribute.prefix);
        if (!entry.empty()) entry += ':';
        entry.append(attribute.localName).append("=").append(attribute.value);
        listed.push_back(entry);
    }
    return listed;
}

class CanonicalAttributesTest : public testing::Test {
  protected:
    void Bind(const char* prefix, const std::string& uri) {
        scope_.Enter();
        scope_.Declare(prefix, uri);
    }
    std::vector<std::string> Sorted() {
        attributes_.Sort();
        return Listed(attributes_);
    }

    NamespaceScope scope_;
    CanonicalAttributes attributes_;
};

using Entries = std::vector<std::string>;

TEST_F(CanonicalAttributesTest, SortsDeclarationsThenPlainThenQualifiedAttributes) {
    const std::string uri = "urn:u";
    Bind("p", uri);
    attributes_.AddAttribute("p", "a", "6", scope_);
    attributes_.AddAttribute("", "z", "5", scope_);
    attributes_.AddAttribute("", "a", "4", scope_);
    attributes_.AddDeclaration("q", "3");
    attributes_.AddDeclaration("p", "2");
    attributes_.AddDeclaration("", "1");
    EXPECT_EQ(Sorted(), (Entries{"xmlns=1", "xmlns:p=2", "xmlns:q=3", "a=4", "z=5", "p:a=6"}));
}

TEST_F(CanonicalAttributesTest, SortsAttributesOfUnboundPrefixesLikePlainOnes) {
    attributes_.AddAttribute("u", "c", "", scope_);
    attributes_.AddAttribute("", "b", "", scope_);
    attributes_.AddAttribute("xml", "a", "", scope_);
    EXPECT_EQ(Sorted(), (Entries{"xml:a=", "b=", "u:c="}));
}

TEST_F(CanonicalAttributesTest, SortsQualifiedAttributesByUri) {
    const std::string first = "urn:a";
    const std::string second = "urn:b";
    Bind("z", first);
    Bind("a", second);
    attributes_.AddAttribute("a", "x", "", scope_);
    attributes_.AddAttribute("z", "y", "", scope_);
    attributes_.AddAttribute("z", "x", "", scope_);
    EXPECT_EQ(Sorted(), (Entries{"z:x=", "z:y=", "a:x="}));
}

TEST_F(CanonicalAttributesTest, NeverBindsAnAttributeWithoutPrefix) {
    const std::string uri = "urn:default";
    Bind("", uri);
    attributes_.AddAttribute("u", "a", "", scope_);
    attributes_.AddAttribute("", "b", "", scope_);
    EXPECT_EQ(Sorted(), (Entries{"u:a=", "b="}));
}

TEST_F(CanonicalAttributesTest, KeepsTheOrderOfEqualKeys) {
    // Enough of them that a sort which does not care would show it.
    std::vector<std::string> prefixes;
    for (int i = 0; i != 100; ++i)
        prefixes.push_back("p" + std::to_string((i * 37) % 100));
    Entries expected;
    attributes_.AddAttribute("", "b", "last", scope_);
    for (const std::string& prefix : prefixes) {
        attributes_.AddAttribute(prefix, "a", "", scope_);
        expected.push_back(prefix + ":a=");
    }
    expected.push_back("b=last");
    EXPECT_EQ(Sorted(), expected);
}

TEST_F(CanonicalAttributesTest, ComparesBytesAsUnsigned) {
    attributes_.AddAttribute("", "\xC3\xA9", "2", scope_);
    attributes_.AddAttribute("", "z", "1", scope_);
    attributes_.AddDeclaration("\xC3\xA9", "u");
    attributes_.AddDeclaration("z", "u");
    EXPECT_EQ(Sorted(), (Entries{"xmlns:z=u", "xmlns:\xC3\xA9=u", "z=1", "\xC3\xA9=2"}));
}

TEST_F(CanonicalAttributesTest, IsEmptyAfterClear) {
    attributes_.AddAttribute("", "a", "", scope_);
    attributes_.AddDeclaration("", "u");
    EXPECT_EQ(attributes_.Size(), 2u);
    attributes_.Clear();
    EXPECT_EQ(attributes_.Size(), 0u);
    EXPECT_EQ(Sorted(), Entries());
}

TEST_F(CanonicalAttributesTest, TellsDeclarationsFromAttributes) {
    attributes_.AddDeclaration("", "u");
    attributes_.AddDeclaration("p", "u");
    attributes_.AddAttribute("", "p", "u", scope_);
    attributes_.AddAttribute("p", "xmlns", "u", scope_);
    EXPECT_TRUE(attributes_[0].IsDeclaration());
    EXPECT_TRUE(attributes_[1].IsDeclaration());
    EXPECT_FALSE(attributes_[2].IsDeclaration());
    EXPECT_FALSE(attributes_[3].IsDeclaration());
}

/// An entry next to the key by which it sorts, really put together.
struct KeyedEntry {
    std::string key;
    std::string written;
};

bool HasLesserBytes(const KeyedEntry& left, const KeyedEntry& right) {
    const auto less = [](char a, char b) {
        return static_cast<unsigned char>(a) < static_cast<unsigned char>(b);
    };
    return std::lexicographical_compare(left.key.begin(), left.key.end(), right.key.begin(),
                                        right.key.end(), less);
}

/// Names and URIs that are full of traps: blanks, empty texts, one the beginning of another.
const Entries kUris = {"",  " ",     "  ", "  p",  "  p ", " x",  "\x01",
                       "a", "a\xFF", "a ", "a a ", "a a",  "   ", "aa"};
const Entries kNames = {"", "a", " a", "aa", "a a", "p", "x", "\xFF", "\x01"};

TEST_F(CanonicalAttributesTest, OrdersAsThePutTogetherKeysDo) {
    Entries prefixes;
    for (std::size_t i = 0; i != kUris.size(); ++i)
        prefixes.push_back("n" + std::to_string(i));
    for (std::size_t i = 0; i != kUris.size(); ++i)
        Bind(prefixes[i].c_str(), kUris[i]);

    std::mt19937 random(20240817);
    for (int round = 0; round != 500; ++round) {
        std::vector<KeyedEntry> expected;
        attributes_.Clear();
        for (std::size_t count = random() % 20; count != 0; --count) {
            const std::string& name = kNames[random() % kNames.size()];
            const std::size_t chosen = random() % kUris.size();
            if (random() % 3 == 0) {
                attributes_.AddDeclaration(name, "u");
                expected.push_back(
                    {"  " + name, (name.empty() ? "xmlns" : "xmlns:" + name) + "=u"});
            } else {
                attributes_.AddAttribute(prefixes[chosen], name, "v", scope_);
                expected.push_back(
                    {kUris[chosen] + " " + name, prefixes[chosen] + ":" + name + "=v"});
            }
        }
        std::stable_sort(expected.begin(), expected.end(), HasLesserBytes);
        Entries written;
        for (const KeyedEntry& entry : expected)
            written.push_back(entry.written);
        ASSERT_EQ(Sorted(), written) << "round " << round;
    }
}

}  // namespace
}  // namespace Saml::Xml::Security
