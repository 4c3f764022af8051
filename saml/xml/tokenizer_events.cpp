#include "saml/xml/tokenizer_events.h"

#include <algorithm>
#include <cstring>

namespace Saml::Xml {
namespace {

// As expat has it for entities, whose expansion it counts; what defaults add it does not.
constexpr std::uint64_t kFreeDefaultedSize = std::uint64_t{8} * 1024 * 1024;
constexpr std::uint64_t kMaxAmplification = 100;

// Other spellings are as good, and their positions left to expat.
bool SaysUtf8(const char* encoding) noexcept {
    return encoding == nullptr || std::strcmp(encoding, "UTF-8") == 0 ||
           std::strcmp(encoding, "utf-8") == 0;
}

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

void TokenizerEvents::ExpectWhole(std::string_view text) noexcept {
    countsPositions_ = TextPosition::StartsAsUtf8(text);
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

void TokenizerEvents::LocateEvent(unsigned& line, unsigned& column) {
    int offset = 0;
    int size = 0;
    const char* const buffer =
        countsPositions_ ? XML_GetInputContext(tokenizer_, &offset, &size) : nullptr;
    if (buffer == nullptr) {  // always, when expat was built to keep no context
        line = static_cast<unsigned>(XML_GetCurrentLineNumber(tokenizer_));
        column = static_cast<unsigned>(XML_GetCurrentColumnNumber(tokenizer_));
        return;
    }
    position_.AdvanceTo({buffer, static_cast<std::size_t>(offset)});
    line = position_.Line();
    column = position_.Column();
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
        unsigned line = 0;
        unsigned column = 0;
        events.LocateEvent(line, column);
        events.handler_.StartElement(events.name_, line, column, attributes);
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
        if (!SaysUtf8(encoding)) events.countsPositions_ = false;
        events.handler_.XmlDeclaration(TextOrEmpty(version), TextOrEmpty(encoding));
    });
}

void TokenizerEvents::OnEntityDeclaration(void* userData, const char*, int, const char*, int,
                                          const char*, const char*, const char*, const char*) {
    TokenizerEvents& events = *static_cast<TokenizerEvents*>(userData);
    if (events.banEntities_) events.Stop();
}

}  // namespace Saml::Xml
