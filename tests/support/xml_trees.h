#pragma once

#include "saml/xml.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

/// Small trees for tests: made by hand or from text, told as one line, checked link by link.
namespace Saml::Xml {

template <class Interface>
using Held = boost::intrusive_ptr<Interface>;

inline Held<Document> NewDocument() {
    return Held<Document>(CreateDocument());
}
inline Held<CDataNode> NewCData() {
    return Held<CDataNode>(CreateCDataNode());
}

inline Held<ElementNode> NewElement(const std::string& localName, const std::string& prefix = {}) {
    return Held<ElementNode>(CreateElementNode(prefix, localName));
}

inline Held<TextNode> NewText(const std::string& text = {}) {
    const Held<TextNode> node(CreateTextNode());
    node->SetText(text);
    return node;
}

inline Held<CommentNode> NewComment(const std::string& text = {}) {
    const Held<CommentNode> node(CreateCommentNode());
    node->SetText(text);
    return node;
}

inline Held<ProcessingInstructionNode> NewInstruction(const std::string& target = {},
                                                      const std::string& data = {}) {
    const Held<ProcessingInstructionNode> node(CreateProcessingInstructionNode());
    node->SetTarget(target);
    node->SetData(data);
    return node;
}

/// The document of `text`, parsed without limits.
inline Held<Document> Parsed(const std::string& text) {
    const Held<XMLParser> parser(CreateXMLParser(CreateXMLDocumentHandler(0, 0, 0)));
    Held<Node> document;
    parser->Parse(text, document);
    return Held<Document>(&dynamic_cast<Document&>(*document));
}

inline std::vector<Node*> ChildrenOf(Node& parent) {
    std::vector<Node*> children;
    for (Node* child = parent.GetFirstChild(); child; child = child->GetNextSibling())
        children.push_back(child);
    return children;
}

/// The tree in one line: `a[x=1]{"text" <!--comment--> CDATA{"y"} b}`, `#document{<?t d?> a}`.
inline std::string Outline(Node& node) {
    std::string line;
    switch (node.GetType()) {
        case NodeType::Document:
            line = "#document";
            break;
        case NodeType::Text:
            return "\"" + dynamic_cast<TextNode&>(node).GetText() + "\"";
        case NodeType::CData:
            line = "CDATA";
            break;
        case NodeType::Comment:
            return "<!--" + dynamic_cast<CommentNode&>(node).GetText() + "-->";
        case NodeType::ProcessingInstruction: {
            auto& instruction = dynamic_cast<ProcessingInstructionNode&>(node);
            return "<?" + instruction.GetTarget() + " " + instruction.GetData() + "?>";
        }
        default: {
            auto& element = dynamic_cast<ElementNode&>(node);
            line = element.GetQualifiedName();
            std::map<std::string, std::string> attributes;
            element.GetAttributes(attributes);
            std::string listed;
            for (const auto& [name, value] : attributes)
                listed += (listed.empty() ? "" : " ") + name + "=" + value;
            if (!listed.empty()) line += "[" + listed + "]";
        }
    }
    std::string content;
    for (Node* child : ChildrenOf(node))
        content += (content.empty() ? "" : " ") + Outline(*child);
    return content.empty() ? line : line + "{" + content + "}";
}

/// Every link of the tree below `top` agrees with every other.
inline void ExpectSoundLinks(Node& top) {
    std::vector<Node*> pending{&top};
    while (!pending.empty()) {
        Node& parent = *pending.back();
        pending.pop_back();
        Node* previous = nullptr;
        for (Node* child : ChildrenOf(parent)) {
            EXPECT_EQ(child->GetParent(), &parent) << Outline(*child);
            EXPECT_EQ(child->GetPreviousSibling(), previous) << Outline(*child);
            previous = child;
            pending.push_back(child);
        }
        EXPECT_EQ(parent.GetLastChild(), previous) << Outline(parent);
    }
}

/// `node` stands in no tree.
inline void ExpectDetached(Node& node) {
    EXPECT_EQ(node.GetParent(), nullptr);
    EXPECT_EQ(node.GetPreviousSibling(), nullptr);
    EXPECT_EQ(node.GetNextSibling(), nullptr);
}

}  // namespace Saml::Xml
