#include "saml/security/c14n_exclusive.h"

#include "support/canonical_forms.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace Saml::Xml::Security {
namespace {

struct FormCase {
    const char* name;
    const char* text;
    const char* expected;
};
class ExclusiveDeclarations : public testing::TestWithParam<FormCase> {};

TEST_P(ExclusiveDeclarations, AreThoseThatTheElementUses) {
    EXPECT_EQ(ExclusiveForm(GetParam().text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    C14NExclusive, ExclusiveDeclarations,
    testing::Values(
        FormCase{"OwnAndAttributePrefixes",
                 "<a:apex b:y='2' x='1' xmlns:b='urn:b' xmlns:a='urn:a'/>",
                 "<a:apex xmlns:a=\"urn:a\" xmlns:b=\"urn:b\" x=\"1\" b:y=\"2\"></a:apex>"},
        FormCase{"NothingForPrefixesThatNobodyUses",
                 "<r xmlns:c='urn:c'><apex xmlns:d='urn:d'/></r>", "<apex></apex>"},
        FormCase{"InheritedOnes", "<r xmlns='urn:d' xmlns:c='urn:c'><m><apex c:x='1'/></m></r>",
                 "<apex xmlns=\"urn:d\" xmlns:c=\"urn:c\" c:x=\"1\"></apex>"},
        FormCase{"TheNearestInherited",
                 "<r xmlns:c='urn:far'><m xmlns:c='urn:near'><c:apex/></m></r>",
                 "<c:apex xmlns:c=\"urn:near\"></c:apex>"},
        FormCase{"TheOwnBeforeTheInherited", "<r xmlns:c='urn:far'><c:apex xmlns:c='urn:own'/></r>",
                 "<c:apex xmlns:c=\"urn:own\"></c:apex>"},
        FormCase{"OnTheElementBelowThatUsesThem",
                 "<apex xmlns:c='urn:c'><m><c:x/><c:y/></m></apex>",
                 "<apex><m><c:x xmlns:c=\"urn:c\"></c:x><c:y xmlns:c=\"urn:c\"></c:y></m></apex>"},
        FormCase{"OnceOnAPath", "<c:apex xmlns:c='urn:c'><m><c:x c:y=''/></m></c:apex>",
                 "<c:apex xmlns:c=\"urn:c\"><m><c:x c:y=\"\"></c:x></m></c:apex>"},
        FormCase{"NotAgainWithTheSameUri",
                 "<c:apex xmlns:c='urn:c'><c:x xmlns:c='urn:c'/></c:apex>",
                 "<c:apex xmlns:c=\"urn:c\"><c:x></c:x></c:apex>"},
        FormCase{"AgainWithAnotherUri",
                 "<c:apex xmlns:c='urn:c'><c:x xmlns:c='urn:d'/><c:y/></c:apex>",
                 "<c:apex xmlns:c=\"urn:c\"><c:x xmlns:c=\"urn:d\"></c:x><c:y></c:y></c:apex>"},
        FormCase{"NotAgainBelowAnUnusedChange",
                 "<c:apex xmlns:c='urn:c'><m xmlns:c='urn:d'><c:x xmlns:c='urn:c'/></m></c:apex>",
                 "<c:apex xmlns:c=\"urn:c\"><m><c:x></c:x></m></c:apex>"},
        FormCase{"AgainBelowAnUnusedChange",
                 "<c:apex xmlns:c='urn:c'><m xmlns:c='urn:d'><c:x/></m></c:apex>",
                 "<c:apex xmlns:c=\"urn:c\"><m><c:x xmlns:c=\"urn:d\"></c:x></m></c:apex>"},
        FormCase{"OnlyOnceForSeveralAttributes", "<apex xmlns:c='urn:c' c:z='3' c:y='2'/>",
                 "<apex xmlns:c=\"urn:c\" c:y=\"2\" c:z=\"3\"></apex>"},
        FormCase{"NoDefaultForAttributes", "<p:apex xmlns='urn:d' xmlns:p='urn:p' x='1'/>",
                 "<p:apex xmlns:p=\"urn:p\" x=\"1\"></p:apex>"},
        FormCase{"NoneForUnboundPrefixes", "<u:apex v:x='1'/>", "<u:apex v:x=\"1\"></u:apex>"},
        FormCase{"AnEmptyUriOfAPrefix", "<p:apex xmlns:p=''/>", "<p:apex xmlns:p=\"\"></p:apex>"},
        FormCase{"NoneForXmlAttributes", "<apex xml:lang='en'/>", "<apex xml:lang=\"en\"></apex>"},
        FormCase{"XmlWhereItIsDeclared",
                 "<apex xml:lang='en' b='2' xmlns:xml='http://www.w3.org/XML/1998/namespace'/>",
                 "<apex xmlns:xml=\"http://www.w3.org/XML/1998/namespace\" b=\"2\" "
                 "xml:lang=\"en\"></apex>"}),
    [](const auto& row) { return std::string(row.param.name); });

class ExclusiveDefaultDeclarations : public testing::TestWithParam<FormCase> {};

TEST_P(ExclusiveDefaultDeclarations, AreUndoneOnlyWhereTheOutputDeclaredThem) {
    EXPECT_EQ(ExclusiveForm(GetParam().text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    C14NExclusive, ExclusiveDefaultDeclarations,
    testing::Values(
        FormCase{"Declared", "<apex xmlns='urn:d'><x/></apex>",
                 "<apex xmlns=\"urn:d\"><x></x></apex>"},
        FormCase{"Undeclared", "<apex xmlns='urn:d'><x xmlns=''/></apex>",
                 "<apex xmlns=\"urn:d\"><x xmlns=\"\"></x></apex>"},
        FormCase{"UndeclaredOnce", "<apex xmlns='urn:d'><x xmlns=''><y xmlns=''/></x></apex>",
                 "<apex xmlns=\"urn:d\"><x xmlns=\"\"><y></y></x></apex>"},
        FormCase{"DeclaredAgain",
                 "<apex xmlns='urn:d'><x xmlns=''><y xmlns='urn:d'/></x><z/></apex>",
                 "<apex xmlns=\"urn:d\"><x xmlns=\"\"><y xmlns=\"urn:d\"></y></x><z></z></apex>"},
        FormCase{"EmptyAtTheApex", "<r xmlns='urn:d'><apex xmlns=''/></r>", "<apex></apex>"},
        FormCase{"EmptyAboveTheApex", "<r xmlns='urn:d'><m xmlns=''><apex/></m></r>",
                 "<apex></apex>"},
        FormCase{"EmptyWithNothingAbove", "<apex xmlns=''><x xmlns=''/></apex>",
                 "<apex><x></x></apex>"},
        FormCase{"NotDeclaredByTheOutput",
                 "<p:apex xmlns='urn:d' xmlns:p='urn:p'><x xmlns=''/></p:apex>",
                 "<p:apex xmlns:p=\"urn:p\"><x></x></p:apex>"},
        FormCase{"UndeclaredWhereItIsUsed",
                 "<apex xmlns='urn:d' xmlns:p='urn:p'><p:x xmlns=''><y/></p:x></apex>",
                 "<apex xmlns=\"urn:d\"><p:x xmlns:p=\"urn:p\"><y xmlns=\"\"></y></p:x></apex>"},
        FormCase{"DeclaredByASiblingOnly", "<apex><x xmlns='urn:d'/><y xmlns=''/></apex>",
                 "<apex><x xmlns=\"urn:d\"></x><y></y></apex>"}),
    [](const auto& row) { return std::string(row.param.name); });

// Exclusive XML Canonicalization 1.0, section 2.2: the same element in two envelopes.
TEST(C14NExclusive, GivesOneFormOfAnElementWhateverItsEnvelope) {
    const char* const expected =
        "<n1:apex xmlns:n1=\"http://example.net\" xml:lang=\"en\">\n"
        "     <n3:stuff xmlns:n3=\"ftp://example.org\"></n3:stuff>\n"
        "   </n1:apex>";
    EXPECT_EQ(ExclusiveForm("<n0:local xmlns:n0=\"http://foobar.org\"\n"
                            "          xmlns:n3=\"ftp://example.org\">\n"
                            "   <n1:apex xmlns:n1=\"http://example.net\"\n"
                            "            xml:lang=\"en\">\n"
                            "     <n3:stuff xmlns:n3=\"ftp://example.org\"/>\n"
                            "   </n1:apex>\n"
                            "</n0:local>"),
              expected);
    EXPECT_EQ(ExclusiveForm("<n2:pdu xmlns:n1=\"http://example.com\"\n"
                            "        xmlns:n2=\"http://foo.example\"\n"
                            "        xml:lang=\"fr\"\n"
                            "        xml:space=\"retain\">\n"
                            "   <n1:apex xmlns:n1=\"http://example.net\"\n"
                            "            xml:lang=\"en\">\n"
                            "     <n3:stuff xmlns:n3=\"ftp://example.org\"/>\n"
                            "   </n1:apex>\n"
                            "</n2:pdu>"),
              expected);
}

std::string FormWithPrefixes(std::vector<std::string> words, const std::string& text) {
    const Held<Document> document = Parsed(text);
    return CanonicalForm(C14NCanonicalizerExclusive(std::move(words)),
                         ElementNamed(*document, "apex"), AcceptAllNodesFilter());
}

TEST(PrefixList, DeclaresItsWordsAtTheApexWhetherUsedOrNot) {
    const char* const text = "<r xmlns:c='urn:c'><a:apex xmlns:a='urn:a' xmlns:b='urn:b'/></r>";
    EXPECT_EQ(FormWithPrefixes({}, text), "<a:apex xmlns:a=\"urn:a\"></a:apex>");
    EXPECT_EQ(FormWithPrefixes({"c"}, text),
              "<a:apex xmlns:a=\"urn:a\" xmlns:c=\"urn:c\"></a:apex>");
    EXPECT_EQ(FormWithPrefixes({"c", "b"}, text),
              "<a:apex xmlns:a=\"urn:a\" xmlns:b=\"urn:b\" xmlns:c=\"urn:c\"></a:apex>");
}

TEST(PrefixList, DoesNotCountBelowTheApex) {
    EXPECT_EQ(FormWithPrefixes({"c", "d"},
                               "<apex xmlns:c='urn:c'>"
                               "<x xmlns:c='urn:other' xmlns:d='urn:d'><d:y/></x></apex>"),
              "<apex xmlns:c=\"urn:c\"><x><d:y xmlns:d=\"urn:d\"></d:y></x></apex>");
}

TEST(PrefixList, SparesTheElementsBelowADeclaration) {
    const char* const text = "<apex xmlns:c='urn:c'><c:x/><m><c:y/></m></apex>";
    EXPECT_EQ(FormWithPrefixes({}, text),
              "<apex><c:x xmlns:c=\"urn:c\"></c:x><m><c:y xmlns:c=\"urn:c\"></c:y></m></apex>");
    EXPECT_EQ(FormWithPrefixes({"c"}, text),
              "<apex xmlns:c=\"urn:c\"><c:x></c:x><m><c:y></c:y></m></apex>");
}

// The recommendation reads this word as the default namespace; here no prefix is called so.
TEST(PrefixList, TakesTheWordForTheDefaultNamespaceAsAPrefix) {
    EXPECT_EQ(FormWithPrefixes({"#default"}, "<a:apex xmlns='urn:d' xmlns:a='urn:a'><x/></a:apex>"),
              "<a:apex xmlns:a=\"urn:a\"><x xmlns=\"urn:d\"></x></a:apex>");
}

TEST(PrefixList, PassesOverWordsThatAreNotBound) {
    EXPECT_EQ(FormWithPrefixes({"nobody", "xml", "xmlns", "a"}, "<apex xmlns:a='urn:a'/>"),
              "<apex xmlns:a=\"urn:a\"></apex>");
}

TEST(PrefixList, DeclaresARepeatedWordOnce) {
    EXPECT_EQ(FormWithPrefixes({"a", "b", "a", "b"}, "<a:apex xmlns:a='urn:a' xmlns:b='urn:b'/>"),
              "<a:apex xmlns:a=\"urn:a\" xmlns:b=\"urn:b\"></a:apex>");
}

}  // namespace
}  // namespace Saml::Xml::Security
