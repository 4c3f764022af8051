#pragma once

#include "saml/security.h"
#include "saml/xml/element_node_impl.h"

namespace Saml::Xml::Security {

/// Key information of the caller's own making; the library's resolvers find no key in it.
class KeyInfoExtended final : public KeyInfo {
  public:
    /// `content` is the child of the `KeyInfo` element.
    explicit KeyInfoExtended(ElementNodeImpl& content);

    bool IsX509() override;
    void GetElement(boost::intrusive_ptr<ElementNode>& out) override;

  private:
    boost::intrusive_ptr<ElementNodeImpl> content_;
};

}  // namespace Saml::Xml::Security
