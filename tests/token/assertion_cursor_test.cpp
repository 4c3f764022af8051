#include "saml/token/assertion_cursor.h"

#include "saml/token/saml_identifiers.h"
#include "support/thrown.h"
#include "token/fragment.h"

#include <gtest/gtest.h>

namespace {

using namespace Saml;
using namespace std::string_literals;

constexpr char kAssertion[] = "urn:oasis:names:tc:SAML:2.0:assertion";

// --- The element test

TEST(ElementTest, AcceptsTheNameInTheNamespaceWhateverThePrefix) {
    for (const std::string xml :
         {"<saml:Issuer/>", "<a:Issuer xmlns:a='urn:oasis:names:tc:SAML:2.0:assertion'/>",
          "<Issuer xmlns='urn:oasis:names:tc:SAML:2.0:assertion'/>"}) {
        const Fragment fragment(xml);
        EXPECT_NO_THROW(fragment.Element().Expect("Issuer", kAssertion)) << xml;
        EXPECT_TRUE(fragment.Element().Is("Issuer", kAssertion)) << xml;
    }
}

TEST(ElementTest, NamesTheExpectedElementWhenTheLocalNameDiffers) {
    const Fragment fragment("<saml:issuer/>");
    EXPECT_FALSE(fragment.Element().Is("Issuer", kAssertion));
    EXPECT_EQ(MessageOf<ParseException>([&] { fragment.Element().Expect("Issuer", kAssertion); }),
              "Expected element 'Issuer' not found.");
}

TEST(ElementTest, DoesNotNameTheNamespaceThatItRefuses) {
    for (const std::string xml : {"<other:Issuer/>", "<Issuer/>", "<unbound:Issuer/>",
                                  "<saml:Issuer xmlns:saml='urn:example:nearer'/>"}) {
        const Fragment fragment(xml);
        EXPECT_FALSE(fragment.Element().Is("Issuer", kAssertion)) << xml;
        EXPECT_EQ(
            MessageOf<ParseException>([&] { fragment.Element().Expect("Issuer", kAssertion); }),
            "Element 'Issuer' has unexpected namespace")
            << xml;
    }
}

// --- Walking children

TEST(Children, SkipBlanksAndCommentsAndComeInDocumentOrder) {
    const Fragment fragment("<saml:S> \t\r\n<!--c--><saml:A/> <!----> <saml:B/><!--d--> </saml:S>");
    AssertionCursor children = fragment.Element().Children();
    EXPECT_EQ(children.Take("A", kAssertion).LocalName(), "A");
    EXPECT_FALSE(children.AtEnd());
    EXPECT_EQ(children.Take("B", kAssertion).LocalName(), "B");
    EXPECT_TRUE(children.AtEnd());
    EXPECT_NO_THROW(children.ExpectEnd("left"));
}

TEST(Children, AtTheirEndHaveNoElement) {
    const Fragment fragment("<saml:S/>");
    AssertionCursor children = fragment.Element().Children();
    EXPECT_TRUE(children.AtEnd());
    EXPECT_FALSE(children.TakeElement().has_value());
    EXPECT_FALSE(children.TakeIf("A", kAssertion).has_value());
    EXPECT_EQ(MessageOf<ParseException>([&] { children.Take("A", kAssertion); }),
              "Expected element 'A' not found.");
}

TEST(Children, ThatAreNoElementsFailTheElementTest) {
    for (const std::string xml :
         {"<saml:S>text<saml:A/></saml:S>", "<saml:S><![CDATA[]]><saml:A/></saml:S>",
          "<saml:S><![CDATA[ ]]><saml:A/></saml:S>"}) {
        const Fragment fragment(xml);
        AssertionCursor children = fragment.Element().Children();
        EXPECT_FALSE(children.AtEnd()) << xml;
        EXPECT_FALSE(children.TakeElement().has_value()) << xml;
        EXPECT_FALSE(children.TakeIf("A", kAssertion).has_value()) << xml;
        EXPECT_EQ(MessageOf<ParseException>([&] { children.Take("A", kAssertion); }),
                  "Expected element 'A' not found.")
            << xml;
    }
}

TEST(Children, StayWhereTheyAreWhenAnOptionalOneIsMissing) {
    const Fragment fragment("<saml:S><other:A/><saml:A/></saml:S>");
    AssertionCursor children = fragment.Element().Children();
    EXPECT_FALSE(children.TakeIf("B", kAssertion).has_value());
    EXPECT_FALSE(children.TakeIf("A", kAssertion).has_value());
    EXPECT_EQ(MessageOf<ParseException>([&] { children.Take("A", kAssertion); }),
              "Element 'A' has unexpected namespace");
    EXPECT_TRUE(children.TakeElement()->Is("A", "urn:example:other"));
    EXPECT_TRUE(children.TakeIf("A", kAssertion)->Is("A", kAssertion));
    EXPECT_TRUE(children.AtEnd());
}

TEST(Children, MarkedAsNilAreReadLikeAnyOther) {
    const Fragment fragment("<saml:S><saml:A xsi:nil='true'/></saml:S>");
    AssertionCursor children = fragment.Element().Children();
    EXPECT_FALSE(children.AtEnd());
    EXPECT_TRUE(children.TakeIf("A", kAssertion).has_value());
}

TEST(Children, LeftOverAreRefusedInTheWordsOfTheRule) {
    for (const std::string xml :
         {"<saml:S><saml:A/></saml:S>", "<saml:S>x</saml:S>", "<saml:S><![CDATA[]]></saml:S>"}) {
        const Fragment fragment(xml);
        EXPECT_EQ(MessageOf<ParseException>(
                      [&] { fragment.Element().Children().ExpectEnd("Something is left"); }),
                  "Something is left")
            << xml;
    }
}

// --- The attribute rule

TEST(AttributeRule, AllowsTheListedOnesAndNamespaceDeclarations) {
    const Fragment fragment("<saml:E a='1' b='2' xmlns='urn:x' xmlns:ds='urn:y' xmlns:z='urn:z'/>");
    EXPECT_NO_THROW(fragment.Element().CheckAttributes({"a"}, {"b", "c"}));
    EXPECT_NO_THROW(fragment.Element().CheckAttributes({"a", "b"}));
    EXPECT_NO_THROW(fragment.Element().CheckAttributes({}, {"a", "b"}));
}

TEST(AttributeRule, NamesTheFirstMissingOneInTheOrderOfTheList) {
    const Fragment fragment("<saml:E b='2' unexpected='1'/>");
    EXPECT_EQ(MessageOf<ParseException>([&] {
                  fragment.Element().CheckAttributes({"b", "z", "a"});
              }),
              "Node 'E is missing required attribute 'z'");
}

TEST(AttributeRule, DoesNotNameTheUnexpectedOne) {
    for (const std::string attribute : {"c='1'", "A='1'", "xsi:type='t'", "saml:a='1'",
                                        "xml:lang='en'", "XMLNS='u'", "xmlnsx='u'"}) {
        const Fragment fragment("<saml:E a='1' " + attribute + "/>");
        EXPECT_EQ(
            MessageOf<ParseException>([&] { fragment.Element().CheckAttributes({"a"}, {"b"}); }),
            "Unexpected attributes on element 'E'")
            << attribute;
    }
}

TEST(TypedAttributeRule, FindsTheTypeByItsNamespaceWhateverThePrefix) {
    for (const std::string attribute :
         {"xsi:type='t'", "x:type='t' xmlns:x='http://www.w3.org/2001/XMLSchema-instance'"}) {
        const Fragment fragment("<saml:E Count='1' " + attribute + "/>");
        EXPECT_NO_THROW(fragment.Element().CheckTypedAttributes({"Count"})) << attribute;
        EXPECT_EQ(fragment.Element().TypeAsWritten(), "t") << attribute;
    }
}

TEST(TypedAttributeRule, CallsAMissingTypeByItsUsualName) {
    for (const std::string attribute :
         {"", "type='t'", "other:type='t'", "unbound:type='t'", "xsi:Type='t'", "unexpected='1'",
          "xsi:type='t' xmlns:xsi='urn:example:nearer'",
          "type='t' xmlns='http://www.w3.org/2001/XMLSchema-instance'"}) {
        const Fragment fragment("<saml:E " + attribute + "/>");
        EXPECT_EQ(MessageOf<ParseException>([&] { fragment.Element().CheckTypedAttributes(); }),
                  "Node 'E is missing required attribute 'xsi:type'")
            << attribute;
        EXPECT_EQ(fragment.Element().TypeAsWritten(), "") << attribute;
        EXPECT_FALSE(fragment.Element().HasType("t", "")) << attribute;
    }
}

TEST(TypedAttributeRule, NeverTakesADeclarationForTheType) {
    const Fragment fragment(
        "<saml:E xmlns:xmlns='http://www.w3.org/2001/XMLSchema-instance' xmlns:type='t'/>");
    EXPECT_EQ(MessageOf<ParseException>([&] { fragment.Element().CheckTypedAttributes(); }),
              "Node 'E is missing required attribute 'xsi:type'");
}

TEST(TypedAttributeRule, NamesTheFirstUnexpectedOneAsWritten) {
    const Fragment fragment(
        "<saml:E xsi:type='t' Count='1' xmlns:q='urn:q' other:Count='2' z='3'/>");
    EXPECT_EQ(
        MessageOf<ParseException>([&] { fragment.Element().CheckTypedAttributes({"Count"}); }),
        "Unexpected attribute 'other:Count' on element 'E'");
    EXPECT_EQ(MessageOf<ParseException>([&] { fragment.Element().CheckTypedAttributes(); }),
              "Unexpected attribute 'Count' on element 'E'");
}

TEST(TypedAttributeRule, RefusesASecondTypeThatNobodyWouldRead) {
    const Fragment fragment(
        "<saml:E xsi:type='t' x:type='u' xmlns:x='http://www.w3.org/2001/XMLSchema-instance'/>");
    EXPECT_EQ(MessageOf<ParseException>([&] { fragment.Element().CheckTypedAttributes(); }),
              "Unexpected attribute 'xsi:type' on element 'E'");
}

// --- Values of attributes

TEST(AttributeOfAnElement, IsEmptyWhenAbsent) {
    const Fragment fragment("<saml:E a='x &lt; y'/>");
    EXPECT_EQ(fragment.Element().Attribute("a"), "x < y");
    EXPECT_EQ(fragment.Element().Attribute("b"), "");
    EXPECT_TRUE(fragment.Element().HasAttribute("a"));
    EXPECT_FALSE(fragment.Element().HasAttribute("b"));
}

TEST(DateAttribute, KeepsItsTextAndGivesItsSeconds) {
    const Fragment fragment("<saml:E At='2020-02-29T12:00:00Z'/>");
    DateTime date = fragment.Element().Date("At");
    EXPECT_EQ(date.value(), "2020-02-29T12:00:00Z");
    EXPECT_EQ(date.timeT(), 1582977600);
}

TEST(DateAttribute, IsRefusedWhenAbsentOrNoDate) {
    for (const std::string attribute :
         {"", "At=''", "At='2019-02-29T12:00:00Z'", "At=' 2020-02-29T12:00:00Z'",
          "At='2020-02-29T12:00:00+00:00'", "At='1000-01-01T00:00:00Z'"}) {
        const Fragment fragment("<saml:Conditions " + attribute + "/>");
        EXPECT_EQ(MessageOf<ParseException>([&] { fragment.Element().Date("At"); }),
                  "Conditions/@At is not a date")
            << attribute;
    }
}

struct CountCase {
    const char* name;
    const char* text;
    std::uint64_t expected;
};
class Count : public testing::TestWithParam<CountCase> {};

TEST_P(Count, IsReadAsASignedNumberThatIsNotNegative) {
    const Fragment fragment("<saml:E Count='"s + GetParam().text + "'/>");
    EXPECT_EQ(fragment.Element().Count(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    AssertionCursor, Count,
    testing::Values(CountCase{"Zero", "0", 0}, CountCase{"One", "1", 1},
                    CountCase{"PlusSign", "+1", 1}, CountCase{"MinusZero", "-0", 0},
                    CountCase{"LeadingZeros", "007", 7},
                    CountCase{"LargestSigned64", "9223372036854775807", 9223372036854775807U}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(CountAttribute, MayBeAbsent) {
    EXPECT_FALSE(Fragment("<saml:E/>").Element().Count().has_value());
}

TEST(CountAttribute, RefusesEverythingElse) {
    for (const std::string text :
         {"", " ", "abc", "-1", " 1", "1 ", "1.0", "1e3", "0x10", "--1", "+", "1,000",
          "-9223372036854775808", "9223372036854775808", "18446744073709551615", "\xd9\xa1"}) {
        const Fragment fragment("<saml:ProxyRestriction Count='" + text + "'/>");
        EXPECT_EQ(MessageOf<ParseException>([&] { fragment.Element().Count(); }),
                  "ProxyRestriction/@Count is not a non-negative integer.")
            << text;
    }
}

// --- xsi:type

TEST(TypeOfAnElement, IsAQualifiedNameResolvedByTheDeclarationsInScope) {
    for (const std::string attributes :
         {"xsi:type='saml:T'", "xsi:type='a:T' xmlns:a='urn:oasis:names:tc:SAML:2.0:assertion'",
          "xsi:type='T' xmlns='urn:oasis:names:tc:SAML:2.0:assertion'"}) {
        const Fragment fragment("<saml:E " + attributes + "/>");
        EXPECT_TRUE(fragment.Element().HasType("T", kAssertion)) << attributes;
    }
}

TEST(TypeOfAnElement, DiffersByLocalNameNamespaceAndBlanks) {
    for (const std::string attributes :
         {"xsi:type='saml:U'", "xsi:type='saml:t'", "xsi:type='other:T'", "xsi:type='unbound:T'",
          "xsi:type='T'", "xsi:type='T' xmlns='urn:example:other'", "xsi:type=' saml:T'",
          "xsi:type='saml:T '", "xsi:type=''", "xsi:type='saml:'", "xsi:type='saml:saml:T'",
          "xsi:type='saml:T' xmlns:saml='urn:example:nearer'", ""}) {
        const Fragment fragment("<saml:E " + attributes + "/>");
        EXPECT_FALSE(fragment.Element().HasType("T", kAssertion)) << attributes;
    }
}

// --- Content

TEST(TextRule, GivesTheOneTextAsItIs) {
    EXPECT_EQ(Fragment("<saml:E> a &amp;\tb\n</saml:E>").Element().Text(), " a &\tb\n");
    EXPECT_EQ(Fragment("<saml:E><!--c-->a<!--d--></saml:E>").Element().Text(), "a");
}

TEST(TextRule, NeverJoinsTextsAndTakesNothingElse) {
    for (const std::string content :
         {"", " ", "<!--c-->", "admin<!-- -->.evil", "<saml:A/>", "a<saml:A/>", "<saml:A/>a",
          "<![CDATA[a]]>", "a<![CDATA[]]>", "<![CDATA[a]]>b", "a<saml:A/>b", " <!-- -->admin",
          "admin<!-- -->\n", "<!-- --> <!-- -->admin"}) {
        const Fragment fragment("<saml:E>" + content + "</saml:E>");
        EXPECT_EQ(MessageOf<ParseException>([&] { fragment.Element().Text(); }),
                  "Element 'E' must only have textual content (but has extra children or is "
                  "empty).")
            << content;
    }
}

TEST(EmptyRule, TakesBlanksAndCommentsForNothing) {
    for (const std::string content : {"", " \t\r\n", "<!--c-->", " <!--c--> <!--d--> "}) {
        const Fragment fragment("<saml:E>" + content + "</saml:E>");
        EXPECT_TRUE(fragment.Element().IsEmpty()) << content;
        EXPECT_NO_THROW(fragment.Element().ExpectEmpty()) << content;
    }
}

TEST(EmptyRule, RefusesEverythingElse) {
    for (const std::string content : {"x", "<saml:A/>", "<![CDATA[]]>", "\xc2\xa0"}) {
        const Fragment fragment("<saml:E>" + content + "</saml:E>");
        EXPECT_FALSE(fragment.Element().IsEmpty()) << content;
        EXPECT_EQ(MessageOf<ParseException>([&] { fragment.Element().ExpectEmpty(); }),
                  "Element 'E' must be empty")
            << content;
    }
}

}  // namespace
