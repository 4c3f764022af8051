#include "saml/xml/strict_reading.h"

#include "support/thrown.h"
#include "support/xml_trees.h"

#include <gtest/gtest.h>

#include <string>

namespace Saml::Xml {
namespace {

using Security::SignatureSyntaxException;

constexpr char kSignatureNamespace[] = "http://www.w3.org/2000/09/xmldsig#";
constexpr char kSigned[] = "<r xmlns:ds='http://www.w3.org/2000/09/xmldsig#'><ds:SignedInfo/></r>";

ElementNodeImpl& Impl(Node* element) {
    return dynamic_cast<ElementNodeImpl&>(*element);
}

template <class Action>
std::string Refusal(Action&& action) {
    return MessageOf<SignatureSyntaxException>(action);
}

/// The first child of the root, read as the signature readers read it.
class Reading {
  public:
    explicit Reading(const std::string& text)
        : document_(Parsed(text)), namespaces_(Impl(document_->GetRootElement())) {}

    ElementNodeImpl& Element() { return Impl(document_->GetRootElement()->GetFirstChild()); }
    const NamespaceContext& Namespaces() const { return namespaces_; }

  private:
    Held<Document> document_;
    NamespaceContext namespaces_;
};

TEST(ExpectElement, AcceptsTheNamedElement) {
    Reading reading("<r xmlns:p='u'><p:a/></r>");
    EXPECT_NO_THROW(ExpectElement(&reading.Element(), "a", "u", reading.Namespaces()));
}

TEST(ExpectElement, RefusesNullAndOtherNames) {
    Reading reading("<r xmlns:p='u'><p:a/></r>");
    const NamespaceContext& namespaces = reading.Namespaces();
    EXPECT_EQ(Refusal([&] { ExpectElement(nullptr, "a", "u", namespaces); }),
              "Expected element 'a' not found.");
    EXPECT_EQ(Refusal([&] { ExpectElement(&reading.Element(), "A", "u", namespaces); }),
              "Expected element 'A' not found.");
    EXPECT_EQ(Refusal([&] { ExpectElement(&reading.Element(), "b", "other", namespaces); }),
              "Expected element 'b' not found.");
}

// The quote behind the element's name stays open: the text is matched as it is.
TEST(ExpectElement, TellsTheNamespaceThatItFound) {
    Reading reading("<r xmlns:p='urn:found'><p:a/></r>");
    EXPECT_EQ(Refusal([&] { ExpectElement(&reading.Element(), "a", "u", reading.Namespaces()); }),
              "Element 'a has unexpected namespace: 'urn:found'");
}

TEST(ExpectElement, TellsAnEmptyNamespaceWhereItFoundNone) {
    for (const char* text : {"<r><a/></r>", "<r><p:a/></r>", "<r xmlns='u'><a xmlns=''/></r>"}) {
        Reading reading(text);
        EXPECT_EQ(
            Refusal([&] { ExpectElement(&reading.Element(), "a", "u", reading.Namespaces()); }),
            "Element 'a has unexpected namespace: ''");
    }
}

TEST(ExpectSignatureElement, WantsTheSignatureNamespace) {
    Reading reading(kSigned);
    EXPECT_NO_THROW(ExpectSignatureElement(&reading.Element(), "SignedInfo", reading.Namespaces()));
    EXPECT_EQ(Refusal([&] { ExpectSignatureElement(nullptr, "SignedInfo", reading.Namespaces()); }),
              "Expected element 'SignedInfo' not found.");
    EXPECT_EQ(Refusal([&] {
                  ExpectSignatureElement(&reading.Element(), "Signature", reading.Namespaces());
              }),
              "Expected element 'Signature' not found.");
}

TEST(ExpectSignatureElement, RefusesOtherNamespaces) {
    Reading other("<r xmlns:ds='urn:other'><ds:SignedInfo/></r>");
    EXPECT_EQ(Refusal([&] {
                  ExpectSignatureElement(&other.Element(), "SignedInfo", other.Namespaces());
              }),
              "Element 'SignedInfo has unexpected namespace: 'urn:other'");
    Reading none("<r><SignedInfo/></r>");
    EXPECT_EQ(
        Refusal([&] { ExpectSignatureElement(&none.Element(), "SignedInfo", none.Namespaces()); }),
        "Element 'SignedInfo has unexpected namespace: ''");
    // One without the final '#' is another namespace.
    Reading almost("<r xmlns='http://www.w3.org/2000/09/xmldsig'><SignedInfo/></r>");
    EXPECT_EQ(Refusal([&] {
                  ExpectSignatureElement(&almost.Element(), "SignedInfo", almost.Namespaces());
              }),
              "Element 'SignedInfo has unexpected namespace: "
              "'http://www.w3.org/2000/09/xmldsig'");
}

TEST(IsElement, IsTheSameTestWithoutThrowing) {
    Reading reading(kSigned);
    const NamespaceContext& namespaces = reading.Namespaces();
    EXPECT_TRUE(IsElement(&reading.Element(), "SignedInfo", kSignatureNamespace, namespaces));
    EXPECT_FALSE(IsElement(&reading.Element(), "SignedInfo", "urn:other", namespaces));
    EXPECT_FALSE(IsElement(&reading.Element(), "Signature", kSignatureNamespace, namespaces));
    EXPECT_FALSE(IsElement(nullptr, "SignedInfo", kSignatureNamespace, namespaces));

    EXPECT_TRUE(IsSignatureElement(&reading.Element(), "SignedInfo", namespaces));
    EXPECT_FALSE(IsSignatureElement(&reading.Element(), "Signature", namespaces));
    EXPECT_FALSE(IsSignatureElement(nullptr, "SignedInfo", namespaces));
    Reading other("<r xmlns:ds='urn:other'><ds:SignedInfo/></r>");
    EXPECT_FALSE(IsSignatureElement(&other.Element(), "SignedInfo", other.Namespaces()));
    Reading none("<r><SignedInfo/></r>");
    EXPECT_FALSE(IsSignatureElement(&none.Element(), "SignedInfo", none.Namespaces()));
    EXPECT_FALSE(IsElement(&none.Element(), "SignedInfo", "", none.Namespaces()));
}

/// The refusal by the attribute rules; empty when the element passes.
std::string AttributeRefusal(const std::string& text, AttributeNames required,
                             AttributeNames optional) {
    const Held<Document> document = Parsed(text);
    const std::string before = Outline(*document);
    std::string refusal;
    try {
        CheckAttributes(Impl(document->GetRootElement()), required, optional);
    } catch (const SignatureSyntaxException& refused) {
        refusal = refused.what();
    }
    EXPECT_EQ(Outline(*document), before) << "the element keeps its attributes";
    return refusal;
}

TEST(CheckAttributes, WantsTheRequiredAndAllowsTheOptionalOnes) {
    const std::string plain = "<p:Method Algorithm='x' xmlns:ds='u'/>";
    const std::string withId = "<p:Method Algorithm='x' xmlns:ds='u' Id='1'/>";
    EXPECT_EQ(AttributeRefusal(plain, {"Algorithm"}, {}), "");
    EXPECT_EQ(AttributeRefusal(withId, {"Algorithm"}, {}),
              "Unexpected attributes on element 'Method'");
    EXPECT_EQ(AttributeRefusal(withId, {"Algorithm"}, {"Id"}), "");
    EXPECT_EQ(AttributeRefusal(plain, {"Algorithm"}, {"Id"}), "");
    EXPECT_EQ(AttributeRefusal("<e/>", {}, {}), "");
    EXPECT_EQ(AttributeRefusal("<e xmlns='a' xmlns:p='b'/>", {}, {}), "");
}

TEST(CheckAttributes, HasTheRequiredOnesAsDefault) {
    const Held<Document> document = Parsed("<e a='1' b='2'/>");
    EXPECT_EQ(Refusal([&] { CheckAttributes(Impl(document->GetRootElement()), {"a"}); }),
              "Unexpected attributes on element 'e'");
    EXPECT_NO_THROW(CheckAttributes(Impl(document->GetRootElement()), {"a", "b"}));
}

TEST(CheckAttributes, NamesTheFirstMissingOne) {
    EXPECT_EQ(AttributeRefusal("<ds:e b='1'/>", {"a", "b"}, {}),
              "Node 'e is missing required attribute 'a'");
    EXPECT_EQ(AttributeRefusal("<e a='1'/>", {"a", "z", "b"}, {}),
              "Node 'e is missing required attribute 'z'");
    EXPECT_EQ(AttributeRefusal("<e p:a='1' A='2'/>", {"a"}, {}),
              "Node 'e is missing required attribute 'a'");
}

TEST(CheckAttributes, TellsAMissingOneBeforeAnUnexpectedOne) {
    EXPECT_EQ(AttributeRefusal("<e other='1'/>", {"a"}, {}),
              "Node 'e is missing required attribute 'a'");
}

TEST(CheckAttributes, KnowsDeclarationsByTheirExactNames) {
    for (const char* attribute : {"xmlnsp", "XMLNS", "xml:lang", "p:xmlns"})
        EXPECT_EQ(AttributeRefusal("<e " + std::string(attribute) + "='1'/>", {}, {}),
                  "Unexpected attributes on element 'e'")
            << attribute;
}

TEST(ReadRequiredAttribute, GivesTheValueOfTheOnlyAttribute) {
    const Held<Document> document = Parsed("<e Algorithm='a&amp;b' xmlns:p='u' xmlns='v'/>");
    EXPECT_EQ(ReadRequiredAttribute(Impl(document->GetRootElement()), "Algorithm"), "a&b");
    const Held<Document> empty = Parsed("<e Algorithm=''/>");
    EXPECT_EQ(ReadRequiredAttribute(Impl(empty->GetRootElement()), "Algorithm"), "");
}

TEST(ReadRequiredAttribute, RefusesAMissingAndAFurtherAttribute) {
    const Held<Document> missing = Parsed("<e Other='1'/>");
    EXPECT_EQ(Refusal([&] { ReadRequiredAttribute(Impl(missing->GetRootElement()), "Algorithm"); }),
              "Node 'e is missing required attribute 'Algorithm'");
    const Held<Document> further = Parsed("<e Algorithm='1' Id='2'/>");
    EXPECT_EQ(Refusal([&] { ReadRequiredAttribute(Impl(further->GetRootElement()), "Algorithm"); }),
              "Unexpected attributes on element 'e'");
}

TEST(ExpectNoChildren, SeesWhatTheFilterKeeps) {
    const Security::SkipWsAndCommentsFilter filter;
    for (const char* text : {"<e/>", "<e> </e>", "<e><!--c--> <!--d--></e>"}) {
        const Held<Document> document = Parsed(text);
        EXPECT_NO_THROW(ExpectNoChildren(Impl(document->GetRootElement()), filter)) << text;
    }
    for (const char* text : {"<p:e><a/></p:e>", "<p:e>x</p:e>", "<p:e> <!--c--><a/></p:e>",
                             "<p:e><![CDATA[]]></p:e>", "<p:e><a xsi:nil='true'/></p:e>"}) {
        const Held<Document> document = Parsed(text);
        EXPECT_EQ(Refusal([&] { ExpectNoChildren(Impl(document->GetRootElement()), filter); }),
                  "Element 'e' may not have children")
            << text;
    }
    const Held<Document> blank = Parsed("<e> </e>");
    EXPECT_EQ(Refusal([&] {
                  ExpectNoChildren(Impl(blank->GetRootElement()), Security::AcceptAllNodesFilter());
              }),
              "Element 'e' may not have children");
}

TEST(ReadTextContent, GivesTheOnlyTextThatTheFilterKeeps) {
    const Security::SkipWsAndCommentsFilter filter;
    for (const char* text : {"<e>x</e>", "<e><!--c-->x</e>", "<e>x<!--c--></e>",
                             "<e> <!--c-->x<!--d--> <!--e--></e>"}) {
        const Held<Document> document = Parsed(text);
        TextNodeImpl& found = ReadTextContent(Impl(document->GetRootElement()), filter);
        EXPECT_EQ(found.Text(), "x") << text;
        EXPECT_EQ(found.Parent(), &Impl(document->GetRootElement())) << text;
    }
}

TEST(ReadTextContent, RefusesEverythingElse) {
    const Security::SkipWsAndCommentsFilter filter;
    for (const char* text : {"<p:e/>", "<p:e> </p:e>", "<p:e><!--c--></p:e>", "<p:e><a/></p:e>",
                             "<p:e>x<a/></p:e>", "<p:e><a/>x</p:e>", "<p:e><![CDATA[x]]></p:e>",
                             "<p:e>x<![CDATA[y]]></p:e>", "<p:e>x<!--c-->y</p:e>"}) {
        const Held<Document> document = Parsed(text);
        EXPECT_EQ(
            Refusal([&] { ReadTextContent(Impl(document->GetRootElement()), filter); }),
            "Element 'e' must only have textual content (but has extra children or is empty).")
            << text;
    }
}

}  // namespace
}  // namespace Saml::Xml
