#pragma once

#include "saml/xml.h"

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

/// Parser events, told one line each in the order of their arrival.
namespace Saml::Xml {

using Events = std::vector<std::string>;

class RecordingHandler : public XMLHandler {
  public:
    Events events;
    /// Called after an event is recorded; what it throws is what the handler throws.
    std::function<void(const std::string& event)> onEvent;

    void ProcessingInstruction(const std::string& target, const std::string& data) override {
        Record("ProcessingInstruction " + target + "|" + data);
    }
    void StartElement(const std::string& qualifiedName, unsigned line, unsigned column,
                      const char** attributes) override {
        std::string event = "StartElement " + qualifiedName + " at " + std::to_string(line) + ":" +
                            std::to_string(column);
        for (; *attributes != nullptr; attributes += 2)
            event += std::string(" ") + attributes[0] + "=" + attributes[1];
        Record(std::move(event));
    }
    void EndElement(const std::string& qualifiedName) override {
        Record("EndElement " + qualifiedName);
    }
    void StartCData() override { Record("StartCData"); }
    void EndCData() override { Record("EndCData"); }
    void Comment(const std::string& text) override { Record("Comment " + text); }
    void Characters(const char* data, int length) override {
        Record("Characters " + std::string(data, static_cast<std::size_t>(length)));
    }
    void XmlDeclaration(const std::string& version, const std::string& encoding) override {
        Record("XmlDeclaration " + version + "|" + encoding);
    }
    void StartDocument(bool enforceLimits, boost::intrusive_ptr<Node>& document) override {
        Record(enforceLimits ? "StartDocument true" : "StartDocument false");
        document.reset(CreateDocument());
    }
    void StartDocument(boost::intrusive_ptr<Node>& document) override {
        Record("StartDocument");
        document.reset(CreateDocument());
    }
    void Reset() override { Record("Reset"); }

    /// The events with neighbouring runs of characters joined: how a text is cut into runs is the
    /// tokenizer's affair.
    Events Joined() const {
        Events joined;
        bool inText = false;
        for (const std::string& event : events) {
            const bool isText = event.rfind("Characters ", 0) == 0;
            if (isText && inText)
                joined.back() += event.substr(sizeof "Characters " - 1);
            else
                joined.push_back(event);
            inText = isText;
        }
        return joined;
    }

  private:
    void Record(std::string event) {
        events.push_back(std::move(event));
        // By value: an action may throw, replace itself or record further events.
        const std::string told = events.back();
        if (onEvent) onEvent(told);
    }
};

}  // namespace Saml::Xml
