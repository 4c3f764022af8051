#pragma once

#include "oracle/signatures/markup_places.h"
#include "support/dice.h"

#include <cstddef>
#include <string>
#include <vector>

/// Spoils a signed token in one random place of what is signed: the assertion without its
/// signature, `SignedInfo` or `SignatureValue`. Some ways leave the canonical form as it was.
class Spoiler {
  public:
    /// \param listedPrefixes  The words of a `PrefixList`. The library lets them count at the apex
    ///                        only: no other element gets a declaration of theirs.
    Spoiler(const std::string& token, const std::string& listedPrefixes, Dice& dice);

    struct Spoiled {
        std::string how;
        std::string xml;
    };
    /// The ways take turns: `turn` tells whose it is.
    Spoiled Spoil(std::size_t turn);

  private:
    struct Way {
        const char* name;
        std::string (Spoiler::*spoil)();
    };
    static const std::vector<Way>& Ways();

    std::string ChangeText();
    std::string AddText();
    std::string RemoveText();
    std::string ChangeAttribute();
    std::string AddAttribute();
    std::string RemoveAttribute();
    std::string SwapAttributes();
    std::string RequoteAttribute();
    std::string RenameElement();
    std::string RemoveElement();
    std::string RepeatElement();
    std::string ChangeDigestValue();
    std::string ChangeSignatureValue();
    std::string AddBlankToContent();
    std::string AddBlankToTag();
    std::string AddComment();
    std::string RespellCharacter();
    std::string ChangeAnyByte();

    std::size_t Below(std::size_t end) { return dice_.Below(end); }
    std::size_t PlaceIn(const MarkupPlaces::Span& span) { return span.begin + Below(span.Size()); }
    template <class Row>
    const Row& Any(const std::vector<Row>& rows) {
        return dice_.Any(rows);
    }
    const MarkupPlaces::Element& AnyElement() { return places_.elements[Any(elements_)]; }
    /// Not the assertion, which is the first.
    const MarkupPlaces::Element& AnyInnerElement();
    const MarkupPlaces::Element& AnyElementWithAttributes(std::size_t count);

    /// The text with another character at `place`, one of `characters`.
    std::string Changed(std::size_t place, const std::string& characters);
    std::string Replaced(const MarkupPlaces::Span& span, const std::string& by) const;
    std::string Inserted(std::size_t place, const std::string& text) const;
    std::string TextOf(const MarkupPlaces::Span& span) const;
    /// The content of the element with this name, which holds text alone.
    const MarkupPlaces::Span& ContentOf(const std::string& localName) const;
    bool IsDeclaration(const MarkupPlaces::Attribute& attribute) const;
    bool IsInReference(std::size_t place) const;
    void Choose();

    const std::string& token_;
    const std::string listedPrefixes_;
    Dice& dice_;
    const MarkupPlaces::Places places_;
    std::vector<std::size_t> elements_;     ///< What is signed, by number.
    std::vector<MarkupPlaces::Span> runs_;  ///< Character data that is signed.
    std::vector<std::size_t> bytes_;        ///< Places of signed bytes, those of markup as well.
};
