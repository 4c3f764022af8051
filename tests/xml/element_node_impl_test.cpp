#include "saml/xml/element_node_impl.h"

#include "saml/xml/qualified_name.h"
#include "support/xml_trees.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace Saml::Xml {
namespace {

using Attributes = std::map<std::string, std::string>;

Attributes AttributesOf(ElementNode& element) {
    Attributes attributes{{"left", "over"}};
    element.GetAttributes(attributes);
    return attributes;
}

TEST(CreateElementNode, MakesAnEmptyElementWithoutPosition) {
    const Held<ElementNode> element = NewElement("Assertion");
    EXPECT_EQ(element->GetType(), 4);
    EXPECT_EQ(element->GetPrefix(), "");
    EXPECT_EQ(element->GetLocalName(), "Assertion");
    EXPECT_EQ(element->GetQualifiedName(), "Assertion");
    EXPECT_EQ(element->GetLine(), -1);
    EXPECT_EQ(element->GetColumn(), -1);
    EXPECT_EQ(element->GetFirstChild(), nullptr);
    EXPECT_EQ(element->GetLastChild(), nullptr);
    EXPECT_EQ(AttributesOf(*element), Attributes{});
    ExpectDetached(*element);
}

TEST(CreateElementNode, KeepsPrefixAndLocalNameAsGiven) {
    const Held<ElementNode> element(CreateElementNode("saml", "Assertion"));
    EXPECT_EQ(element->GetPrefix(), "saml");
    EXPECT_EQ(element->GetLocalName(), "Assertion");
    EXPECT_EQ(element->GetQualifiedName(), "saml:Assertion");
}

TEST(ElementNode, TakesNewNames) {
    const Held<ElementNode> element(CreateElementNode("a", "b"));
    element->SetPrefix("saml2");
    EXPECT_EQ(element->GetQualifiedName(), "saml2:b");
    element->SetLocalName("Subject");
    EXPECT_EQ(element->GetQualifiedName(), "saml2:Subject");
    element->SetPrefix("");
    EXPECT_EQ(element->GetPrefix(), "");
    EXPECT_EQ(element->GetQualifiedName(), "Subject");
    EXPECT_EQ(element->GetLocalName(), "Subject");
}

TEST(ElementNode, TellsItsExpandedName) {
    const Held<Document> document = Parsed("<p:a xmlns:p='urn:p' xmlns='urn:d'><b/><q:c/></p:a>");
    ElementNode* const a = document->GetRootElement();
    EXPECT_EQ(a->GetExpandedName().namespaceUri, "urn:p");
    EXPECT_EQ(a->GetExpandedName().localName, "a");
    EXPECT_EQ(a->GetFirstChildElement("b")->GetExpandedName().namespaceUri, "urn:d");
    EXPECT_EQ(a->GetFirstChildElement("c")->GetExpandedName().namespaceUri, "") << "unbound";
    EXPECT_EQ(a->GetFirstChildElement("c")->GetExpandedName().localName, "c");
    EXPECT_EQ(NewElement("alone")->GetExpandedName().namespaceUri, "");
}

TEST(ElementNode, WithoutAttributesAnswersFalseAndAnEmptyMap) {
    const Held<ElementNode> element = NewElement("a");
    std::string value = "untouched";
    EXPECT_FALSE(element->GetAttribute("ID", value));
    EXPECT_FALSE(element->GetAttribute(ExpandedName{"", "ID"}, value));
    EXPECT_EQ(value, "untouched");
    EXPECT_FALSE(element->RemoveAttribute("ID"));
    EXPECT_EQ(AttributesOf(*element), Attributes{}) << "what the map held before is gone";
}

TEST(ElementNode, FindsAttributesByTheirWrittenNames) {
    const Held<ElementNode> element = NewElement("a");
    element->SetAttribute("xsi:type", "t");
    element->SetAttribute("ID", "_1");
    std::string value;
    EXPECT_TRUE(element->GetAttribute("xsi:type", value));
    EXPECT_EQ(value, "t");
    EXPECT_TRUE(element->GetAttribute("ID", value));
    EXPECT_EQ(value, "_1");
    for (const std::string absent : {"type", "id", "xsi", "", "ID "}) {
        EXPECT_FALSE(element->GetAttribute(absent, value)) << absent;
        EXPECT_EQ(value, "_1") << absent;
    }
}

TEST(ElementNode, InsertsAndOverwritesAttributes) {
    const Held<ElementNode> element = NewElement("a");
    element->SetAttribute("x", "1");
    element->SetAttribute("x", "2");
    element->SetAttribute("y", "");
    EXPECT_EQ(AttributesOf(*element), (Attributes{{"x", "2"}, {"y", ""}}));
    std::string value = "untouched";
    EXPECT_TRUE(element->GetAttribute("y", value));
    EXPECT_EQ(value, "") << "an empty value is a value";
}

TEST(ElementNode, RemovesAttributes) {
    const Held<ElementNode> element = NewElement("a");
    element->SetAttribute("x", "1");
    element->SetAttribute("y", "2");
    EXPECT_TRUE(element->RemoveAttribute("x"));
    EXPECT_FALSE(element->RemoveAttribute("x"));
    EXPECT_EQ(AttributesOf(*element), (Attributes{{"y", "2"}}));
    EXPECT_TRUE(element->RemoveAttribute("y"));
    EXPECT_EQ(AttributesOf(*element), Attributes{});
}

TEST(ElementNode, HandsOutACopyOfItsAttributes) {
    const Held<ElementNode> element = NewElement("a");
    element->SetAttribute("x", "1");
    Attributes attributes = AttributesOf(*element);
    attributes["x"] = "changed";
    EXPECT_EQ(AttributesOf(*element), (Attributes{{"x", "1"}}));
}

TEST(ElementNode, OrdersAttributesByTheBytesOfTheirNames) {
    const auto* const names = "z a B xmlns:a xmlns _ \xC3\xA9 a:b ab";
    const Held<ElementNode> element = NewElement("e");
    std::string name;
    for (const char* c = names;; ++c) {
        if (*c != ' ' && *c != '\0') {
            name += *c;
            continue;
        }
        element->SetAttribute(name, "");
        name.clear();
        if (*c == '\0') break;
    }
    StringWriter out;
    element->Write(out);
    // Capitals before '_' before small letters, ':' (3A) before letters, bytes above 7F last.
    EXPECT_EQ(out.data,
              "<e B=\"\" _=\"\" a=\"\" a:b=\"\" ab=\"\" xmlns=\"\" xmlns:a=\"\" z=\"\" "
              "\xC3\xA9=\"\"/>");
}

TEST(ElementNode, HasTypedShortcutsNextToTheGeneralOne) {
    const Held<ElementNode> element = NewElement("a");
    const Held<TextNode> text = NewText("t");
    const Held<ElementNode> child = NewElement("b");
    const Held<CommentNode> comment = NewComment("c");
    const Held<Node> section = NewCData();
    element->AppendChild(text.get());
    element->AppendChild(child.get());
    element->AppendChild(comment.get());
    element->AppendChild(section.get());
    EXPECT_EQ(Outline(*element), "a{\"t\" b <!--c--> CDATA}");
    ExpectSoundLinks(*element);
}

TEST(ElementNode, MovesThroughTheTypedShortcuts) {
    const Held<Document> document = Parsed("<r><from>t<b/></from><to/></r>");
    ElementNode* const root = document->GetRootElement();
    ElementNode* const from = root->GetFirstChildElement("from");
    ElementNode* const to = root->GetFirstChildElement("to");
    to->AppendChild(dynamic_cast<TextNode*>(from->GetFirstChild()));
    to->AppendChild(from->GetFirstChildElement("b"));
    EXPECT_EQ(Outline(*root), "r{from to{\"t\" b}}");
    ExpectSoundLinks(*root);
}

TEST(ElementNodeImpl, KeepsThePositionThatTheParserGives) {
    const boost::intrusive_ptr<ElementNodeImpl> element(new ElementNodeImpl("p", "a", 7, 0));
    EXPECT_EQ(element->GetLine(), 7);
    EXPECT_EQ(element->GetColumn(), 0);
    EXPECT_EQ(element->GetQualifiedName(), "p:a");
}

struct SplitCase {
    const char* name;
    const char* written;
    const char* prefix;
    const char* localName;
};

class QualifiedNameSplitting : public testing::TestWithParam<SplitCase> {};

TEST_P(QualifiedNameSplitting, SplitsAtTheFirstColon) {
    const QualifiedName split = SplitQualifiedName(GetParam().written);
    EXPECT_EQ(split.prefix, GetParam().prefix);
    EXPECT_EQ(split.localName, GetParam().localName);
}

TEST_P(QualifiedNameSplitting, NamesParsedElements) {
    if (std::string(GetParam().written).empty()) return;
    const Held<Document> document = Parsed("<" + std::string(GetParam().written) + "/>");
    EXPECT_EQ(document->GetRootElement()->GetPrefix(), GetParam().prefix);
    EXPECT_EQ(document->GetRootElement()->GetLocalName(), GetParam().localName);
}

INSTANTIATE_TEST_SUITE_P(QualifiedName, QualifiedNameSplitting,
                         testing::Values(SplitCase{"NoColon", "Assertion", "", "Assertion"},
                                         SplitCase{"OneColon", "saml:Issuer", "saml", "Issuer"},
                                         SplitCase{"TwoColons", "a:b:c", "a", "b:c"},
                                         SplitCase{"LeadingColon", ":a", "", "a"},
                                         SplitCase{"TrailingColon", "a:", "a", ""},
                                         SplitCase{"Empty", "", "", ""}),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace Saml::Xml
