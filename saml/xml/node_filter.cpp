#include "saml/xml/node_filter.h"

#include "saml/xml/content_nodes_impl.h"

#include <algorithm>

namespace Saml::Xml::Security {
namespace {

bool IsBlank(char byte) noexcept {
    return byte == ' ' || byte == '\n' || byte == '\r' || byte == '\t';
}

}  // namespace

bool AcceptAllNodesFilter::Accept(const NodeImpl&) const {
    return true;
}

bool SkipWsAndCommentsFilter::Accept(const NodeImpl& node) const {
    if (node.Type() == NodeType::Comment) return false;
    const TextNodeImpl* const text = AsText(&node);
    return text == nullptr || !std::all_of(text->Text().begin(), text->Text().end(), IsBlank);
}

bool ExcludeNodeFilter::Accept(const NodeImpl& node) const {
    return &node != excluded_.get();
}

}  // namespace Saml::Xml::Security
