#include "support/documents.h"

#include "support/ignoring_handler.h"

#include <algorithm>

namespace Fuzz {
namespace {

using namespace Saml::Xml;

// U+00AA, U+00B5 and U+00BA: expat takes them for letters in ISO-8859-1, and refuses them in UTF-8.
bool HasLetterOfLatin1Only(std::string_view name) {
    for (const std::string_view letter : {"\xC2\xAA", "\xC2\xB5", "\xC2\xBA"})
        if (name.find(letter) != std::string_view::npos) return true;
    return false;
}

bool IsWrittenAsItIs(std::string_view name) {
    return name.front() != ':' && name != "xmlns:" && !HasLetterOfLatin1Only(name);
}

class NameWatcher final : public IgnoringHandler {
  public:
    bool namesSurvive = true;

    void StartElement(const std::string& name, unsigned, unsigned,
                      const char** attributes) override {
        namesSurvive = namesSurvive && IsWrittenAsItIs(name);
        for (; *attributes != nullptr; attributes += 2)
            namesSurvive = namesSurvive && IsWrittenAsItIs(*attributes);
    }
};

}  // namespace

DocumentPtr Parsed(std::string_view text) {
    const boost::intrusive_ptr<XMLParser> parser(
        CreateXMLParser(CreateXMLDocumentHandler(0, 0, 0)));
    boost::intrusive_ptr<Node> document;
    try {
        parser->Parse(std::string(text), document);
    } catch (const XMLParseException&) {
        return nullptr;
    }
    return DocumentPtr(&dynamic_cast<Document&>(*document));
}

bool Mentions(std::string_view text, std::string_view markup) {
    std::string bytes(text);  // of UTF-16 without the other halves
    bytes.erase(std::remove(bytes.begin(), bytes.end(), '\0'), bytes.end());
    return bytes.find(markup) != std::string::npos;
}

std::vector<Node*> ChildrenOf(Node& parent) {
    std::vector<Node*> children;
    for (Node* child = parent.GetFirstChild(); child; child = child->GetNextSibling())
        children.push_back(child);
    return children;
}

std::vector<ElementNode*> ElementsOf(Document& document, std::size_t atMost) {
    std::vector<ElementNode*> elements;
    std::vector<Node*> pending{document.GetRootElement()};
    while (!pending.empty() && elements.size() != atMost) {
        Node* const node = pending.back();
        pending.pop_back();
        if (node->GetType() != NodeType::Element) continue;
        elements.push_back(dynamic_cast<ElementNode*>(node));
        const std::vector<Node*> children = ChildrenOf(*node);
        pending.insert(pending.end(), children.rbegin(), children.rend());
    }
    return elements;
}

bool NamesSurvive(std::string_view text) {
    const boost::intrusive_ptr<NameWatcher> watcher(new NameWatcher);
    return ParseInto(*watcher, std::string(text)) && watcher->namesSurvive;
}

std::string CanonicalForm(const char* algorithm, ElementNode& apex) {
    boost::intrusive_ptr<Security::Canonicalizer> canonicalizer;
    Security::CreateCanonicalizer(algorithm, canonicalizer);
    Saml::StringWriter out;
    try {
        canonicalizer->Canonicalize(&apex, out);
    } catch (const Security::XmlSecurityException&) {
        return {};
    }
    return out.data;
}

}  // namespace Fuzz
