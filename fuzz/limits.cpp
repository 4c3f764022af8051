#include "support/documents.h"
#include "support/laws.h"
#include "support/measuring_handler.h"

#include <climits>

// The three limits of a parse are exact: a document is accepted at what a model counts in it, and
// refused at one less of each.

namespace {

using namespace Saml::Xml;

constexpr long long kUnlimited = LLONG_MAX;
constexpr long long kMostNodes = 100000;  // entities make long documents of short texts

bool IsAccepted(const std::string& text, long long size, long long nodes, long long depth) {
    const boost::intrusive_ptr<XMLParser> parser(
        CreateXMLParser(CreateXMLDocumentHandler(size, nodes, depth)));
    boost::intrusive_ptr<Node> document;
    try {
        parser->Parse(text, true, document);
    } catch (const XMLParseException&) {
        return false;
    }
    return true;
}

}  // namespace

void Fuzz::CheckLaws(std::string_view input) {
    const std::string text(input);
    const auto measures = Measure(text);
    Require(measures.has_value() == (Parsed(text) != nullptr),
            "without limits what is well-formed is accepted, and nothing else");
    if (!measures) return;
    const auto [size, nodes, depth] = *measures;
    if (nodes > kMostNodes) return;
    if (!Mentions(text, "<!ENTITY"))
        Require(IsAccepted(text, size, nodes, depth), "a document is accepted at its measures");
    Require(!IsAccepted(text, size - 1, kUnlimited, kUnlimited), "the size is limited exactly");
    Require(!IsAccepted(text, kUnlimited, nodes - 1, kUnlimited), "the nodes are limited exactly");
    Require(!IsAccepted(text, kUnlimited, kUnlimited, depth - 1), "the depth is limited exactly");
}
