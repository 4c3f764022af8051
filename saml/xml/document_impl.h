#pragma once

#include "saml/xml.h"
#include "saml/xml/element_node_impl.h"
#include "saml/xml/node_impl.h"

#include <string>

namespace Saml::Xml {

/// Keeps track of which child is the root element.
class DocumentImpl final : public virtual Document, public NodeImpl {
  public:
    DocumentImpl();

    ElementNode* GetRootElement() override { return root_; }
    void SetRootElement(ElementNode* root) override;
    const std::string& GetVersion() override { return version_; }
    void SetVersion(const std::string& version) override { version_ = version; }
    const std::string& GetEncoding() override { return encoding_; }
    void SetEncoding(const std::string& encoding) override { encoding_ = encoding; }

    void WriteTo(Writer& out, int indent) override;
    void CheckChild(NodeImpl& child) override;
    void OnChildAdded(NodeImpl& child) override;
    void OnChildRemoved(NodeImpl& child) override;

    ElementNodeImpl* RootElement() const noexcept { return root_; }

  private:
    ElementNodeImpl* root_ = nullptr;
    std::string version_;
    std::string encoding_;
};

}  // namespace Saml::Xml
