#include "support/documents.h"

#include <algorithm>
#include <map>

namespace Fuzz {
namespace {

using namespace Saml::Xml;

bool NamesSurvive(ElementNode& element) {
    const std::string& local = element.GetLocalName();
    if (element.GetPrefix().empty() && (local.empty() || local.find(':') != std::string::npos))
        return false;
    std::map<std::string, std::string> attributes;
    element.GetAttributes(attributes);
    return std::none_of(attributes.begin(), attributes.end(), [](const auto& attribute) {
        return attribute.first.front() == ':' || attribute.first == "xmlns:";
    });
}

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

bool NamesSurvive(Document& document) {
    const std::vector<ElementNode*> elements = ElementsOf(document, kAllElements);
    return std::all_of(elements.begin(), elements.end(),
                       [](ElementNode* element) { return NamesSurvive(*element); });
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
