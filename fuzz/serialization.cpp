#include "support/documents.h"
#include "support/laws.h"
#include "support/sliced_reader.h"
#include "support/told_tree.h"

#include <stdexcept>

// What is written and parsed again has the same elements, attributes and texts, and so has what is
// parsed piece by piece.

namespace {

using namespace Saml::Xml;

constexpr std::size_t kMostElements = 4096;  // entities make long documents of short texts

std::string Written(Node& node, void (Node::*write)(Saml::Writer&)) {
    Saml::StringWriter out;
    (node.*write)(out);
    return out.data;
}

Fuzz::DocumentPtr ParsedInSlices(std::string_view text, std::size_t size) {
    const boost::intrusive_ptr<XMLParser> parser(
        CreateXMLParser(CreateXMLDocumentHandler(0, 0, 0)));
    boost::intrusive_ptr<Node> document;
    Saml::SlicedReader reader(std::string(text), size);
    parser->Parse(reader, document);
    return Fuzz::DocumentPtr(&dynamic_cast<Document&>(*document));
}

}  // namespace

void Fuzz::CheckLaws(std::string_view input) {
    const DocumentPtr document = Parsed(input);
    if (!document || ElementsOf(*document, kMostElements).size() == kMostElements) return;
    ElementNode& root = *document->GetRootElement();
    Require(Told(*ParsedInSlices(input, 1 + input.size() % 7)->GetRootElement(), Keep::All) ==
                Told(root, Keep::All),
            "a text says the same in slices");

    if (!NamesSurvive(input)) return;  // ":a:b" is written "a:b"
    const DocumentPtr again = Parsed(Written(root, &Node::Write));
    Require(again != nullptr, "what is written is well-formed");
    Require(Told(*again->GetRootElement(), Keep::All) == Told(root, Keep::All),
            "what is written says what it was written from");
    const DocumentPtr formatted = Parsed(Written(root, &Node::WriteFormatted));
    Require(formatted != nullptr, "what is written with indentation is well-formed");
    Require(Told(*formatted->GetRootElement(), Keep::Elements) == Told(root, Keep::Elements),
            "indentation changes no element");
}
