#include "oracle/canonicalization/libxml2_canonicalizer.h"
#include "saml/security/signature_context.h"
#include "support/canonical_forms.h"
#include "support/thrown.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <stdexcept>
#include <string>

// Where the canonical forms of this library are not those of libxml2, side by side. Of well-formed
// documents that keep to Namespaces in XML these are all the differences that are known; what
// breaks that recommendation is refused by the reader of assertions or by libxml2.
namespace Saml::Xml::Security {
namespace {

constexpr LibXml2::Method kExclusive = LibXml2::Method::Exclusive;
constexpr LibXml2::Method kInclusive = LibXml2::Method::Inclusive;

struct FormCase {
    const char* name;
    LibXml2::Method method;
    const char* text;
    const char* ours;
    const char* theirs;  ///< Null when libxml2 refuses.
    std::size_t apex = 0;
    const char* prefix = "";  ///< The only word of a `PrefixList`.
};

/// The element with this number in document order, which is the root or on the only way down.
ElementNode& ElementNumbered(Document& document, std::size_t number) {
    ElementNode* element = document.GetRootElement();
    for (; number != 0; --number)
        element = GetFirstChildElement(element);
    return *element;
}

std::string OurForm(const FormCase& row) {
    const Held<Document> document = Parsed(row.text);
    ElementNode& apex = ElementNumbered(*document, row.apex);
    if (row.method == kInclusive) return CanonicalForm(Algorithm::InclusiveC14N, apex);
    const auto canonicalizer =
        SignatureContext("").CreateCanonicalizer(Algorithm::ExclusiveC14N, row.prefix);
    return CanonicalForm(*canonicalizer, apex, AcceptAllNodesFilter());
}

LibXml2::CanonicalPart PartOf(const FormCase& row) {
    LibXml2::CanonicalPart part;
    part.method = row.method;
    part.apex = row.apex;
    if (*row.prefix != '\0') part.prefixes = {row.prefix};
    return part;
}

class CanonicalizationDifference : public testing::TestWithParam<FormCase> {};

TEST_P(CanonicalizationDifference, ShowsInBothForms) {
    const FormCase& row = GetParam();
    EXPECT_EQ(OurForm(row), row.ours);
    if (row.theirs != nullptr)
        EXPECT_EQ(LibXml2::CanonicalForm(row.text, PartOf(row)), row.theirs);
    else
        EXPECT_THROW(LibXml2::CanonicalForm(row.text, PartOf(row)), std::runtime_error);
}

std::string RowName(const testing::TestParamInfo<FormCase>& row) {
    return row.param.name;
}

// Kept on purpose: existing signatures were made so.
INSTANTIATE_TEST_SUITE_P(
    Chosen, CanonicalizationDifference,
    testing::Values(
        FormCase{"GreaterThanSignsInValues", kExclusive, "<apex a='1>2'>1>2</apex>",
                 "<apex a=\"1&gt;2\">1&gt;2</apex>", "<apex a=\"1>2\">1&gt;2</apex>"},
        FormCase{"CDataSections", kExclusive, "<apex>a<![CDATA[b]]>c</apex>", "<apex>ac</apex>",
                 "<apex>abc</apex>"},
        FormCase{"XmlAttributesOfAncestors", kInclusive,
                 "<r xml:lang='en' xml:space='preserve'><apex xml:lang='de'/></r>",
                 "<apex xml:lang=\"de\"></apex>",
                 "<apex xml:lang=\"de\" xml:space=\"preserve\"></apex>", 1},
        // Unless "xml" is declared, it is a prefix without namespace here.
        FormCase{"OrderOfXmlAttributes", kExclusive,
                 "<apex xmlns:p='about:blank' p:q='1' xml:lang='en' z='2' a='3'/>",
                 "<apex xmlns:p=\"about:blank\" a=\"3\" xml:lang=\"en\" z=\"2\" p:q=\"1\"></apex>",
                 "<apex xmlns:p=\"about:blank\" a=\"3\" z=\"2\" p:q=\"1\" xml:lang=\"en\"></apex>"},
        FormCase{"DeclarationOfXml", kExclusive,
                 "<apex xmlns:xml='http://www.w3.org/XML/1998/namespace' xml:lang='en'/>",
                 "<apex xmlns:xml=\"http://www.w3.org/XML/1998/namespace\" xml:lang=\"en\"></apex>",
                 "<apex xml:lang=\"en\"></apex>"},
        FormCase{"PrefixListWherePrefixesAreDeclaredAgain", kExclusive,
                 "<apex xmlns:c='urn:c'><x xmlns:c='urn:d'/></apex>",
                 "<apex xmlns:c=\"urn:c\"><x></x></apex>",
                 "<apex xmlns:c=\"urn:c\"><x xmlns:c=\"urn:d\"></x></apex>", 0, "c"},
        FormCase{"PrefixListWherePrefixesAreDeclaredBelowTheApex", kExclusive,
                 "<apex><x xmlns:c='urn:c'><c:y/></x></apex>",
                 "<apex><x><c:y xmlns:c=\"urn:c\"></c:y></x></apex>",
                 "<apex><x xmlns:c=\"urn:c\"><c:y></c:y></x></apex>", 0, "c"},
        FormCase{"PrefixListWithTheWordForTheDefaultNamespace", kExclusive,
                 "<a:apex xmlns='urn:d' xmlns:a='urn:a'><x/></a:apex>",
                 "<a:apex xmlns:a=\"urn:a\"><x xmlns=\"urn:d\"></x></a:apex>",
                 "<a:apex xmlns=\"urn:d\" xmlns:a=\"urn:a\"><x></x></a:apex>", 0, "#default"}),
    RowName);

// Names that Namespaces in XML does not allow. The parser here knows nothing of namespaces; names
// are split at their first colon, and a prefix that is not declared stands for no namespace.
INSTANTIATE_TEST_SUITE_P(
    OfBrokenNames, CanonicalizationDifference,
    testing::Values(
        FormCase{"UnboundPrefixOfAnElement", kExclusive, "<r xmlns='urn:d'><u:apex/></r>",
                 "<u:apex></u:apex>", "<u:apex xmlns=\"urn:d\"></u:apex>", 1},
        FormCase{"UnboundPrefixOfAnAttribute", kExclusive, "<apex v:a='1' b='2'/>",
                 "<apex v:a=\"1\" b=\"2\"></apex>", "<apex b=\"2\" v:a=\"1\"></apex>"},
        FormCase{"ColonInFront", kExclusive, "<:apex :b='1' a='2'/>",
                 "<apex a=\"2\" b=\"1\"></apex>", "<:apex :b=\"1\" a=\"2\"></:apex>"},
        FormCase{"ColonInFrontOfXmlns", kExclusive, "<apex :xmlns='urn:q' a='1'/>",
                 "<apex xmlns=\"urn:q\" a=\"1\"></apex>", "<apex :xmlns=\"urn:q\" a=\"1\"></apex>"},
        FormCase{"ColonAfterXmlns", kExclusive, "<apex xmlns:='urn:q' a='1'/>",
                 "<apex xmlns=\"urn:q\" a=\"1\"></apex>", "<apex a=\"1\" xmlns:=\"urn:q\"></apex>"},
        FormCase{
            "PrefixUndeclared", kExclusive, "<r xmlns:p='urn:p'><apex xmlns:p='' p:a='1'/></r>",
            "<apex xmlns:p=\"\" p:a=\"1\"></apex>", "<apex xmlns:p=\"urn:p\" p:a=\"1\"></apex>", 1},
        FormCase{"DeclarationOfXmlns", kInclusive, "<apex xmlns:xmlns='urn:a'/>",
                 "<apex xmlns:xmlns=\"urn:a\"></apex>", "<apex></apex>"},
        FormCase{"XmlNamespaceAsDefault", kExclusive,
                 "<apex xmlns='http://www.w3.org/XML/1998/namespace'/>",
                 "<apex xmlns=\"http://www.w3.org/XML/1998/namespace\"></apex>", "<apex></apex>"},
        FormCase{"OneAttributeTwice", kExclusive,
                 "<apex xmlns:p='urn:a' xmlns:q='urn:a' p:b='1' q:b='2'/>",
                 "<apex xmlns:p=\"urn:a\" xmlns:q=\"urn:a\" p:b=\"1\" q:b=\"2\"></apex>",
                 "<apex xmlns:p=\"urn:a\" xmlns:q=\"urn:a\" q:b=\"2\" p:b=\"1\"></apex>"}),
    RowName);

// Where libxml2 is the stricter one, or does not do what the recommendations say: it writes the
// URIs of namespaces without escaping them, and normalises line ends in the text of entities, too,
// where XML 1.0, section 2.11, has that done on input only.
INSTANTIATE_TEST_SUITE_P(
    OfLibXml2, CanonicalizationDifference,
    testing::Values(
        FormCase{"RelativeNamespaceUri", kExclusive, "<apex xmlns='relative'/>",
                 "<apex xmlns=\"relative\"></apex>", nullptr},
        FormCase{"NamespaceUriWithABlank", kExclusive, "<apex xmlns='urn:a b'/>",
                 "<apex xmlns=\"urn:a b\"></apex>", nullptr},
        FormCase{"NamespaceUriThatIsNotAscii", kExclusive, "<apex xmlns='urn:\xC3\xA9'/>",
                 "<apex xmlns=\"urn:\xC3\xA9\"></apex>", nullptr},
        FormCase{"AmpersandInANamespaceUri", kExclusive, "<apex xmlns='urn:a?b&amp;c'/>",
                 "<apex xmlns=\"urn:a?b&amp;c\"></apex>", "<apex xmlns=\"urn:a?b&c\"></apex>"},
        FormCase{"CarriageReturnInAnEntity", kExclusive,
                 "<!DOCTYPE apex [<!ENTITY e '2&#13;3'>]><apex>1&e;4</apex>",
                 "<apex>12&#xD;34</apex>", "<apex>12\n34</apex>"},
        FormCase{"EntityThatOnlyAnUnreadDtdCanDeclare", kExclusive,
                 "<!DOCTYPE apex SYSTEM 'apex.dtd'><apex>1&e;2</apex>", "<apex>12</apex>",
                 nullptr}),
    RowName);

// In the prolog they are read, and stand outside any apex.
TEST(CanonicalizationDifferenceOfInstructions, LiesInTheParserThatRefusesThemInsideElements) {
    EXPECT_EQ(MessageOf<XMLParseException>([] { Parsed("<apex>a<?t d?>b</apex>"); }),
              "parsing aborted");
    EXPECT_EQ(LibXml2::CanonicalForm("<apex>a<?t d?>b</apex>"), "<apex>a<?t d?>b</apex>");
}

class CanonicalizationAgreement : public testing::TestWithParam<FormCase> {};

TEST_P(CanonicalizationAgreement, ShowsInBothForms) {
    const FormCase& row = GetParam();
    EXPECT_EQ(OurForm(row), row.ours);
    EXPECT_EQ(LibXml2::CanonicalForm(row.text, PartOf(row)), row.theirs);
}

constexpr FormCase Agreed(const char* name, const char* text, const char* form) {
    return {name, kExclusive, text, form, form};
}

// What parsers do before (Canonical XML 1.0, section 1.1), and comments.
INSTANTIATE_TEST_SUITE_P(
    OfReading, CanonicalizationAgreement,
    testing::Values(
        Agreed("Comments", "<apex>a<!-- & -->b<c/><!-- --></apex>", "<apex>ab<c></c></apex>"),
        Agreed("InternalEntities",
               "<!DOCTYPE apex [<!ENTITY e 'x<b/>&#38;#13;'>]><apex a='1'>1&e;2</apex>",
               "<apex a=\"1\">1x<b></b>&#xD;2</apex>"),
        Agreed("EntitiesInNamespaceUris",
               "<!DOCTYPE apex [<!ENTITY e 'urn:a'>]><p:apex xmlns:p='&e;'/>",
               "<p:apex xmlns:p=\"urn:a\"></p:apex>"),
        Agreed("ExternalEntitiesThatNobodyReads",
               "<!DOCTYPE apex [<!ENTITY e SYSTEM 'nothing.xml'>]><apex>1&e;2</apex>",
               "<apex>12</apex>"),
        Agreed("DefaultAttributes",
               "<!DOCTYPE apex [<!ATTLIST apex z CDATA 'q'><!ATTLIST b z CDATA 'q'>]>"
               "<apex y='1'><b z='r'/></apex>",
               "<apex y=\"1\" z=\"q\"><b z=\"r\"></b></apex>"),
        Agreed("DefaultDeclarations",
               "<!DOCTYPE apex [<!ATTLIST apex xmlns:p CDATA 'urn:a' xmlns CDATA 'urn:d'>]>"
               "<apex p:x='1'/>",
               "<apex xmlns=\"urn:d\" xmlns:p=\"urn:a\" p:x=\"1\"></apex>"),
        Agreed("ValuesOfTokens",
               "<!DOCTYPE apex [<!ATTLIST apex t NMTOKENS #IMPLIED>]><apex t=' a \n b&#9;'/>",
               "<apex t=\"a b&#x9;\"></apex>"),
        Agreed("AnotherEncoding",
               "<?xml version='1.0' encoding='ISO-8859-1'?><apex a='\xE9'>\xFC</apex>",
               "<apex a=\"\xC3\xA9\">\xC3\xBC</apex>"),
        Agreed("AByteOrderMark", "\xEF\xBB\xBF<apex>\xC3\xA9</apex>", "<apex>\xC3\xA9</apex>")),
    RowName);

}  // namespace
}  // namespace Saml::Xml::Security
