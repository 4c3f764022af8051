#pragma once

#include "saml/xml/node_impl.h"

namespace Saml::Xml::Security {

/// Decides, node by node, what a walk sees; a rejected node is skipped with its subtree.
/// Filters hold no state that changes.
class NodeFilter {
  public:
    virtual bool Accept(const NodeImpl& node) const = 0;
    virtual ~NodeFilter() = default;
};

class AcceptAllNodesFilter final : public NodeFilter {
  public:
    bool Accept(const NodeImpl& node) const override;
};

/// Hides comments and texts made only of tab, line feed, carriage return and space: what every
/// strict reader iterates children with.
class SkipWsAndCommentsFilter final : public NodeFilter {
  public:
    bool Accept(const NodeImpl& node) const override;
};

/// Hides exactly one node: the signature that is enveloped by what it signs.
class ExcludeNodeFilter final : public NodeFilter {
  public:
    /// Holds `excluded`, which may be null: then nothing is hidden.
    explicit ExcludeNodeFilter(const NodeImpl* excluded) : excluded_(excluded) {}
    bool Accept(const NodeImpl& node) const override;

  private:
    boost::intrusive_ptr<const NodeImpl> excluded_;
};

}  // namespace Saml::Xml::Security

namespace Saml {
// The token reader's names for the same rules.
using Xml::Security::NodeFilter;
using Xml::Security::SkipWsAndCommentsFilter;
}  // namespace Saml
