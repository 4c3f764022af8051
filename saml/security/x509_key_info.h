#pragma once

#include "saml/security.h"
#include "saml/xml/element_node_impl.h"
#include "saml/xml/namespace_lookup.h"

#include <list>
#include <string>

namespace Saml::Xml::Security {

/// Key information that holds certificates (xmldsig-core 4.5.4).
class X509KeyInfo final : public KeyInfo {
  public:
    /// Reads an existing `KeyInfo` element.
    /// \throws SignatureSyntaxException
    X509KeyInfo(ElementNodeImpl& keyInfoElement, const NamespaceContext& namespaces);
    /// Builds a new `KeyInfo` element whose elements have `prefix`.
    X509KeyInfo(const std::string& prefix, const std::list<ByteBlob>& certificates);

    bool IsX509() override;
    void GetElement(boost::intrusive_ptr<ElementNode>& out) override;

    const boost::intrusive_ptr<ElementNodeImpl>& Element() const noexcept { return element_; }
    /// DER of each certificate, in document order; not parsed yet.
    const std::list<ByteBlob>& Certificates() const noexcept { return certificates_; }

  private:
    void ReadX509Data(ElementNodeImpl& x509Data, const NamespaceContext& namespaces);

    boost::intrusive_ptr<ElementNodeImpl> element_;
    std::list<ByteBlob> certificates_;
};

}  // namespace Saml::Xml::Security
