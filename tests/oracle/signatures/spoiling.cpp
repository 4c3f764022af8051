#include "oracle/signatures/spoiling.h"

#include "support/qualified_names.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <stdexcept>

namespace {

const std::string kLettersAndDigits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
const std::string kBase64 = kLettersAndDigits + "+/";
const std::string kAnything = kLettersAndDigits + " \t\n!\"#$%&'()*+,-./:;<=>?@[\\]^_`{|}~\x7F\xC3";
const std::string kBlanks = " \t\n";

}  // namespace

Spoiler::Spoiler(const std::string& token, const std::string& listedPrefixes, Dice& dice)
    : token_(token),
      listedPrefixes_(" " + listedPrefixes + " "),
      dice_(dice),
      places_(MarkupPlaces::PlacesOf(token)) {
    Choose();
}

const std::vector<Spoiler::Way>& Spoiler::Ways() {
    static const std::vector<Way> ways = {
        {"text changed", &Spoiler::ChangeText},
        {"text added", &Spoiler::AddText},
        {"text removed", &Spoiler::RemoveText},
        {"attribute value changed", &Spoiler::ChangeAttribute},
        {"attribute added", &Spoiler::AddAttribute},
        {"attribute removed", &Spoiler::RemoveAttribute},
        {"attributes swapped", &Spoiler::SwapAttributes},
        {"attribute requoted", &Spoiler::RequoteAttribute},
        {"element renamed", &Spoiler::RenameElement},
        {"element removed", &Spoiler::RemoveElement},
        {"element repeated", &Spoiler::RepeatElement},
        {"DigestValue changed", &Spoiler::ChangeDigestValue},
        {"SignatureValue changed", &Spoiler::ChangeSignatureValue},
        {"blank added to content", &Spoiler::AddBlankToContent},
        {"blank added to a tag", &Spoiler::AddBlankToTag},
        {"comment added", &Spoiler::AddComment},
        {"character respelled", &Spoiler::RespellCharacter},
        {"byte changed", &Spoiler::ChangeAnyByte}};
    return ways;
}

Spoiler::Spoiled Spoiler::Spoil(std::size_t turn) {
    const Way& way = Ways()[turn % Ways().size()];
    return {way.name, (this->*way.spoil)()};
}

/// What is below the assertion, but for the signature's `KeyInfo` and the white space around its
/// children.
void Spoiler::Choose() {
    const std::vector<MarkupPlaces::Element>& all = places_.elements;
    std::set<std::size_t> chosen;
    std::set<std::size_t> bytes;
    for (std::size_t i = 0; i != all.size(); ++i) {
        const bool isApex = elements_.empty() && all[i].localName == "Assertion";
        const bool isBelow = all[i].parent && chosen.count(*all[i].parent) != 0;
        const bool isKeyInfo = isBelow && all[i].localName == "KeyInfo" &&
                               all[*all[i].parent].localName == "Signature";
        if ((!isApex && !isBelow) || isKeyInfo) continue;
        chosen.insert(i);
        elements_.push_back(i);
        for (std::size_t place = all[i].startTag.begin; place != all[i].startTag.end; ++place)
            bytes.insert(place);
        // Changed at random, a namespace name may become a relative one. Those Canonical XML 1.0
        // refuses (1.3) even where it writes nothing of them, and then there is nothing to compare.
        for (const MarkupPlaces::Attribute& attribute : all[i].attributes)
            if (IsDeclaration(attribute))
                for (std::size_t place = attribute.value.begin; place != attribute.value.end;
                     ++place)
                    bytes.erase(place);
    }
    for (const MarkupPlaces::Run& run : places_.runs) {
        if (chosen.count(run.parent) == 0 || all[run.parent].localName == "Signature") continue;
        runs_.push_back(run.span);
        for (std::size_t place = run.span.begin; place != run.span.end; ++place)
            bytes.insert(place);
    }
    bytes_.assign(bytes.begin(), bytes.end());
    if (elements_.empty() || runs_.empty()) throw std::runtime_error("nothing to spoil");
}

std::string Spoiler::ChangeText() {
    return Changed(PlaceIn(Any(runs_)), kAnything);
}

std::string Spoiler::AddText() {
    return Inserted(PlaceIn(Any(runs_)), {kAnything[Below(kAnything.size())]});
}

std::string Spoiler::RemoveText() {
    const std::size_t place = PlaceIn(Any(runs_));
    return Replaced({place, place + 1}, "");
}

std::string Spoiler::ChangeAttribute() {
    const MarkupPlaces::Attribute& attribute = Any(AnyElementWithAttributes(1).attributes);
    if (attribute.value.Size() == 0) return Inserted(attribute.value.begin, "x");
    if (!IsDeclaration(attribute)) return Changed(PlaceIn(attribute.value), kAnything);
    // As above, the scheme stays.
    const std::size_t scheme = token_.find(':', attribute.value.begin);
    return Changed(PlaceIn({scheme + 1, attribute.value.end}), kLettersAndDigits);
}

std::string Spoiler::AddAttribute() {
    std::vector<std::string> added = {" x=\"1\"",         " ID=\"_x\"",
                                      " xml:lang=\"en\"", " xsi:nil=\"true\"",
                                      " xmlns=\"\"",      " xmlns:added=\"urn:example:added\""};
    for (const std::string prefix : {"ext", "xsi"})
        if (listedPrefixes_.find(" " + prefix + " ") == std::string::npos)
            added.push_back(" xmlns:" + prefix + "=\"urn:example:other\"");
    return Inserted(AnyElement().startName.end, Any(added));
}

std::string Spoiler::RemoveAttribute() {
    return Replaced(Any(AnyElementWithAttributes(1).attributes).whole, "");
}

std::string Spoiler::SwapAttributes() {
    const std::vector<MarkupPlaces::Attribute>& attributes = AnyElementWithAttributes(2).attributes;
    const std::size_t first = Below(attributes.size() - 1);
    const MarkupPlaces::Span& one = attributes[first].whole;
    const MarkupPlaces::Span& other = attributes[first + 1].whole;
    return Replaced({one.begin, other.end}, TextOf(other) + TextOf(one));
}

std::string Spoiler::RequoteAttribute() {
    const MarkupPlaces::Attribute& attribute = Any(AnyElementWithAttributes(1).attributes);
    const std::string value = TextOf(attribute.value);
    return Replaced({attribute.value.begin - 1, attribute.value.end + 1}, "'" + value + "'");
}

std::string Spoiler::RenameElement() {
    const MarkupPlaces::Element& element = AnyElement();
    const std::string written = TextOf(element.startName);
    const std::vector<std::string> names = {written + "x", "ext:" + element.localName,
                                            "unbound:" + element.localName,
                                            "x" + element.localName};
    const std::string& name = Any(names);
    std::string renamed = token_;
    if (element.endName) renamed.replace(element.endName->begin, element.endName->Size(), name);
    return renamed.replace(element.startName.begin, element.startName.Size(), name);
}

std::string Spoiler::RemoveElement() {
    return Replaced(AnyInnerElement().whole, "");
}

std::string Spoiler::RepeatElement() {
    const MarkupPlaces::Span& whole = AnyInnerElement().whole;
    return Inserted(whole.end, TextOf(whole));
}

std::string Spoiler::ChangeDigestValue() {
    return Changed(PlaceIn(ContentOf("DigestValue")), kBase64);
}

std::string Spoiler::ChangeSignatureValue() {
    const MarkupPlaces::Span& content = ContentOf("SignatureValue");
    // The padding and what stands before it has rules of its own.
    constexpr std::size_t kLastGroup = 4;
    const bool atTheEnd = Below(3) == 0;
    return Changed(PlaceIn({atTheEnd ? content.end - kLastGroup : content.begin, content.end}),
                   kBase64);
}

std::string Spoiler::AddBlankToContent() {
    const std::string blank = {kBlanks[Below(kBlanks.size())]};
    const MarkupPlaces::Element& element = AnyElement();
    const bool inFront = element.endName && Below(2) == 0;
    constexpr std::size_t kEndTagBegin = 2;
    return Inserted(inFront ? element.endName->begin - kEndTagBegin : element.startTag.end, blank);
}

std::string Spoiler::AddBlankToTag() {
    const MarkupPlaces::Element& element = AnyElement();
    const bool toTheEnd = element.endName && Below(2) == 0;
    return Inserted(toTheEnd ? element.endName->end : element.startName.end,
                    {kBlanks[Below(kBlanks.size())]});
}

std::string Spoiler::AddComment() {
    const std::string comment = "<!--spoiled-->";
    return Inserted(Below(2) == 0 ? PlaceIn(Any(runs_)) : AnyElement().startTag.end, comment);
}

std::string Spoiler::RespellCharacter() {
    const bool inText = Below(2) == 0;
    const MarkupPlaces::Span span =
        inText ? Any(runs_) : Any(AnyElementWithAttributes(1).attributes).value;
    std::vector<std::size_t> candidates;
    for (std::size_t i = span.begin; i != span.end; ++i)
        if (kBase64.find(token_[i]) != std::string::npos && !IsInReference(i))
            candidates.push_back(i);
    if (candidates.empty()) return RespellCharacter();
    const std::size_t place = Any(candidates);
    const std::string reference =
        "&#" + std::to_string(static_cast<unsigned char>(token_[place])) + ";";
    return Replaced({place, place + 1}, reference);
}

std::string Spoiler::ChangeAnyByte() {
    return Changed(Any(bytes_), kAnything);
}

const MarkupPlaces::Element& Spoiler::AnyInnerElement() {
    return places_.elements[elements_[1 + Below(elements_.size() - 1)]];
}

const MarkupPlaces::Element& Spoiler::AnyElementWithAttributes(std::size_t count) {
    std::vector<std::size_t> candidates;
    std::copy_if(elements_.begin(), elements_.end(), std::back_inserter(candidates),
                 [&](std::size_t i) { return places_.elements[i].attributes.size() >= count; });
    return places_.elements[Any(candidates)];
}

std::string Spoiler::Changed(std::size_t place, const std::string& characters) {
    std::string others = characters;
    others.erase(std::remove(others.begin(), others.end(), token_[place]), others.end());
    return Replaced({place, place + 1}, {others[Below(others.size())]});
}

std::string Spoiler::Replaced(const MarkupPlaces::Span& span, const std::string& by) const {
    return std::string(token_).replace(span.begin, span.Size(), by);
}

std::string Spoiler::Inserted(std::size_t place, const std::string& text) const {
    return std::string(token_).insert(place, text);
}

std::string Spoiler::TextOf(const MarkupPlaces::Span& span) const {
    return token_.substr(span.begin, span.Size());
}

const MarkupPlaces::Span& Spoiler::ContentOf(const std::string& localName) const {
    for (const MarkupPlaces::Run& run : places_.runs)
        if (places_.elements[run.parent].localName == localName) return run.span;
    throw std::runtime_error("there is no text in " + localName);
}

bool Spoiler::IsDeclaration(const MarkupPlaces::Attribute& attribute) const {
    return QualifiedNames::IsDeclaration(TextOf(attribute.name));
}

/// A reference ends before anything that is no name, number or semicolon.
bool Spoiler::IsInReference(std::size_t place) const {
    const std::size_t mark = token_.find_last_of("&;<>\"' ", place);
    return mark != std::string::npos && token_[mark] == '&';
}
