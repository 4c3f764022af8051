#include "saml/security/c14n_exclusive.h"
#include "saml/security/c14n_inclusive.h"
#include "support/big_documents.h"
#include "support/canonical_forms.h"
#include "support/small_stack.h"
#include "support/thrown.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

namespace Saml::Xml::Security {
namespace {

using namespace BigDocuments;

/// The form of the root of `text`. The results are too long to be printed when they differ.
std::string FormOfRoot(const char* algorithm, const std::string& text) {
    const Held<Document> document = Parsed(text);
    return CanonicalForm(algorithm, *document->GetRootElement());
}

Node& Innermost(Node& top) {
    Node* node = &top;
    while (node->GetFirstChild() != nullptr)
        node = node->GetFirstChild();
    return *node;
}

TEST(Canonicalization, OfDeepTrees) {
    OnSmallStack([] {
        constexpr std::size_t kLevels = 1000000;
        const std::string expected = Repeated("<a>", kLevels) + Repeated("</a>", kLevels);
        const std::string text = NestedElements(kLevels);
        EXPECT_TRUE(FormOfRoot(Algorithm::ExclusiveC14N, text) == expected);
        EXPECT_TRUE(FormOfRoot(Algorithm::InclusiveC14N, text) == expected);
    });
}

TEST(Canonicalization, OfWideTrees) {
    OnSmallStack([] {
        constexpr std::size_t kSiblings = 2000000;
        const std::string expected = Siblings(kSiblings, "<a></a>");
        const std::string text = Siblings(kSiblings);
        EXPECT_TRUE(FormOfRoot(Algorithm::ExclusiveC14N, text) == expected);
        EXPECT_TRUE(FormOfRoot(Algorithm::InclusiveC14N, text) == expected);
    });
}

TEST(Canonicalization, OfWideTreesOfTextsCommentsAndSections) {
    OnSmallStack([] {
        constexpr std::size_t kRepetitions = 500000;
        const std::string text = Siblings(kRepetitions, "x<!--c--><a/><![CDATA[s]]>");
        const std::string expected = Siblings(kRepetitions, "x<a></a>");
        EXPECT_TRUE(FormOfRoot(Algorithm::ExclusiveC14N, text) == expected);
        EXPECT_TRUE(FormOfRoot(Algorithm::InclusiveC14N, text) == expected);
    });
}

TEST(Canonicalization, OfManyAttributes) {
    OnSmallStack([] {
        const std::string attributes = AttributeList(100000);
        const std::string expected = "<r" + attributes + "></r>";
        const std::string text = "<r" + attributes + "/>";
        EXPECT_TRUE(FormOfRoot(Algorithm::ExclusiveC14N, text) == expected);
        EXPECT_TRUE(FormOfRoot(Algorithm::InclusiveC14N, text) == expected);
    });
}

// Each attribute has a namespace of its own, and these come in the reverse order of the prefixes.
TEST(Canonicalization, SortsManyAttributesByTheirNamespaces) {
    OnSmallStack([] {
        constexpr std::size_t kAttributes = 100000;
        std::string declarations;
        std::string written;
        std::string sorted;
        for (std::size_t i = 0; i != kAttributes; ++i) {
            const std::size_t last = kAttributes - 1 - i;
            declarations += " xmlns:p" + Padded(i) + "=\"u" + Padded(last) + "\"";
            written += " p" + Padded(i) + ":x=\"\"";
            sorted += " p" + Padded(last) + ":x=\"\"";
        }
        const std::string text = "<r" + declarations + written + "/>";
        const std::string expected = "<r" + declarations + sorted + "></r>";
        EXPECT_TRUE(FormOfRoot(Algorithm::ExclusiveC14N, text) == expected);
        EXPECT_TRUE(FormOfRoot(Algorithm::InclusiveC14N, text) == expected);
    });
}

TEST(Canonicalization, SortsManyAttributesWithEqualKeys) {
    OnSmallStack([] {
        // None of the prefixes is bound, so all that counts is the one local name.
        std::string attributes;
        for (std::size_t i = 0; i != 100000; ++i)
            attributes += " p" + Padded(i) + ":x=\"\"";
        const std::string expected = "<r" + attributes + "></r>";
        EXPECT_TRUE(FormOfRoot(Algorithm::ExclusiveC14N, "<r" + attributes + "/>") == expected);
        EXPECT_TRUE(FormOfRoot(Algorithm::InclusiveC14N, "<r" + attributes + "/>") == expected);
    });
}

TEST(Canonicalization, OfManyElementsBelowManyNamespaces) {
    OnSmallStack([] {
        constexpr std::size_t kCount = 100000;
        const std::string declarations = DeclarationList(kCount);
        const std::string text = "<r" + declarations + ">" + Repeated("<e/>", kCount) + "</r>";
        const std::string children = Repeated("<e></e>", kCount);
        EXPECT_TRUE(FormOfRoot(Algorithm::InclusiveC14N, text) ==
                    "<r" + declarations + ">" + children + "</r>");
        EXPECT_TRUE(FormOfRoot(Algorithm::ExclusiveC14N, text) == "<r>" + children + "</r>");
    });
}

TEST(Canonicalization, OfElementsThatEachUseOneOfManyNamespaces) {
    OnSmallStack([] {
        constexpr std::size_t kCount = 100000;
        std::string plain;
        std::string declaring;
        for (std::size_t i = 0; i != kCount; ++i) {
            const std::string name = "p" + Padded(i);
            plain += "<" + name + ":e></" + name + ":e>";
            declaring += "<" + name + ":e xmlns:" + name + "=\"u" + std::to_string(i) + "\"></" +
                         name + ":e>";
        }
        const std::string text = NamespacesOnOneElement(kCount);
        EXPECT_TRUE(FormOfRoot(Algorithm::InclusiveC14N, text) ==
                    "<r" + DeclarationList(kCount) + ">" + plain + "</r>");
        EXPECT_TRUE(FormOfRoot(Algorithm::ExclusiveC14N, text) == "<r>" + declaring + "</r>");
    });
}

/// The exclusive form of `count` elements that each use one namespace, of 8192 bytes, which is
/// declared on the root.
std::string FormOfUsersOfALongNamespace(std::size_t count, const std::string& text = "") {
    const std::string uri(8192, 'u');
    return FormOfRoot(Algorithm::ExclusiveC14N,
                      "<r xmlns:p=\"" + uri + "\">" + text + Repeated("<p:e/>", count) + "</r>");
}

TEST(Canonicalization, RefusesToRepeatALongNamespaceOutOfProportion) {
    OnSmallStack([] {
        constexpr std::size_t kEightMebibytes = 1024;  // so many times the namespace
        const std::string one = "<p:e xmlns:p=\"" + std::string(8192, 'u') + "\"></p:e>";
        EXPECT_TRUE(FormOfUsersOfALongNamespace(kEightMebibytes) ==
                    "<r>" + Repeated(one, kEightMebibytes) + "</r>");
        EXPECT_EQ(MessageOf<XmlSecurityException>(
                      [&] { FormOfUsersOfALongNamespace(kEightMebibytes + 1); }),
                  "Canonicalization would repeat namespace declarations out of proportion.");

        // 1025 times 8192 bytes are 100 times 83968.
        const std::string text(83968, 't');
        EXPECT_TRUE(FormOfUsersOfALongNamespace(kEightMebibytes + 1, text) ==
                    "<r>" + text + Repeated(one, kEightMebibytes + 1) + "</r>");
    });
}

TEST(Canonicalization, TakesOverWhatIsInheritedOnceWhateverItsLength) {
    const std::string uri(std::size_t{9} * 1024 * 1024, 'u');
    const Held<Document> document = Parsed("<a xmlns:p=\"" + uri + "\"><p:e/></a>");
    ElementNode* const apex = document->GetRootElement()->GetFirstChildElement("e");
    const std::string expected = "<p:e xmlns:p=\"" + uri + "\"></p:e>";
    EXPECT_TRUE(CanonicalForm(Algorithm::InclusiveC14N, *apex) == expected);
    EXPECT_TRUE(CanonicalForm(Algorithm::ExclusiveC14N, *apex) == expected);
}

TEST(Canonicalization, OfNamespacesThatGrowDownTheTree) {
    OnSmallStack([] {
        constexpr std::size_t kLevels = 100000;
        const std::string content = Repeated("<e></e>", kLevels);
        const std::string text = NamespacesDownTheTree(kLevels, content);
        EXPECT_TRUE(FormOfRoot(Algorithm::InclusiveC14N, text) == text);
        EXPECT_TRUE(FormOfRoot(Algorithm::ExclusiveC14N, text) ==
                    Repeated("<a>", kLevels) + content + Repeated("</a>", kLevels));
    });
}

TEST(Canonicalization, OfANamespaceThatChangesOnEveryLevel) {
    OnSmallStack([] {
        constexpr std::size_t kPairs = 300000;
        const std::string pair = "<p:a xmlns:p=\"u\"><p:a xmlns:p=\"v\">";
        const std::string text = Repeated(pair, kPairs) + Repeated("</p:a></p:a>", kPairs);
        EXPECT_TRUE(FormOfRoot(Algorithm::InclusiveC14N, text) == text);
        EXPECT_TRUE(FormOfRoot(Algorithm::ExclusiveC14N, text) == text);
    });
}

TEST(Canonicalization, OfAnApexFarBelowManyNamespaces) {
    OnSmallStack([] {
        constexpr std::size_t kLevels = 100000;
        const Held<Document> document = Parsed(NamespacesDownTheTree(kLevels, "<e/>"));
        Node& apex = Innermost(*document);
        EXPECT_TRUE(CanonicalForm(Algorithm::InclusiveC14N, apex) ==
                    "<e" + DeclarationList(kLevels) + "></e>");
        EXPECT_TRUE(CanonicalForm(Algorithm::ExclusiveC14N, apex) == "<e></e>");
    });
}

TEST(Canonicalization, WithALongPrefixList) {
    OnSmallStack([] {
        constexpr std::size_t kCount = 100000;
        std::vector<std::string> words;
        for (std::size_t i = kCount; i != 0; --i) {
            words.push_back("p" + Padded(i - 1));
            words.push_back("unbound" + Padded(i));
        }
        const Held<Document> document =
            Parsed("<r" + DeclarationList(kCount) + ">" + Repeated("<e/>", kCount) + "</r>");
        EXPECT_TRUE(CanonicalForm(C14NCanonicalizerExclusive(words), *document->GetRootElement(),
                                  AcceptAllNodesFilter()) ==
                    "<r" + DeclarationList(kCount) + ">" + Repeated("<e></e>", kCount) + "</r>");
    });
}

TEST(Canonicalization, OfTextThatIsEscapedByteByByte) {
    OnSmallStack([] {
        constexpr std::size_t kBytes = 10000000;
        const Held<ElementNode> apex = NewElement("a");
        apex->AppendChild(NewText(std::string(kBytes, '<')).get());
        apex->SetAttribute("n", std::string(kBytes, '"'));
        EXPECT_TRUE(CanonicalForm(Algorithm::ExclusiveC14N, *apex) ==
                    "<a n=\"" + Repeated("&quot;", kBytes) + "\">" + Repeated("&lt;", kBytes) +
                        "</a>");
    });
}

TEST(EnvelopedFilter, LeavesOutADeepSubtree) {
    OnSmallStack([] {
        const Held<Document> document = Parsed("<r><b/>" + NestedElements(1000000) + "<c/></r>");
        Node* const excluded = document->GetRootElement()->GetFirstChild()->GetNextSibling();
        const ExcludeNodeFilter filter(&dynamic_cast<NodeImpl&>(*excluded));
        EXPECT_EQ(CanonicalForm(C14NCanonicalizerExclusive(), *document->GetRootElement(), filter),
                  "<r><b></b><c></c></r>");
        EXPECT_EQ(CanonicalForm(C14NCanonicalizerInclusive(), *document->GetRootElement(), filter),
                  "<r><b></b><c></c></r>");
    });
}

TEST(EnvelopedFilter, LeavesOutOneOfManySiblings) {
    OnSmallStack([] {
        constexpr std::size_t kSiblings = 1000000;
        const Held<Document> document = Parsed("<r>" + Repeated("<a/>", kSiblings) + "<s><t/></s>" +
                                               Repeated("<a/>", kSiblings) + "</r>");
        const ExcludeNodeFilter filter(
            &dynamic_cast<NodeImpl&>(ElementNamed(*document->GetRootElement(), "s")));
        EXPECT_TRUE(CanonicalForm(C14NCanonicalizerExclusive(), *document->GetRootElement(),
                                  filter) == Siblings(2 * kSiblings, "<a></a>"));
    });
}

TEST(EnvelopedFilter, LeavesOutTheInnermostOfManyLevels) {
    OnSmallStack([] {
        constexpr std::size_t kLevels = 1000000;
        const Held<Document> document =
            Parsed(Repeated("<a>", kLevels) + "<s>x</s>" + Repeated("</a>", kLevels));
        const ExcludeNodeFilter filter(&dynamic_cast<NodeImpl&>(*Innermost(*document).GetParent()));
        EXPECT_TRUE(CanonicalForm(C14NCanonicalizerExclusive(), *document->GetRootElement(),
                                  filter) == Repeated("<a>", kLevels) + Repeated("</a>", kLevels));
    });
}

}  // namespace
}  // namespace Saml::Xml::Security
