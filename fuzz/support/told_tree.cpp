#include "support/told_tree.h"

#include <map>

namespace Fuzz {
namespace {

using namespace Saml::Xml;

std::string WithPlainLineEnds(const std::string& text) {
    std::string plain;
    for (std::size_t i = 0; i != text.size(); ++i) {
        if (text[i] == '\r' && i + 1 != text.size() && text[i + 1] == '\n') continue;
        plain += text[i] == '\r' ? '\n' : text[i];
    }
    return plain;
}

std::string AsAttributeValue(const std::string& value) {
    std::string plain = WithPlainLineEnds(value);
    for (char& byte : plain)
        if (byte == '\n' || byte == '\t') byte = ' ';
    return plain;
}

/// A text that cannot be mistaken for markup of this account or for two texts.
std::string Quoted(const std::string& text) {
    return std::to_string(text.size()) + "'" + text + "'";
}

class Telling {
  public:
    explicit Telling(Keep keep) : keep_(keep) {}

    std::string Run(ElementNode& apex) {
        Node* node = &apex;
        Enter(*node);
        while (node != nullptr) {
            if (Node* const child = node->GetFirstChild()) {
                node = child;
            } else {
                node = LeaveUpToSibling(*node, apex);
            }
            if (node != nullptr) Enter(*node);
        }
        return std::move(told_);
    }

  private:
    /// The next sibling of `node` or of its nearest ancestor that has one; null at the apex.
    Node* LeaveUpToSibling(Node& node, Node& apex) {
        for (Node* at = &node;; at = at->GetParent()) {
            Leave(*at);
            if (at == &apex) return nullptr;
            if (Node* const sibling = at->GetNextSibling()) return sibling;
        }
    }

    void Enter(Node& node) {
        switch (node.GetType()) {
            case NodeType::Text:
                text_ += dynamic_cast<TextNode&>(node).GetText();
                return;
            case NodeType::CData:
                Flush();
                if (keep_ == Keep::All) told_ += "[";
                return;
            case NodeType::Element:
                Flush();
                return TellTag(dynamic_cast<ElementNode&>(node));
            default:
                return;
        }
    }

    void Leave(Node& node) {
        const bool isElement = node.GetType() == NodeType::Element;
        if (!isElement && node.GetType() != NodeType::CData) return;
        Flush();
        if (isElement || keep_ == Keep::All) told_ += isElement ? ">" : "]";
    }

    void TellTag(ElementNode& element) {
        told_ += "<" + Quoted(element.GetPrefix()) + Quoted(element.GetLocalName());
        std::map<std::string, std::string> attributes;
        element.GetAttributes(attributes);
        for (const auto& [name, value] : attributes)
            told_ += " " + Quoted(name) + Quoted(AsAttributeValue(value));
        told_ += "|";
    }

    void Flush() {
        if (keep_ == Keep::All && !text_.empty()) told_ += Quoted(WithPlainLineEnds(text_));
        text_.clear();
    }

    const Keep keep_;
    std::string told_;
    std::string text_;  ///< Not told yet: more of it may follow.
};

}  // namespace

std::string Told(ElementNode& apex, Keep keep) {
    return Telling(keep).Run(apex);
}

}  // namespace Fuzz
