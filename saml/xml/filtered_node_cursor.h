#pragma once

#include "saml/xml/node_filter.h"

namespace Saml::Xml::Security {

/// A node seen through a filter: a plain value that moves to children and siblings. The filter is
/// borrowed; it is not asked about the node that the cursor starts from.
class FilteredNodeCursor {
  public:
    FilteredNodeCursor(NodeImpl* node, const NodeFilter& filter) noexcept
        : node_(node), filter_(&filter) {}

    /// Null when a move found nothing.
    NodeImpl* Current() const noexcept { return node_; }
    const NodeFilter& Filter() const noexcept { return *filter_; }

    /// Moves to the first accepted child of the current node, which is not null.
    void MoveToFirstChild();
    /// Moves to the next accepted sibling of the current node, which is not null.
    void MoveToNextSibling();

  private:
    void SkipRejected();

    NodeImpl* node_;
    const NodeFilter* filter_;
};

}  // namespace Saml::Xml::Security
