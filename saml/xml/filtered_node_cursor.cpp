#include "saml/xml/filtered_node_cursor.h"

namespace Saml::Xml::Security {

void FilteredNodeCursor::MoveToFirstChild() {
    node_ = node_->FirstChild();
    SkipRejected();
}

void FilteredNodeCursor::MoveToNextSibling() {
    node_ = node_->NextSibling();
    SkipRejected();
}

void FilteredNodeCursor::SkipRejected() {
    while (node_ != nullptr && !filter_->Accept(*node_))
        node_ = node_->NextSibling();
}

}  // namespace Saml::Xml::Security
