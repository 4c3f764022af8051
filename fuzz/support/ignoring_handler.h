#pragma once

#include "saml/xml.h"

namespace Fuzz {

/// Builds nothing and ignores every event that a derived class does not look at.
class IgnoringHandler : public Saml::Xml::XMLHandler {
  public:
    void ProcessingInstruction(const std::string&, const std::string&) override {}
    void StartElement(const std::string&, unsigned, unsigned, const char**) override {}
    void EndElement(const std::string&) override {}
    void StartCData() override {}
    void EndCData() override {}
    void Comment(const std::string&) override {}
    void Characters(const char*, int) override {}
    void XmlDeclaration(const std::string&, const std::string&) override {}
    void StartDocument(bool, boost::intrusive_ptr<Saml::Xml::Node>& document) override {
        document.reset(Saml::Xml::CreateDocument());
    }
    void StartDocument(boost::intrusive_ptr<Saml::Xml::Node>& document) override {
        StartDocument(false, document);
    }
    void Reset() override {}
};

/// Gives the events of `text`, parsed without limits, to `handler`. False when it is refused.
inline bool ParseInto(Saml::Xml::XMLHandler& handler, const std::string& text) {
    const boost::intrusive_ptr<Saml::Xml::XMLParser> parser(Saml::Xml::CreateXMLParser(&handler));
    boost::intrusive_ptr<Saml::Xml::Node> document;
    try {
        parser->Parse(text, document);
    } catch (const Saml::Xml::XMLParseException&) {
        return false;
    }
    return true;
}

}  // namespace Fuzz
