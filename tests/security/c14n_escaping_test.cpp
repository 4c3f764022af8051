#include "saml/security/c14n_canonicalizer.h"
#include "support/canonical_forms.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace Saml::Xml::Security {
namespace {

/// What each byte that is not written as it is becomes; Canonical XML 1.0 has no ">" in the second.
const std::map<char, std::string> kOfText = {
    {'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'\r', "&#xD;"}};
const std::map<char, std::string> kOfAttributes = {
    {'&', "&amp;"},  {'<', "&lt;"},   {'>', "&gt;"},  {'"', "&quot;"},
    {'\t', "&#x9;"}, {'\n', "&#xA;"}, {'\r', "&#xD;"}};

std::string Escaped(const std::string& bytes, const std::map<char, std::string>& replacements) {
    std::string escaped;
    for (const char byte : bytes) {
        const auto replacement = replacements.find(byte);
        escaped += replacement != replacements.end() ? replacement->second : std::string(1, byte);
    }
    return escaped;
}

std::string FormOfText(const std::string& text) {
    const Held<ElementNode> apex = NewElement("a");
    apex->AppendChild(NewText(text).get());
    return CanonicalForm(Algorithm::ExclusiveC14N, *apex);
}

std::string FormOfAttribute(const std::string& name, const std::string& value) {
    const Held<ElementNode> apex = NewElement("a");
    apex->SetAttribute(name, value);
    return CanonicalForm(Algorithm::InclusiveC14N, *apex);
}

TEST(C14NEscaping, ReplacesFourBytesOfText) {
    for (int value = 0; value != 256; ++value) {
        const std::string byte(1, static_cast<char>(value));
        EXPECT_EQ(FormOfText("x" + byte + "y"), "<a>x" + Escaped(byte, kOfText) + "y</a>") << value;
    }
}

TEST(C14NEscaping, ReplacesSevenBytesOfAttributeValues) {
    for (int value = 0; value != 256; ++value) {
        const std::string byte(1, static_cast<char>(value));
        EXPECT_EQ(FormOfAttribute("n", "x" + byte + "y"),
                  "<a n=\"x" + Escaped(byte, kOfAttributes) + "y\"></a>")
            << value;
    }
}

TEST(C14NEscaping, TreatsDeclaredUrisAsAttributeValues) {
    EXPECT_EQ(FormOfAttribute("xmlns:p", "u\"&<>\t\n\r'"),
              "<a xmlns:p=\"u&quot;&amp;&lt;&gt;&#x9;&#xA;&#xD;'\"></a>");
    EXPECT_EQ(FormOfAttribute("xmlns", "u>v"), "<a xmlns=\"u&gt;v\"></a>");
}

TEST(C14NEscaping, ReplacesNothingInNames) {
    const Held<ElementNode> apex = NewElement("a&b");
    apex->SetAttribute("c<d", "");
    EXPECT_EQ(CanonicalForm(Algorithm::ExclusiveC14N, *apex), "<a&b c<d=\"\"></a&b>");
}

TEST(C14NEscaping, ReplacesEveryOccurrenceAndNothingTwice) {
    EXPECT_EQ(FormOfText("&&amp;<<>>\r\n\r\n"),
              "<a>&amp;&amp;amp;&lt;&lt;&gt;&gt;&#xD;\n&#xD;\n</a>");
    EXPECT_EQ(FormOfAttribute("n", "\t\t&quot;\""), "<a n=\"&#x9;&#x9;&amp;quot;&quot;\"></a>");
}

TEST(C14NEscaping, WritesEmptyValuesAndTexts) {
    EXPECT_EQ(FormOfText(""), "<a></a>");
    EXPECT_EQ(FormOfAttribute("n", ""), "<a n=\"\"></a>");
}

TEST(C14NEscaping, LeavesMultiByteCharactersWhole) {
    const std::string text = "\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x94\x91";
    EXPECT_EQ(FormOfText(text), "<a>" + text + "</a>");
    EXPECT_EQ(FormOfAttribute("n", text), "<a n=\"" + text + "\"></a>");
}

TEST(C14NEscaping, WritesTextsLongerThanTheOutputGathers) {
    // Longer than one gathered write, with and without replacements, beginning at any place of it.
    for (const std::size_t length : {65535u, 65536u, 65537u, 200000u}) {
        const std::string plain(length, 'x');
        EXPECT_TRUE(FormOfText(plain) == "<a>" + plain + "</a>") << length;
        const std::string marked = plain + "&" + plain + ">";
        EXPECT_TRUE(FormOfText(marked) == "<a>" + plain + "&amp;" + plain + "&gt;</a>") << length;
        const std::string replaced(length, '<');
        EXPECT_TRUE(FormOfText(replaced) == "<a>" + Escaped(replaced, kOfText) + "</a>") << length;
    }
}

}  // namespace
}  // namespace Saml::Xml::Security
