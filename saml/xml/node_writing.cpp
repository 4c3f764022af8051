#include "saml/foundations/checked_narrowing.h"
#include "saml/xml/content_nodes_impl.h"
#include "saml/xml/document_impl.h"
#include "saml/xml/document_order.h"
#include "saml/xml/element_node_impl.h"
#include "saml/xml/text_escaping.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace Saml::Xml {
namespace {

constexpr int kCompact = -1;
constexpr std::string_view kBlanks =
    "                                                                ";
constexpr int kBlanksPerLevel = 2;

/// Writes the indentation of `level`: nothing for the negative one of compact output.
void WriteIndent(Writer& out, int level) {
    if (level < 0) return;
    std::size_t remaining = static_cast<std::size_t>(level) * kBlanksPerLevel;
    while (remaining != 0) {
        const std::size_t piece = std::min(remaining, kBlanks.size());
        WriteRun(out, kBlanks.substr(0, piece));
        remaining -= piece;
    }
}

void WriteEscapedText(Writer& out, std::string_view text) {
    WriteEscaped(text, kSerializationEscapes, [&out](std::string_view run) { WriteRun(out, run); });
}

void WriteName(Writer& out, const ElementNodeImpl& element) {
    if (!element.Prefix().empty()) {
        WriteRun(out, element.Prefix());
        WriteRun(out, ":");
    }
    WriteRun(out, element.LocalName());
}

void WriteStartTag(Writer& out, const ElementNodeImpl& element) {
    WriteRun(out, "<");
    WriteName(out, element);
    for (const auto& [name, value] : element.Attributes()) {
        WriteRun(out, " ");
        WriteRun(out, name);
        WriteRun(out, "=\"");
        WriteEscapedText(out, value);
        WriteRun(out, "\"");
    }
    WriteRun(out, element.FirstChild() == nullptr ? "/>" : ">");
}

/// Mixed content stays on its line, or indentation would change what the text says.
bool IsPretty(const ElementNodeImpl& element, int level) {
    if (level < 0 || element.FirstChild() == nullptr) return false;
    const std::int32_t first = element.FirstChild()->Type();
    return first == NodeType::Comment || first == NodeType::Element;
}

/// An element whose end tag is still to be written.
struct OpenElement {
    int level;
    bool pretty;
};

class ElementWriting {
  public:
    ElementWriting(Writer& out, int level) : out_(out), apexLevel_(level) {}

    bool Enter(NodeImpl& node) {
        const bool isApex = open_.empty();
        const int level = isApex ? apexLevel_ : LevelOfChildren();
        if (!isApex && open_.back().pretty) WriteRun(out_, "\n");

        const ElementNodeImpl* const element = AsElement(&node);
        if (element == nullptr) {
            node.WriteTo(out_, level);
            return false;
        }
        WriteIndent(out_, level);
        WriteStartTag(out_, *element);
        if (element->FirstChild() == nullptr) return false;
        open_.push_back({level, IsPretty(*element, level)});
        return true;
    }

    void Leave(const NodeImpl& node) {
        const OpenElement closing = open_.back();
        open_.pop_back();
        if (closing.pretty) {
            WriteRun(out_, "\n");
            WriteIndent(out_, closing.level);
        }
        WriteRun(out_, "</");
        WriteName(out_, static_cast<const ElementNodeImpl&>(node));
        WriteRun(out_, ">");
    }

  private:
    int LevelOfChildren() const { return open_.back().pretty ? open_.back().level + 1 : kCompact; }

    Writer& out_;
    const int apexLevel_;
    std::vector<OpenElement> open_;
};

}  // namespace

void ElementNodeImpl::WriteTo(Writer& out, int indent) {
    ElementWriting writing(out, indent);
    WalkInDocumentOrder(
        static_cast<NodeImpl&>(*this), [&writing](NodeImpl& node) { return writing.Enter(node); },
        [&writing](NodeImpl& node) { writing.Leave(node); });
}

void TextNodeImpl::WriteTo(Writer& out, int) {
    WriteEscapedText(out, text_);
}

void CDataNodeImpl::WriteTo(Writer& out, int) {
    WriteRun(out, "<![CDATA[");
    for (const NodeImpl* child = FirstChild(); child != nullptr; child = child->NextSibling())
        WriteRun(out, AsText(child)->Text());
    WriteRun(out, "]]>");
}

// Comments are dropped; in indented output their line stays, since their indentation is written.
void CommentNodeImpl::WriteTo(Writer& out, int indent) {
    WriteIndent(out, indent);
}

// Processing instructions are dropped.
void ProcessingInstructionNodeImpl::WriteTo(Writer&, int) {}

}  // namespace Saml::Xml
