#pragma once

#include "saml/xml.h"
#include "saml/xml/expat_handle.h"
#include "saml/xml/text_position.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace Saml::Xml {

/// Registers expat's callbacks for one parse and forwards each to a handler.
///
/// No exception crosses expat, which is C: one that a handler throws stops the tokenizer, and from
/// then on no event reaches the handler, although expat may still report a pending end tag.
///
/// Attributes that a DTD supplies stop the parse when they grow out of proportion to the text.
class TokenizerEvents {
  public:
    /// Borrows both for the length of a parse. `banEntities` stops the parse at an entity
    /// declaration.
    TokenizerEvents(XML_Parser tokenizer, XMLHandler& handler, bool banEntities);
    TokenizerEvents(const TokenizerEvents&) = delete;
    TokenizerEvents& operator=(const TokenizerEvents&) = delete;

    /// Says that `text` is fed to the tokenizer in one piece.
    void ExpectWhole(std::string_view text) noexcept;
    /// True from the event on that stopped the parse.
    bool Stopped() const noexcept { return stopped_; }

  private:
    template <class Event>
    static void Forward(void* userData, Event event) noexcept;

    static void XMLCALL OnStartElement(void* userData, const char* name, const char** attributes);
    static void XMLCALL OnEndElement(void* userData, const char* name);
    static void XMLCALL OnProcessingInstruction(void* userData, const char* target,
                                                const char* data);
    static void XMLCALL OnStartCData(void* userData);
    static void XMLCALL OnEndCData(void* userData);
    static void XMLCALL OnComment(void* userData, const char* text);
    static void XMLCALL OnCharacters(void* userData, const char* data, int length);
    static void XMLCALL OnXmlDeclaration(void* userData, const char* version, const char* encoding,
                                         int standalone);
    static void XMLCALL OnEntityDeclaration(void* userData, const char* name, int isParameter,
                                            const char* value, int valueLength, const char* base,
                                            const char* systemId, const char* publicId,
                                            const char* notationName);

    void LocateEvent(unsigned& line, unsigned& column);
    void CheckDefaults(const char** attributes);
    void Stop() noexcept;

    XML_Parser tokenizer_;
    XMLHandler& handler_;
    const bool banEntities_;
    bool stopped_ = false;
    /// The text is UTF-8, as far as is known, and all of it stands in the tokenizer's buffer.
    bool countsPositions_ = false;
    TextPosition position_;
    std::uint64_t defaultedSize_ = 0;  ///< Of all attributes that a DTD supplied so far.
    std::string name_;  ///< Reused for every tag, so that a name costs no allocation.
};

}  // namespace Saml::Xml
