#include "saml/xml/namespace_lookup.h"
#include "saml/xml/strict_reading.h"
#include "support/big_documents.h"
#include "support/small_stack.h"
#include "support/xml_trees.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <map>
#include <string>

namespace Saml::Xml {
namespace {

using namespace BigDocuments;

constexpr std::size_t kAttributes = 100000;

std::string ValueOf(ElementNode& element, const std::string& name) {
    std::string value = "(none)";
    element.GetAttribute(name, value);
    return value;
}

Node* Innermost(Node& top) {
    Node* node = &top;
    while (node->GetFirstChild() != nullptr)
        node = node->GetFirstChild();
    return node;
}

TEST(ManyAttributes, AreParsedAndWrittenBack) {
    OnSmallStack([] {
        const std::string text = "<e" + AttributeList(kAttributes) + "/>";
        const Held<Document> document = Parsed(text);
        ElementNode& element = *document->GetRootElement();
        for (const std::size_t i : {std::size_t{0}, kAttributes / 2, kAttributes - 1})
            EXPECT_EQ(ValueOf(element, "a" + Padded(i)), "v" + std::to_string(i));
        StringWriter out;
        element.Write(out);
        EXPECT_TRUE(out.data == text);
    });
}

TEST(ManyAttributes, AreSetReadAndRemovedOneByOne) {
    OnSmallStack([] {
        const Held<ElementNode> element = NewElement("e");
        for (std::size_t i = 0; i != kAttributes; ++i)
            element->SetAttribute("a" + Padded(i * 7919 % kAttributes), "old");
        for (std::size_t i = 0; i != kAttributes; ++i)
            element->SetAttribute("a" + Padded(i), std::to_string(i));
        std::map<std::string, std::string> all;
        element->GetAttributes(all);
        EXPECT_EQ(all.size(), kAttributes);
        std::size_t right = 0;
        for (std::size_t i = 0; i != kAttributes; ++i)
            if (ValueOf(*element, "a" + Padded(i)) == std::to_string(i)) ++right;
        EXPECT_EQ(right, kAttributes);
        for (std::size_t i = 0; i != kAttributes; ++i)
            ASSERT_TRUE(element->RemoveAttribute("a" + Padded(i)));
        element->GetAttributes(all);
        EXPECT_TRUE(all.empty());
    });
}

TEST(ManyAttributes, AreCheckedStrictly) {
    OnSmallStack([] {
        const Held<Document> document =
            Parsed("<e" + AttributeList(kAttributes) + DeclarationList(kAttributes) + "/>");
        auto& element = dynamic_cast<ElementNodeImpl&>(*document->GetRootElement());
        EXPECT_EQ(FindMissingAttribute(element, {"a00000000", "a00099999", "none"}), "none");
        EXPECT_EQ(FindUnexpectedAttribute(element, {"a00000000"}, {"a00000001"}), "a00000002");
        EXPECT_THROW(CheckAttributes(element, {}), Security::SignatureSyntaxException);
    });
}

TEST(ManyAttributes, OfOneNamespaceEachAreFoundByExpandedName) {
    OnSmallStack([] {
        std::string text = "<e" + DeclarationList(kAttributes);
        for (std::size_t i = 0; i != kAttributes; ++i)
            text += " p" + Padded(i) + ":x=\"" + std::to_string(i) + "\"";
        const Held<Document> document = Parsed(text + "/>");
        std::string value;
        ElementNode& element = *document->GetRootElement();
        EXPECT_TRUE(element.GetAttribute(ExpandedName{"u99999", "x"}, value));
        EXPECT_EQ(value, "99999");
        EXPECT_FALSE(element.GetAttribute(ExpandedName{"none", "x"}, value));
        EXPECT_FALSE(element.GetAttribute(ExpandedName{"u99999", "y"}, value));
    });
}

/// An element as far below the root as it has attributes, each with a prefix that nothing binds.
/// The two numbers multiply when every prefix is looked up all the way to the top.
Held<Document> ManyUnboundPrefixesFarBelowTheRoot() {
    std::string text = OpenElements(kAttributes) + "<e";
    for (std::size_t i = 0; i != kAttributes; ++i)
        text += " p" + Padded(i) + ":x=\"\"";
    return Parsed(text + "/>" + Repeated("</a>", kAttributes));
}

TEST(ManyAttributes, OfUnboundPrefixesFarBelowTheRootAreFoundByExpandedName) {
    OnSmallStack([] {
        const Held<Document> document = ManyUnboundPrefixesFarBelowTheRoot();
        auto& element = dynamic_cast<ElementNode&>(*Innermost(*document));
        std::string value;
        EXPECT_FALSE(element.GetAttribute(ExpandedName{"u", "x"}, value));
        EXPECT_TRUE(element.GetAttribute(ExpandedName{"", "x"}, value));
    });
}

TEST(ManyAttributes, OfUnboundPrefixesFarBelowTheRootAreFoundInOnePass) {
    OnSmallStack([] {
        const Held<Document> document = ManyUnboundPrefixesFarBelowTheRoot();
        auto& element = dynamic_cast<ElementNodeImpl&>(*Innermost(*document));
        const NamespaceContext namespaces(element);
        EXPECT_EQ(namespaces.FindAttribute(element, "u", "x"), std::nullopt);
        EXPECT_EQ(namespaces.FindAttribute(element, "", "x"), "");
    });
}

TEST(ManyNamespaces, OnOneElementServeAsManyChildren) {
    OnSmallStack([] {
        constexpr std::size_t kNamespaces = 10000;
        const std::string text = NamespacesOnOneElement(kNamespaces);
        const Held<Document> document = Parsed(text);
        ElementNode& root = *document->GetRootElement();
        std::size_t right = 0;
        std::size_t index = 0;
        for (ElementNode* child = GetFirstChildElement(&root); child;
             child = GetNextSiblingElement(child)) {
            std::string uri;
            if (GetNamespace(child, uri) && uri == "u" + std::to_string(index)) ++right;
            ++index;
        }
        EXPECT_EQ(right, kNamespaces);
        EXPECT_EQ(root.GetFirstChildElement(ExpandedName{"u9999", "e"}), root.GetLastChild());
        EXPECT_EQ(root.GetFirstChildElement(ExpandedName{"none", "e"}), nullptr);
        StringWriter out;
        root.Write(out);
        EXPECT_TRUE(out.data == text);
    });
}

// One search collects what its candidates inherit once, however many candidates there are.
TEST(ManyNamespaces, DownTheTreeServeOneSearchAmongAsManyChildren) {
    OnSmallStack([] {
        constexpr std::size_t kNamespaces = 100000;
        const Held<Document> document =
            Parsed(NamespacesDownTheTree(kNamespaces, "<b/>" + PrefixedElements(kNamespaces)));
        Node* const parent = Innermost(*document)->GetParent();
        EXPECT_EQ(parent->GetFirstChildElement(ExpandedName{"u99999", "e"}),
                  parent->GetLastChild());
        EXPECT_EQ(parent->GetFirstChildElement(ExpandedName{"none", "e"}), nullptr);
        EXPECT_EQ(parent->GetFirstChild()->GetNextSiblingElement(ExpandedName{"u99998", "e"}),
                  parent->GetLastChild()->GetPreviousSibling());
    });
}

TEST(ManyNamespaces, DownTheTreeServeOnePassOverAsManyChildren) {
    OnSmallStack([] {
        constexpr std::size_t kNamespaces = 100000;
        const Held<Document> document =
            Parsed(NamespacesDownTheTree(kNamespaces, PrefixedElements(kNamespaces)));
        const auto* const parent =
            dynamic_cast<const ElementNodeImpl*>(Innermost(*document)->GetParent());
        EXPECT_EQ(DeclarationsInForce(parent).size(), kNamespaces);
        const NamespaceContext namespaces(*parent);
        std::size_t index = 0;
        std::size_t right = 0;
        for (const NodeImpl* child = parent->FirstChild(); child; child = child->NextSibling()) {
            const FoundText uri = namespaces.NamespaceOf(*AsElement(child));
            if (uri == "u" + std::to_string(index)) ++right;
            ++index;
        }
        EXPECT_EQ(right, kNamespaces);
    });
}

}  // namespace
}  // namespace Saml::Xml
