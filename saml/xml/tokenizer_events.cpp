#include "saml/xml/tokenizer_events.h"

#include <algorithm>
#include <cstring>

namespace Saml::Xml {
namespace {

// As expat has it for entities, whose expansion it counts; what defaults add it does not.
constexpr std::uint64_t kFreeDefaultedSize = std::uint64_t{8} * 1024 * 1024;
constexpr std::uint64_t kMaxAmplification = 100;

std::string TextOrEmpty(const char* text) {
    return text != nullptr ? text : "";
}

}  // namespace

TokenizerEvents::TokenizerEvents(XML_Parser tokenizer, XMLHandler& handler, bool banEntities)
    : tokenizer_(tokenizer), handler_(handler), banEntities_(banEntities) {
    XML_SetUserData(tokenizer, this);
    XML_SetElementHandler(tokenizer, OnStartElement, OnEndElement);
    XML_SetProcessingInstructionHandler(tokenizer, OnProcessingInstruction);
    XML_SetCdataSectionHandler(tokenizer, OnStartCData, OnEndCData);
    XML_SetCommentHandler(tokenizer, OnComment);
    XML_SetCharacterDataHandler(tokenizer, OnCharacters);
    XML_SetXmlDeclHandler(tokenizer, OnXmlDeclaration);
    XML_SetEntityDeclHandler(tokenizer, OnEntityDeclaration);
}

void TokenizerEvents::Stop() noexcept {
    stopped_ = true;
    XML_StopParser(tokenizer_, XML_FALSE);
}

template <class Event>
void TokenizerEvents::Forward(void* userData, Event event) noexcept {
    TokenizerEvents& events = *static_cast<TokenizerEvents*>(userData);
    if (events.stopped_) return;
    try {
        event(events);
    } catch (...) {
        events.Stop();
    }
}

// One declaration of a long default value, and every tag of four bytes holds a copy of it.
void TokenizerEvents::CheckDefaults(const char** attributes) {
    const char** text = attributes + XML_GetSpecifiedAttributeCount(tokenizer_);
    if (*text == nullptr) return;
    for (; *text != nullptr; ++text)
        defaultedSize_ += std::strlen(*text);
    const auto read =
        static_cast<std::uint64_t>(std::max<XML_Index>(XML_GetCurrentByteIndex(tokenizer_), 0));
    if (defaultedSize_ > kFreeDefaultedSize && defaultedSize_ / kMaxAmplification > read)
        throw ParsingAbortedException();
}

void TokenizerEvents::OnStartElement(void* userData, const char* name, const char** attributes) {
    Forward(userData, [=](TokenizerEvents& events) {
        events.CheckDefaults(attributes);
        events.name_ = name;
        events.handler_.StartElement(
            events.name_, static_cast<unsigned>(XML_GetCurrentLineNumber(events.tokenizer_)),
            static_cast<unsigned>(XML_GetCurrentColumnNumber(events.tokenizer_)), attributes);
    });
}

void TokenizerEvents::OnEndElement(void* userData, const char* name) {
    Forward(userData, [=](TokenizerEvents& events) {
        events.name_ = name;
        events.handler_.EndElement(events.name_);
    });
}

void TokenizerEvents::OnProcessingInstruction(void* userData, const char* target,
                                              const char* data) {
    Forward(userData,
            [=](TokenizerEvents& events) { events.handler_.ProcessingInstruction(target, data); });
}

void TokenizerEvents::OnStartCData(void* userData) {
    Forward(userData, [](TokenizerEvents& events) { events.handler_.StartCData(); });
}

void TokenizerEvents::OnEndCData(void* userData) {
    Forward(userData, [](TokenizerEvents& events) { events.handler_.EndCData(); });
}

void TokenizerEvents::OnComment(void* userData, const char* text) {
    Forward(userData, [=](TokenizerEvents& events) { events.handler_.Comment(text); });
}

void TokenizerEvents::OnCharacters(void* userData, const char* data, int length) {
    Forward(userData, [=](TokenizerEvents& events) { events.handler_.Characters(data, length); });
}

void TokenizerEvents::OnXmlDeclaration(void* userData, const char* version, const char* encoding,
                                       int) {
    Forward(userData, [=](TokenizerEvents& events) {
        events.handler_.XmlDeclaration(TextOrEmpty(version), TextOrEmpty(encoding));
    });
}

void TokenizerEvents::OnEntityDeclaration(void* userData, const char*, int, const char*, int,
                                          const char*, const char*, const char*, const char*) {
    TokenizerEvents& events = *static_cast<TokenizerEvents*>(userData);
    if (events.banEntities_) events.Stop();
}

}  // namespace Saml::Xml
