#pragma once

#include "saml/xml.h"
#include "saml/xml/expat_handle.h"

namespace Saml::Xml {

/// Drives expat over a reader and hands its events to the handler.
class XMLParserImpl final : public XMLParser {
  public:
    explicit XMLParserImpl(XMLHandler* handler);

    void Parse(const std::string& text, bool enforceLimits,
               boost::intrusive_ptr<Node>& document) override;
    void Parse(Reader& input, bool enforceLimits, boost::intrusive_ptr<Node>& document) override;
    void Parse(const std::string& text, boost::intrusive_ptr<Node>& document) override;
    void Parse(Reader& input, boost::intrusive_ptr<Node>& document) override;
    void SetHandler(XMLHandler* handler) override;
    XMLHandler* GetHandler() override { return handler_.get(); }

  private:
    /// One parse; `feed(tokenizer, events)` feeds the tokenizer and gives how many bytes there
    /// were.
    template <class FeedTo>
    void Run(bool enforceLimits, boost::intrusive_ptr<Node>& document, FeedTo feed);
    TokenizerHandle TakeTokenizer();

    boost::intrusive_ptr<XMLHandler> handler_;
    /// Kept for the next parse; empty while one runs and after one that spoiled it.
    TokenizerHandle idleTokenizer_;
    bool idleTokenizerIsNew_ = true;  ///< Needs no reset.
};

}  // namespace Saml::Xml
