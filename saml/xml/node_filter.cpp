#include "saml/xml/node_filter.h"

#include "saml/xml/content_nodes_impl.h"

#include <string_view>

namespace Saml::Xml::Security {
namespace {

constexpr std::string_view kWhiteSpace = "\t\n\r ";

}  // namespace

bool AcceptAllNodesFilter::Accept(const NodeImpl&) const {
    return true;
}

bool SkipWsAndCommentsFilter::Accept(const NodeImpl& node) const {
    if (node.Type() == NodeType::Comment) return false;
    const TextNodeImpl* const text = AsText(&node);
    return text == nullptr || text->Text().find_first_not_of(kWhiteSpace) != std::string::npos;
}

bool ExcludeNodeFilter::Accept(const NodeImpl& node) const {
    return &node != excluded_.get();
}

}  // namespace Saml::Xml::Security
