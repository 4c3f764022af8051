#include "saml/xml/parse_document.h"

#include "saml/foundations/checked_cast.h"

namespace Saml::Xml {
namespace {

constexpr long long kMaxTotalSize = 1073741824;
constexpr long long kMaxNodeCount = 2097152;
constexpr long long kMaxDepth = 8192;

}  // namespace

boost::intrusive_ptr<Document> ParseDocument(const std::string& text) {
    const boost::intrusive_ptr<XMLHandler> handler(
        CreateXMLDocumentHandler(kMaxTotalSize, kMaxNodeCount, kMaxDepth));
    const boost::intrusive_ptr<XMLParser> parser(CreateXMLParser(handler.get()));
    boost::intrusive_ptr<Node> parsed;
    parser->Parse(text, parsed);
    return boost::intrusive_ptr<Document>(CheckedCast<Document>(parsed.get()));
}

}  // namespace Saml::Xml
