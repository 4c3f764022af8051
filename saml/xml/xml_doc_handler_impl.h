#pragma once

#include "saml/xml.h"
#include "saml/xml/document_impl.h"
#include "saml/xml/element_attributes.h"
#include "saml/xml/element_name.h"
#include "saml/xml/node_impl.h"
#include "saml/xml/parse_limits.h"

#include <string>
#include <vector>

namespace Saml::Xml {

/// Builds a document from the events of a parser. It refers to the document only between
/// `StartDocument` and `Reset`; whoever received it owns it.
class XMLDocHandlerImpl final : public XMLHandler {
  public:
    XMLDocHandlerImpl(std::int64_t maxTotalSize, std::int64_t maxNodeCount, std::int64_t maxDepth);

    void ProcessingInstruction(const std::string& target, const std::string& data) override;
    void StartElement(const std::string& qualifiedName, unsigned line, unsigned column,
                      const char** attributes) override;
    void EndElement(const std::string& qualifiedName) override;
    void StartCData() override;
    void EndCData() override;
    void Comment(const std::string& text) override;
    void Characters(const char* data, int length) override;
    void XmlDeclaration(const std::string& version, const std::string& encoding) override;
    void StartDocument(bool enforceLimits, boost::intrusive_ptr<Node>& document) override;
    void StartDocument(boost::intrusive_ptr<Node>& document) override;
    void Reset() override;

  private:
    NodeImpl& CurrentParent() const;
    void AddLeaf(boost::intrusive_ptr<NodeImpl> node);
    void AddOpen(boost::intrusive_ptr<NodeImpl> node);
    void CloseCurrent() noexcept;

    std::vector<NodeImpl*> open_;  ///< Elements and CDATA sections, outermost first.
    boost::intrusive_ptr<DocumentImpl> document_;
    NodePool pool_;  ///< Of the document under construction.
    RecentNames names_;
    std::vector<Attribute> attributes_;  ///< Of the tag that was reported last.
    ParseLimits limits_;
};

}  // namespace Saml::Xml
