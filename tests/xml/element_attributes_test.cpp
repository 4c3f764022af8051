#include "saml/xml/element_attributes.h"

#include "support/xml_trees.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <map>
#include <new>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace Saml::Xml {
namespace {

using Texts = std::vector<std::pair<std::string, std::string>>;

/// Attributes as a parser reports them; each text is gone before they are read.
ElementAttributes Filled(const Texts& texts, NodePool& pool) {
    const Texts copy = texts;
    std::vector<Attribute> reported;
    for (const auto& [name, value] : copy)
        reported.push_back({name, value});
    ElementAttributes attributes;
    attributes.Fill(reported, pool);
    return attributes;
}

Texts Shown(const ElementAttributes& attributes) {
    Texts texts;
    for (const auto& [name, value] : attributes)
        texts.emplace_back(name, value);
    return texts;
}

void ExpectSame(const ElementAttributes& attributes,
                const std::map<std::string, std::string>& expected) {
    EXPECT_EQ(Shown(attributes), Texts(expected.begin(), expected.end()));
    EXPECT_EQ(attributes.IsEmpty(), expected.empty());
    for (const auto& [name, value] : expected)
        EXPECT_EQ(attributes.Find(name), value);
}

TEST(ElementAttributes, AreNoneAtFirst) {
    ElementAttributes attributes;
    ExpectSame(attributes, {});
    EXPECT_EQ(attributes.Find(""), std::nullopt);
    EXPECT_FALSE(attributes.Remove("a"));
}

TEST(ElementAttributes, StandInTheByteOrderOfTheirNames) {
    NodePool pool;
    const Texts reported = {{"b", "2"}, {"", "empty"}, {"\xC3\xA4", "4"}, {"B", ""}, {"ab", "1"}};
    ExpectSame(Filled(reported, pool), {reported.begin(), reported.end()});
}

// A parser reports no name twice; whoever calls a handler may.
TEST(ElementAttributes, KeepTheLastOfOneName) {
    NodePool pool;
    const ElementAttributes attributes =
        Filled({{"b", "first"}, {"a", "1"}, {"b", "second"}, {"c", "3"}, {"b", "last"}}, pool);
    ExpectSame(attributes, {{"a", "1"}, {"b", "last"}, {"c", "3"}});
}

TEST(ElementAttributes, AreFoundHoweverManyThereAre) {
    NodePool pool;
    for (std::size_t count = 1; count != 40; ++count) {
        Texts reported;
        for (std::size_t i = 0; i != count; ++i)
            reported.emplace_back(std::string(1 + i % 3, static_cast<char>('!' + i)),
                                  std::to_string(i));
        const ElementAttributes attributes = Filled(reported, pool);
        ExpectSame(attributes, {reported.begin(), reported.end()});
        for (const auto& [name, value] : reported) {
            EXPECT_EQ(attributes.Find(name + "+"), std::nullopt);
            EXPECT_EQ(attributes.Find(name.substr(1) + " "), std::nullopt);
        }
    }
}

TEST(ElementAttributes, HoldTextsOfAnyLength) {
    NodePool pool;
    const std::string longer(200000, 'x');
    const Texts reported = {{"a", longer}, {longer, "b"}, {"c", std::string("\0\0", 2)}, {"d", ""}};
    const ElementAttributes attributes = Filled(reported, pool);
    ExpectSame(attributes, {reported.begin(), reported.end()});
    ASSERT_TRUE(attributes.Find("d"));
}

TEST(ElementAttributes, OutliveTheirPool) {
    ElementAttributes attributes;
    {
        NodePool pool;
        attributes = Filled({{"a", "1"}, {"b", "2"}}, pool);
    }
    ExpectSame(attributes, {{"a", "1"}, {"b", "2"}});
}

TEST(ElementAttributes, AreChangedLikeAMap) {
    std::mt19937 random(20261122);
    for (int round = 0; round != 50; ++round) {
        NodePool pool;
        Texts reported;
        for (auto i = random() % 12; i != 0; --i)
            reported.emplace_back("n" + std::to_string(i * 7 % 12), std::to_string(random()));
        ElementAttributes attributes;
        if (!reported.empty()) attributes = Filled(reported, pool);
        std::map<std::string, std::string> model(reported.begin(), reported.end());
        for (int step = 0; step != 30; ++step) {
            const std::string name = "n" + std::to_string(random() % 14);
            if (random() % 3 == 0) {
                EXPECT_EQ(attributes.Remove(name), model.erase(name) != 0);
            } else {
                const std::string value(random() % 40, 'v');
                attributes.Set(name, value);
                model[name] = value;
            }
            ExpectSame(attributes, model);
        }
    }
}

// Whoever writes a tree may be called while it does.
TEST(ElementAttributes, AreReadOnAsReportedWhileTheyAreChanged) {
    NodePool pool;
    ElementAttributes attributes =
        Filled({{"a", std::string(3000, '1')}, {"b", "2"}, {"c", "3"}}, pool);
    Texts seen;
    for (const auto& [name, value] : attributes) {
        attributes.Set("b", "changed");
        attributes.Set("n" + std::to_string(seen.size()), "new");
        attributes.Remove("c");
        seen.emplace_back(name, value);
    }
    EXPECT_EQ(seen, (Texts{{"a", std::string(3000, '1')}, {"b", "2"}, {"c", "3"}}));
    EXPECT_EQ(attributes.Find("b"), "changed");
    EXPECT_EQ(attributes.Find("c"), std::nullopt);
}

TEST(ElementAttributes, AreLeftInTheirBlockByARemovalOfNothing) {
    NodePool pool;
    ElementAttributes attributes = Filled({{"a", "1"}}, pool);
    const char* const before = attributes.Find("a")->data();
    EXPECT_FALSE(attributes.Remove("b"));
    EXPECT_EQ(attributes.Find("a")->data(), before);
}

// A handler may be given one text any number of times: nobody has them all in memory.
TEST(ElementAttributes, LongerThanMemoryAreRefused) {
    NodePool pool;
    constexpr char names[] = "abcdefgh";
    const std::size_t huge = std::numeric_limits<std::ptrdiff_t>::max() / 3;
    ElementAttributes attributes;
    for (const int times : {2, 3, 8}) {
        std::vector<Attribute> reported;
        for (int i = 0; i != times; ++i)
            reported.push_back({{&names[i], 1}, {&names[0], huge}});
        EXPECT_THROW(attributes.Fill(reported, pool), std::bad_alloc);
    }
    EXPECT_TRUE(attributes.IsEmpty());
}

TEST(ElementAttributes, OfAParsedElementAreReadAndChanged) {
    const Held<Document> document = Parsed("<e z='1' a='&lt;2&gt;' m=' 3 '/>");
    ElementNode& element = *document->GetRootElement();
    std::map<std::string, std::string> all;
    element.GetAttributes(all);
    EXPECT_EQ(all, (std::map<std::string, std::string>{{"a", "<2>"}, {"m", " 3 "}, {"z", "1"}}));
    element.SetAttribute("m", "4");
    element.SetAttribute("b", "5");
    EXPECT_TRUE(element.RemoveAttribute("z"));
    element.GetAttributes(all);
    EXPECT_EQ(all, (std::map<std::string, std::string>{{"a", "<2>"}, {"b", "5"}, {"m", "4"}}));
}

}  // namespace
}  // namespace Saml::Xml
