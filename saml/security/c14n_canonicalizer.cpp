#include "saml/security/c14n_canonicalizer.h"

#include "saml/xml/content_nodes_impl.h"
#include "saml/xml/document_order.h"
#include "saml/xml/namespace_lookup.h"
#include "saml/xml/qualified_name.h"
#include "saml/xml/text_escaping.h"

namespace Saml::Xml::Security {
namespace {

constexpr EscapeTable TextEscapes() {
    EscapeTable table;
    table.Replace('&', "&amp;");
    table.Replace('<', "&lt;");
    table.Replace('>', "&gt;");
    table.Replace('\r', "&#xD;");
    return table;
}

// Canonical XML leaves ">" alone in attribute values; this library has always escaped it, and the
// digests of existing signatures hold it so.
constexpr EscapeTable AttributeEscapes() {
    EscapeTable table = TextEscapes();
    table.Replace('"', "&quot;");
    table.Replace('\t', "&#x9;");
    table.Replace('\n', "&#xA;");
    return table;
}

constexpr EscapeTable kTextEscapes = TextEscapes();
constexpr EscapeTable kAttributeEscapes = AttributeEscapes();

constexpr char kOutOfProportion[] =
    "Canonicalization would repeat namespace declarations out of proportion.";
// As expat has it for entities.
constexpr std::size_t kFreeDeclaredSize = std::size_t{8} * 1024 * 1024;
constexpr std::size_t kMaxAmplification = 100;

/// Gives the size of the URIs that it met.
std::size_t DeclareInherited(const ElementNodeImpl& apex, NamespaceScope& scope) {
    std::size_t size = 0;
    for (const ElementNodeImpl* element = ParentElement(apex); element != nullptr;
         element = ParentElement(*element))
        for (const auto& [name, uri] : element->Attributes()) {
            if (!IsCanonicalDeclaration(name)) continue;
            scope.DeclareInherited(DeclaredPrefix(name), uri);
            size += uri.size();
        }
    return size;
}

void WriteEscapedTo(CanonicalOutput& out, std::string_view text, const EscapeTable& escapes) {
    WriteEscaped(text, escapes, [&out](std::string_view run) { out.Append(run); });
}

void WriteName(CanonicalOutput& out, std::string_view prefix, std::string_view localName) {
    if (!prefix.empty()) {
        out.Append(prefix);
        out.Append(':');
    }
    out.Append(localName);
}

}  // namespace

/// One run over one subtree.
class C14NCanonicalizer::Rendering {
  public:
    Rendering(const C14NCanonicalizer& canonicalizer, const ElementNodeImpl& apex,
              const NodeFilter& filter, Writer& out)
        : canonicalizer_(canonicalizer), apex_(apex), filter_(filter), out_(out) {}

    void Run() {
        seenSize_ = DeclareInherited(apex_, scope_);
        WalkInDocumentOrder(
            static_cast<const NodeImpl&>(apex_),
            [this](const NodeImpl& node) { return Enter(node); },
            [this](const NodeImpl& node) { Leave(static_cast<const ElementNodeImpl&>(node)); });
        out_.Flush();
    }

  private:
    bool Enter(const NodeImpl& node) {
        if (&node != &apex_ && !filter_.Accept(node)) return false;
        if (node.Type() == NodeType::Text) {
            const std::string& text = static_cast<const TextNodeImpl&>(node).Text();
            seenSize_ += text.size();
            WriteEscapedTo(out_, text, kTextEscapes);
            return false;
        }
        if (node.Type() != NodeType::Element) return false;

        const ElementNodeImpl& element = static_cast<const ElementNodeImpl&>(node);
        scope_.Enter();
        CollectAttributes(element);
        CheckProportion(element);
        WriteStartTag(element);
        return true;
    }

    void Leave(const ElementNodeImpl& element) {
        scope_.Leave();
        out_.Append("</");
        WriteName(out_, element.Prefix(), element.LocalName());
        out_.Append('>');
    }

    // Declarations come first: they decide how the other attributes sort.
    void CollectAttributes(const ElementNodeImpl& element) {
        attributes_.Clear();
        for (const auto& [written, value] : element.Attributes())
            if (IsCanonicalDeclaration(written)) scope_.Declare(DeclaredPrefix(written), value);
        for (const auto& [written, value] : element.Attributes()) {
            if (IsCanonicalDeclaration(written)) continue;
            const QualifiedName name = SplitQualifiedName(written);
            attributes_.AddAttribute(name.prefix, name.localName, value, scope_);
        }
        if (&element == &apex_) canonicalizer_.RenderApexNamespaces(scope_, attributes_);
        canonicalizer_.RenderElementNamespaces(element, scope_, attributes_);
        attributes_.Sort();
    }

    // The exclusive form declares an inherited namespace on every element that uses it and has no
    // ancestor that does: a long URI once in the text, and short tags make as many copies as they
    // are. Nothing has been checked of a token by then.
    void CheckProportion(const ElementNodeImpl& element) {
        for (const auto& [written, value] : element.Attributes())
            seenSize_ += written.size() + value.size();
        for (const CanonicalAttribute& attribute : attributes_)
            if (attribute.IsDeclaration()) declaredSize_ += attribute.value.size();
        if (declaredSize_ > kFreeDeclaredSize && declaredSize_ / kMaxAmplification > seenSize_)
            throw XmlSecurityException(kOutOfProportion);
    }

    void WriteStartTag(const ElementNodeImpl& element) {
        out_.Append('<');
        WriteName(out_, element.Prefix(), element.LocalName());
        for (const CanonicalAttribute& attribute : attributes_) {
            out_.Append(' ');
            WriteName(out_, attribute.prefix, attribute.localName);
            out_.Append("=\"");
            WriteEscapedTo(out_, attribute.value, kAttributeEscapes);
            out_.Append('"');
        }
        out_.Append('>');
    }

    const C14NCanonicalizer& canonicalizer_;
    const ElementNodeImpl& apex_;
    const NodeFilter& filter_;
    CanonicalOutput out_;
    NamespaceScope scope_;
    CanonicalAttributes attributes_;  ///< Of the element under the pen; reused for every one.
    std::size_t seenSize_ = 0;        ///< Of the texts and attributes met so far.
    std::size_t declaredSize_ = 0;    ///< Of the URIs that the output declares so far.
};

void C14NCanonicalizer::Canonicalize(FilteredNodeCursor cursor, Writer& out) const {
    const NodeImpl& node = *cursor.Current();
    const ElementNodeImpl* const apex = AsElement(&node);
    if (apex == nullptr) throw TypeMismatchException(typeid(ElementNode), typeid(node));
    Rendering(*this, *apex, cursor.Filter(), out).Run();
}

void C14NCanonicalizer::RenderNamespace(std::string_view prefix, NamespaceScope& scope,
                                        CanonicalAttributes& attributes) {
    const FoundText uri = scope.Render(prefix);
    if (uri) attributes.AddDeclaration(prefix, *uri);
}

}  // namespace Saml::Xml::Security
