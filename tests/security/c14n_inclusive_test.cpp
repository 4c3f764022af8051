#include "saml/security/c14n_inclusive.h"

#include "support/canonical_forms.h"

#include <gtest/gtest.h>

#include <string>

namespace Saml::Xml::Security {
namespace {

struct FormCase {
    const char* name;
    const char* text;
    const char* expected;
};
class InclusiveDeclarations : public testing::TestWithParam<FormCase> {};

TEST_P(InclusiveDeclarations, AreAllThatAreInScopeAndNotWrittenYet) {
    EXPECT_EQ(InclusiveForm(GetParam().text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    C14NInclusive, InclusiveDeclarations,
    testing::Values(
        FormCase{"OwnAndAttributePrefixes",
                 "<a:apex b:y='2' x='1' xmlns:b='urn:b' xmlns:a='urn:a'/>",
                 "<a:apex xmlns:a=\"urn:a\" xmlns:b=\"urn:b\" x=\"1\" b:y=\"2\"></a:apex>"},
        FormCase{"UnusedAndInherited",
                 "<r xmlns='urn:d' xmlns:c='urn:c'><m xmlns:e='urn:e'><apex/></m></r>",
                 "<apex xmlns=\"urn:d\" xmlns:c=\"urn:c\" xmlns:e=\"urn:e\"></apex>"},
        FormCase{"TheNearestOfThem", "<r xmlns:c='urn:far'><m xmlns:c='urn:near'><apex/></m></r>",
                 "<apex xmlns:c=\"urn:near\"></apex>"},
        FormCase{"TheOwnBeforeTheInherited",
                 "<r xmlns:c='urn:far'><m xmlns:c='urn:near'><apex xmlns:c='urn:own'/></m></r>",
                 "<apex xmlns:c=\"urn:own\"></apex>"},
        FormCase{"NotAgainWithTheSameUri", "<apex xmlns:c='urn:c'><x xmlns:c='urn:c'/></apex>",
                 "<apex xmlns:c=\"urn:c\"><x></x></apex>"},
        FormCase{"AgainWithAnotherUri",
                 "<apex xmlns:c='urn:c'><x xmlns:c='urn:d'><y/></x><z/></apex>",
                 "<apex xmlns:c=\"urn:c\"><x xmlns:c=\"urn:d\"><y></y></x><z></z></apex>"},
        FormCase{"AgainWithTheFirstUri",
                 "<apex xmlns:c='urn:c'><x xmlns:c='urn:d'><y xmlns:c='urn:c'/></x></apex>",
                 "<apex xmlns:c=\"urn:c\"><x xmlns:c=\"urn:d\"><y xmlns:c=\"urn:c\"></y></x>"
                 "</apex>"},
        FormCase{"OnEverySiblingThatDeclaresThem",
                 "<apex><x xmlns:c='urn:c'/><y xmlns:c='urn:c'/></apex>",
                 "<apex><x xmlns:c=\"urn:c\"></x><y xmlns:c=\"urn:c\"></y></apex>"},
        FormCase{"AnEmptyUriOfAPrefix", "<r xmlns:p='urn:p'><apex xmlns:p=''/></r>",
                 "<apex xmlns:p=\"\"></apex>"},
        FormCase{"XmlWhereItIsDeclared",
                 "<r xmlns:xml='http://www.w3.org/XML/1998/namespace'><apex/></r>",
                 "<apex xmlns:xml=\"http://www.w3.org/XML/1998/namespace\"></apex>"},
        FormCase{"NoneForUnboundPrefixes", "<u:apex v:x='1'/>", "<u:apex v:x=\"1\"></u:apex>"}),
    [](const auto& row) { return std::string(row.param.name); });

class InclusiveDefaultDeclarations : public testing::TestWithParam<FormCase> {};

TEST_P(InclusiveDefaultDeclarations, AreUndoneOnlyWhereTheOutputDeclaredThem) {
    EXPECT_EQ(InclusiveForm(GetParam().text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    C14NInclusive, InclusiveDefaultDeclarations,
    testing::Values(
        FormCase{"DeclaredForPrefixedElements", "<p:apex xmlns='urn:d' xmlns:p='urn:p'/>",
                 "<p:apex xmlns=\"urn:d\" xmlns:p=\"urn:p\"></p:apex>"},
        FormCase{"Undeclared", "<apex xmlns='urn:d'><p:x xmlns='' xmlns:p='urn:p'/></apex>",
                 "<apex xmlns=\"urn:d\"><p:x xmlns=\"\" xmlns:p=\"urn:p\"></p:x></apex>"},
        FormCase{"UndeclaredOnce", "<apex xmlns='urn:d'><x xmlns=''><y xmlns=''/></x></apex>",
                 "<apex xmlns=\"urn:d\"><x xmlns=\"\"><y></y></x></apex>"},
        FormCase{"DeclaredAgain", "<apex xmlns='urn:d'><x xmlns=''><y xmlns='urn:d'/></x></apex>",
                 "<apex xmlns=\"urn:d\"><x xmlns=\"\"><y xmlns=\"urn:d\"></y></x></apex>"},
        FormCase{"EmptyAtTheApex", "<r xmlns='urn:d'><apex xmlns=''/></r>", "<apex></apex>"},
        FormCase{"EmptyAboveTheApex", "<r xmlns='urn:d'><m xmlns=''><apex><x/></apex></m></r>",
                 "<apex><x></x></apex>"},
        FormCase{"EmptyAtTheApexAndDeclaredBelow",
                 "<apex xmlns=''><x xmlns='urn:d'><y xmlns=''/></x></apex>",
                 "<apex><x xmlns=\"urn:d\"><y xmlns=\"\"></y></x></apex>"},
        FormCase{"DeclaredByASiblingOnly", "<apex><x xmlns='urn:d'/><y xmlns=''/></apex>",
                 "<apex><x xmlns=\"urn:d\"></x><y></y></apex>"}),
    [](const auto& row) { return std::string(row.param.name); });

// Exclusive XML Canonicalization 1.0, section 2.2, says what Canonical XML 1.0 gives here. Its
// inherited xml:space is left out: attributes of ancestors are never carried onto the apex.
TEST(C14NInclusive, DependsOnTheEnvelope) {
    EXPECT_EQ(InclusiveForm("<n0:local xmlns:n0=\"http://foobar.org\"\n"
                            "          xmlns:n3=\"ftp://example.org\">\n"
                            "   <n1:apex xmlns:n1=\"http://example.net\"\n"
                            "            xml:lang=\"en\">\n"
                            "     <n3:stuff xmlns:n3=\"ftp://example.org\"/>\n"
                            "   </n1:apex>\n"
                            "</n0:local>"),
              "<n1:apex xmlns:n0=\"http://foobar.org\" xmlns:n1=\"http://example.net\" "
              "xmlns:n3=\"ftp://example.org\" xml:lang=\"en\">\n"
              "     <n3:stuff></n3:stuff>\n"
              "   </n1:apex>");
    EXPECT_EQ(InclusiveForm("<n2:pdu xmlns:n1=\"http://example.com\"\n"
                            "        xmlns:n2=\"http://foo.example\"\n"
                            "        xml:lang=\"fr\"\n"
                            "        xml:space=\"retain\">\n"
                            "   <n1:apex xmlns:n1=\"http://example.net\"\n"
                            "            xml:lang=\"en\">\n"
                            "     <n3:stuff xmlns:n3=\"ftp://example.org\"/>\n"
                            "   </n1:apex>\n"
                            "</n2:pdu>"),
              "<n1:apex xmlns:n1=\"http://example.net\" xmlns:n2=\"http://foo.example\" "
              "xml:lang=\"en\">\n"
              "     <n3:stuff xmlns:n3=\"ftp://example.org\"></n3:stuff>\n"
              "   </n1:apex>");
}

TEST(C14NInclusive, GivesNoXmlAttributeOfAnAncestorToTheApex) {
    EXPECT_EQ(InclusiveForm("<r xml:lang='en' xml:id='r' other='1'><apex/></r>"), "<apex></apex>");
}

// Canonical XML 1.0, example 3.2.
TEST(C14NInclusive, KeepsTheWhiteSpaceOfContent) {
    const std::string text =
        "<doc>\n"
        "   <clean>   </clean>\n"
        "   <dirty>   A   B   </dirty>\n"
        "   <mixed>\n"
        "      A\n"
        "      <clean>   </clean>\n"
        "      B\n"
        "      <dirty>   A   B   </dirty>\n"
        "      C\n"
        "   </mixed>\n"
        "</doc>";
    const Held<Document> document = Parsed(text);
    EXPECT_EQ(CanonicalForm(Algorithm::InclusiveC14N, *document->GetRootElement()), text);
}

// Canonical XML 1.0, example 3.3.
TEST(C14NInclusive, NormalisesStartAndEndTags) {
    const Held<Document> document = Parsed(
        "<!DOCTYPE doc [<!ATTLIST e9 attr CDATA \"default\">]>\n"
        "<doc>\n"
        "   <e1   />\n"
        "   <e2   ></e2>\n"
        "   <e3   name = \"elem3\"   id=\"elem3\"   />\n"
        "   <e4   name=\"elem4\"   id=\"elem4\"   ></e4>\n"
        "   <e5 a:attr=\"out\" b:attr=\"sorted\" attr2=\"all\" attr=\"I'm\"\n"
        "      xmlns:b=\"http://www.ietf.org\"\n"
        "      xmlns:a=\"http://www.w3.org\"\n"
        "      xmlns=\"http://example.org\"/>\n"
        "   <e6 xmlns=\"\" xmlns:a=\"http://www.w3.org\">\n"
        "      <e7 xmlns=\"http://www.ietf.org\">\n"
        "         <e8 xmlns=\"\" xmlns:a=\"http://www.w3.org\">\n"
        "            <e9 xmlns=\"\" xmlns:a=\"http://www.ietf.org\"/>\n"
        "         </e8>\n"
        "      </e7>\n"
        "   </e6>\n"
        "</doc>");
    EXPECT_EQ(CanonicalForm(Algorithm::InclusiveC14N, *document->GetRootElement()),
              "<doc>\n"
              "   <e1></e1>\n"
              "   <e2></e2>\n"
              "   <e3 id=\"elem3\" name=\"elem3\"></e3>\n"
              "   <e4 id=\"elem4\" name=\"elem4\"></e4>\n"
              "   <e5 xmlns=\"http://example.org\" xmlns:a=\"http://www.w3.org\" "
              "xmlns:b=\"http://www.ietf.org\" attr=\"I'm\" attr2=\"all\" b:attr=\"sorted\" "
              "a:attr=\"out\"></e5>\n"
              "   <e6 xmlns:a=\"http://www.w3.org\">\n"
              "      <e7 xmlns=\"http://www.ietf.org\">\n"
              "         <e8 xmlns=\"\">\n"
              "            <e9 xmlns:a=\"http://www.ietf.org\" attr=\"default\"></e9>\n"
              "         </e8>\n"
              "      </e7>\n"
              "   </e6>\n"
              "</doc>");
}

// Canonical XML 1.0, example 3.4, with two differences on purpose: the CDATA section leaves
// nothing, and ">" is escaped in attribute values, too.
TEST(C14NInclusive, ResolvesCharacterReferencesAndNormalisesAttributes) {
    const Held<Document> document = Parsed(
        "<!DOCTYPE doc [\n"
        "<!ATTLIST normId id ID #IMPLIED>\n"
        "<!ATTLIST normNames attr NMTOKENS #IMPLIED>\n"
        "]>\n"
        "<doc>\n"
        "   <text>First line&#x0d;&#10;Second line</text>\n"
        "   <value>&#x32;</value>\n"
        "   <compute><![CDATA[value>\"0\" && value<\"10\" ?\"valid\":\"error\"]]></compute>\n"
        "   <compute expr='value>\"0\" &amp;&amp; value&lt;\"10\" ?\"valid\":\"error\"'>valid"
        "</compute>\n"
        "   <norm attr=' &apos;   &#x20;&#13;&#xa;&#9;   &apos; '/>\n"
        "   <normNames attr='   A   &#x20;&#13;&#xa;&#9;   B   '/>\n"
        "   <normId id=' &apos;   &#x20;&#13;&#xa;&#9;   &apos; '/>\n"
        "</doc>");
    EXPECT_EQ(CanonicalForm(Algorithm::InclusiveC14N, *document->GetRootElement()),
              "<doc>\n"
              "   <text>First line&#xD;\nSecond line</text>\n"
              "   <value>2</value>\n"
              "   <compute></compute>\n"
              "   <compute expr=\"value&gt;&quot;0&quot; &amp;&amp; value&lt;&quot;10&quot; "
              "?&quot;valid&quot;:&quot;error&quot;\">valid</compute>\n"
              "   <norm attr=\" '    &#xD;&#xA;&#x9;   ' \"></norm>\n"
              "   <normNames attr=\"A &#xD;&#xA;&#x9; B\"></normNames>\n"
              "   <normId id=\"' &#xD;&#xA;&#x9; '\"></normId>\n"
              "</doc>");
}

// Canonical XML 1.0, example 3.6.
TEST(C14NInclusive, WritesUtf8) {
    const Held<Document> document =
        Parsed("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><doc>&#169;</doc>");
    EXPECT_EQ(CanonicalForm(Algorithm::InclusiveC14N, *document->GetRootElement()),
              "<doc>\xC2\xA9</doc>");
}

}  // namespace
}  // namespace Saml::Xml::Security
