#include "saml/security/c14n_canonicalizer.h"

#include "saml/security/c14n_exclusive.h"
#include "saml/security/c14n_inclusive.h"
#include "saml/xml/content_nodes_impl.h"
#include "saml/xml/document_impl.h"
#include "support/canonical_forms.h"
#include "support/thrown.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace Saml::Xml::Security {
namespace {

struct FormCase {
    const char* name;
    const char* text;
    const char* expected;
};
class BothForms : public testing::TestWithParam<FormCase> {};

TEST_P(BothForms, AgreeWhereNoNamespaceIsLeftOut) {
    EXPECT_EQ(ExclusiveForm(GetParam().text), GetParam().expected);
    EXPECT_EQ(InclusiveForm(GetParam().text), GetParam().expected);
}

const auto kRowName = [](const auto& row) { return std::string(row.param.name); };

INSTANTIATE_TEST_SUITE_P(
    C14NContent, BothForms,
    testing::Values(
        FormCase{"EmptyElementsGetAnEndTag", "<apex/>", "<apex></apex>"},
        FormCase{"TextAndElementsKeepTheirOrder", "<apex>a<b>c</b>d<e/>f</apex>",
                 "<apex>a<b>c</b>d<e></e>f</apex>"},
        FormCase{"BlankTextStays", "<apex> \n\t<b> </b>\n</apex>", "<apex> \n\t<b> </b>\n</apex>"},
        FormCase{"CommentsLeaveNothing", "<apex>a<!-- c --><b><!----></b></apex>",
                 "<apex>a<b></b></apex>"},
        FormCase{"CDataLeavesNothing", "<apex>a<![CDATA[b <c/>]]>d<![CDATA[]]></apex>",
                 "<apex>ad</apex>"},
        FormCase{"NothingOutsideTheApex",
                 "<?p?><!-- c --><r>before<apex>in</apex>behind<b/></r><!-- c --><?p?>",
                 "<apex>in</apex>"},
        FormCase{"TheQualifiedNameIsWrittenAtBothEnds", "<p:apex xmlns:p='urn:p'><p:b/></p:apex>",
                 "<p:apex xmlns:p=\"urn:p\"><p:b></p:b></p:apex>"},
        FormCase{"EntitiesAreReplaced",
                 "<!DOCTYPE apex [<!ENTITY e 'x<b>y</b>'>]><apex>&e;&amp;&#65;</apex>",
                 "<apex>x<b>y</b>&amp;A</apex>"}),
    kRowName);

INSTANTIATE_TEST_SUITE_P(
    C14NAttributeOrder, BothForms,
    testing::Values(
        // Keys of the last one: two blanks and a prefix, one blank and a name, URI blank name.
        FormCase{"DefaultThenPrefixesThenPlainThenQualified",
                 "<apex b:z='5' z='4' xmlns:b='urn:b' a='3' xmlns='urn:d' b:a='6'/>",
                 "<apex xmlns=\"urn:d\" xmlns:b=\"urn:b\" a=\"3\" z=\"4\" b:a=\"6\" b:z=\"5\">"
                 "</apex>"},
        FormCase{"QualifiedByUriNotByPrefix",
                 "<apex a:x='1' z:x='2' xmlns:a='urn:z' xmlns:z='urn:a'/>",
                 "<apex xmlns:a=\"urn:z\" xmlns:z=\"urn:a\" z:x=\"2\" a:x=\"1\"></apex>"},
        FormCase{"QualifiedByLocalNameWithinOneUri",
                 "<apex b:a='2' a:b='3' xmlns:a='urn:u' xmlns:b='urn:u'/>",
                 "<apex xmlns:a=\"urn:u\" xmlns:b=\"urn:u\" b:a=\"2\" a:b=\"3\"></apex>"},
        FormCase{"UnboundPrefixesAmongThePlainByLocalName",
                 "<apex c='3' u:b='2' a='1' v:d='4' p:a='5' xmlns:p='urn:p'/>",
                 "<apex xmlns:p=\"urn:p\" a=\"1\" u:b=\"2\" c=\"3\" v:d=\"4\" p:a=\"5\"></apex>"},
        FormCase{"XmlAttributesAmongThePlainByLocalName",
                 "<apex n='3' xml:lang='2' k='1' p:a='4' xmlns:p='urn:p'/>",
                 "<apex xmlns:p=\"urn:p\" k=\"1\" xml:lang=\"2\" n=\"3\" p:a=\"4\"></apex>"},
        FormCase{"UnboundTwinsInTheOrderOfTheirWrittenNames", "<apex v:a='3' u:a='2' a='1'/>",
                 "<apex a=\"1\" u:a=\"2\" v:a=\"3\"></apex>"},
        FormCase{"PrefixesOfAnEmptyUriAmongThePlain", "<apex p:b='2' c='3' a='1' xmlns:p=''/>",
                 "<apex xmlns:p=\"\" a=\"1\" p:b=\"2\" c=\"3\"></apex>"},
        FormCase{"BytesAboveAsciiLast",
                 "<apex \xC3\xA9='2' z='1' p:\xC3\xA9='4' p:z='3' xmlns:p='urn:p'/>",
                 "<apex xmlns:p=\"urn:p\" z=\"1\" \xC3\xA9=\"2\" p:z=\"3\" p:\xC3\xA9=\"4\">"
                 "</apex>"},
        FormCase{"CapitalsFirst", "<apex b='3' B='1' a='2'/>",
                 "<apex B=\"1\" a=\"2\" b=\"3\"></apex>"},
        FormCase{"AShorterNameBeforeALongerOne", "<apex ab='2' a-b='3' a='1'/>",
                 "<apex a=\"1\" a-b=\"3\" ab=\"2\"></apex>"},
        // The key "urn:a b x" lies before "urn:a x": a URI is compared as far as it goes.
        FormCase{"BlanksInAUriCount", "<apex p:x='2' q:x='1' xmlns:p='urn:a' xmlns:q='urn:a b'/>",
                 "<apex xmlns:p=\"urn:a\" xmlns:q=\"urn:a b\" q:x=\"1\" p:x=\"2\"></apex>"},
        FormCase{"LaterColonsBelongToTheLocalName",
                 "<apex p:a:c='2' p:a='1' u:b:c='0' xmlns:p='urn:p'/>",
                 "<apex xmlns:p=\"urn:p\" u:b:c=\"0\" p:a=\"1\" p:a:c=\"2\"></apex>"}),
    kRowName);

// Names that only a tokenizer without namespaces lets through are split at their first colon, too.
INSTANTIATE_TEST_SUITE_P(
    C14NOddNames, BothForms,
    testing::Values(FormCase{"ALeadingColonIsDropped", "<apex :a='1'/>", "<apex a=\"1\"></apex>"},
                    FormCase{"ADeclarationOfTheEmptyPrefixIsADefaultDeclaration",
                             "<apex xmlns:='urn:d'/>", "<apex xmlns=\"urn:d\"></apex>"},
                    FormCase{"TheLaterOfTwoDefaultDeclarationsHolds",
                             "<apex xmlns='urn:a' xmlns:='urn:b'/>",
                             "<apex xmlns=\"urn:b\"></apex>"},
                    FormCase{"ADeclarationWithALeadingColonIsADefaultDeclaration",
                             "<apex :xmlns='urn:d' a='1'><b xmlns=''/></apex>",
                             "<apex xmlns=\"urn:d\" a=\"1\"><b xmlns=\"\"></b></apex>"},
                    FormCase{"AndTheFirstInTheOrderOfNames", "<apex xmlns='urn:a' :xmlns='urn:b'/>",
                             "<apex xmlns=\"urn:a\"></apex>"}),
    kRowName);

TEST(C14NContent, LeavesOutProcessingInstructionsOfABuiltTree) {
    // An element takes none; a document does, and it is no apex.
    const Held<Document> document = NewDocument();
    const Held<ProcessingInstructionNode> instruction = NewInstruction("target", "data");
    document->AppendChild(instruction.get());
    const Held<ElementNode> root = NewElement("root");
    document->AppendChild(root.get());
    EXPECT_EQ(CanonicalForm(Algorithm::ExclusiveC14N, *root), "<root></root>");
}

TEST(C14NContent, WritesTextsThatStandNextToEachOther) {
    const Held<ElementNode> apex = NewElement("apex");
    for (const char* const text : {"a", "", "<", "b"})
        apex->AppendChild(NewText(text).get());
    EXPECT_EQ(CanonicalForm(Algorithm::ExclusiveC14N, *apex), "<apex>a&lt;b</apex>");
}

TEST(C14NContent, WritesOnlyTheApexOfATree) {
    const Held<ElementNode> parent = NewElement("parent");
    const Held<ElementNode> apex = NewElement("apex");
    parent->AppendChild(apex.get());
    parent->AppendChild(NewElement("sibling").get());
    EXPECT_EQ(CanonicalForm(Algorithm::InclusiveC14N, *apex), "<apex></apex>");
}

class Rejecting final : public NodeFilter {
  public:
    explicit Rejecting(std::string localName) : localName_(std::move(localName)) {}
    bool Accept(const NodeImpl& node) const override {
        const ElementNodeImpl* const element = AsElement(&node);
        return element == nullptr || element->LocalName() != localName_;
    }

  private:
    std::string localName_;
};

std::string FormThrough(const NodeFilter& filter, const std::string& text) {
    const Held<Document> document = Parsed(text);
    return CanonicalForm(C14NCanonicalizerExclusive(), ElementNamed(*document, "apex"), filter);
}

TEST(FilteredCanonicalization, SkipsARejectedNodeWithItsSubtree) {
    EXPECT_EQ(FormThrough(Rejecting("s"), "<apex><s/>a<b/><s><b>x</b></s>c<d><s/></d><s/></apex>"),
              "<apex>a<b></b>c<d></d></apex>");
}

TEST(FilteredCanonicalization, AcceptsTheApexUnasked) {
    EXPECT_EQ(FormThrough(Rejecting("apex"), "<apex>a<apex/>b</apex>"), "<apex>ab</apex>");
}

TEST(FilteredCanonicalization, ForgetsTheDeclarationsOfARejectedElement) {
    EXPECT_EQ(
        FormThrough(Rejecting("s"), "<apex xmlns:p='urn:p'><p:s xmlns:p='urn:q'/><p:b/></apex>"),
        "<apex><p:b xmlns:p=\"urn:p\"></p:b></apex>");
}

TEST(FilteredCanonicalization, KeepsBlankTextUnlessTheFilterHidesIt) {
    const char* const text = "<apex> <b>\t\r\n </b>\n<!-- c -->x </apex>";
    EXPECT_EQ(FormThrough(AcceptAllNodesFilter(), text), "<apex> <b>\t\n </b>\nx </apex>");
    EXPECT_EQ(FormThrough(SkipWsAndCommentsFilter(), text), "<apex><b></b>x </apex>");
}

TEST(FilteredCanonicalization, LeavesOutExactlyTheExcludedNode) {
    const Held<Document> document = Parsed("<apex><s>1</s><s>2</s><t><s>3</s></t></apex>");
    ElementNode& first = ElementNamed(*document, "s");
    EXPECT_EQ(CanonicalForm(C14NCanonicalizerExclusive(), *document->GetRootElement(),
                            ExcludeNodeFilter(&dynamic_cast<NodeImpl&>(first))),
              "<apex><s>2</s><t><s>3</s></t></apex>");
    EXPECT_EQ(CanonicalForm(C14NCanonicalizerInclusive(), *document->GetRootElement(),
                            ExcludeNodeFilter(&dynamic_cast<NodeImpl&>(first))),
              "<apex><s>2</s><t><s>3</s></t></apex>");
}

TEST(FilteredCanonicalization, LeavesOutAText) {
    const Held<Document> document = Parsed("<apex>one<b/>two</apex>");
    auto& text = dynamic_cast<NodeImpl&>(*document->GetRootElement()->GetFirstChild());
    EXPECT_EQ(CanonicalForm(C14NCanonicalizerExclusive(), *document->GetRootElement(),
                            ExcludeNodeFilter(&text)),
              "<apex><b></b>two</apex>");
}

template <class Found>
void ExpectNoApex(Node& node) {
    const AcceptAllNodesFilter all;
    const TypeMismatchException expected(typeid(ElementNode), typeid(Found));
    EXPECT_EQ(MessageOf<TypeMismatchException>(
                  [&] { CanonicalForm(C14NCanonicalizerExclusive(), node, all); }),
              expected.what());
    EXPECT_EQ(MessageOf<TypeMismatchException>(
                  [&] { CanonicalForm(C14NCanonicalizerInclusive(), node, all); }),
              expected.what());
}

TEST(C14NApex, IsAnElement) {
    ExpectNoApex<DocumentImpl>(*NewDocument());
    ExpectNoApex<TextNodeImpl>(*NewText("x"));
    ExpectNoApex<CDataNodeImpl>(*NewCData());
    ExpectNoApex<CommentNodeImpl>(*NewComment("x"));
    ExpectNoApex<ProcessingInstructionNodeImpl>(*NewInstruction("t", "d"));
}

TEST(C14NApex, WritesNothingWhenItIsNoElement) {
    StringWriter out;
    out.data = "before";
    const AcceptAllNodesFilter all;
    const Held<TextNode> text = NewText("x");
    EXPECT_THROW(C14NCanonicalizerExclusive().Canonicalize(
                     FilteredNodeCursor(&dynamic_cast<NodeImpl&>(*text), all), out),
                 TypeMismatchException);
    EXPECT_EQ(out.data, "before");
}

}  // namespace
}  // namespace Saml::Xml::Security
