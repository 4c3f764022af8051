#include "saml/xml/document_order.h"

#include "saml/xml/element_node_impl.h"
#include "support/xml_trees.h"

#include <gtest/gtest.h>

#include <string>

namespace Saml::Xml {
namespace {

/// The walk over the elements of `text` below the first element called `apex`: each name as it is
/// entered, "/name" as it is left, "!name" where `closed` keeps the walk out.
std::string Walked(const std::string& text, const std::string& closed = {}) {
    const Held<Document> document = Parsed(text);
    Node* apex = document->GetRootElement();
    while (dynamic_cast<ElementNode&>(*apex).GetLocalName() != "apex")
        apex = GetFirstChildElement(apex);
    const auto nameOf = [](const NodeImpl& node) {
        const ElementNodeImpl* const element = AsElement(&node);
        return element == nullptr ? std::string("#") : element->LocalName();
    };
    std::string walked;
    WalkInDocumentOrder(
        dynamic_cast<const NodeImpl&>(*apex),
        [&](const NodeImpl& node) {
            const bool entered = nameOf(node) != closed;
            walked += (entered ? "" : "!") + nameOf(node) + " ";
            return entered;
        },
        [&](const NodeImpl& node) { walked += "/" + nameOf(node) + " "; });
    return walked;
}

TEST(WalkInDocumentOrder, EntersAndLeavesEveryNode) {
    EXPECT_EQ(Walked("<apex/>"), "apex /apex ");
    EXPECT_EQ(Walked("<apex><a/></apex>"), "apex a /a /apex ");
    EXPECT_EQ(Walked("<apex><a><b/>t</a><!--c--><d/></apex>"),
              "apex a b /b # /# /a # /# d /d /apex ");
    EXPECT_EQ(Walked("<apex><a><b><c/></b></a></apex>"), "apex a b c /c /b /a /apex ");
}

TEST(WalkInDocumentOrder, StaysBelowItsApex) {
    EXPECT_EQ(Walked("<x><y><apex><a/></apex><z/></y><w/></x>"), "apex a /a /apex ");
    EXPECT_EQ(Walked("<x><apex/><z/></x>"), "apex /apex ");
}

TEST(WalkInDocumentOrder, PassesOverANodeThatIsNotEntered) {
    EXPECT_EQ(Walked("<apex><a><b/></a><c/></apex>", "a"), "apex !a c /c /apex ");
    EXPECT_EQ(Walked("<apex><c/><a><b/></a></apex>", "a"), "apex c /c !a /apex ");
    EXPECT_EQ(Walked("<apex><d><a/></d><c/></apex>", "a"), "apex d !a /d c /c /apex ");
    EXPECT_EQ(Walked("<x><apex><a/></apex><z/></x>", "apex"), "!apex ");
}

}  // namespace
}  // namespace Saml::Xml
