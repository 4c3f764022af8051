// The same characters in other bytes, and bytes that are said to be something else than they are.
// Whatever was signed was characters; what is read is what the bytes say, or nothing.
#include "hostile/attacks/provider.h"
#include "hostile/attacks/refusals.h"

#include <gtest/gtest.h>

namespace Saml::Attacks {
namespace {

using Forge::Replaced;

/// A token with letters of one, two, three and four bytes in UTF-8.
struct Lettered {
    Forge::TokenSpec spec = [] {
        Forge::TokenSpec made = Provider::CustomerSpec();
        made.attributes[1].values = {"Zo\u00eb"};
        made.attributes[2].values = {"\u0416\u4e2d\U0001f600"};
        return made;
    }();
    std::string token = Provider::Signed(spec);
};
const Lettered& Genuine() {
    static const Lettered genuine;
    return genuine;
}
/// The same with letters of Latin-1 only.
struct Western {
    Forge::TokenSpec spec = [] {
        Forge::TokenSpec made = Provider::CustomerSpec();
        made.attributes[1].values = {"Zo\u00eb"};
        return made;
    }();
    std::string token = Provider::Signed(spec);
};
const Western& GenuineWestern() {
    static const Western genuine;
    return genuine;
}

constexpr char kByteOrderMark[] = "\xef\xbb\xbf";

enum class ByteOrder { Big, Little };

void AppendUnit(std::string& wide, unsigned unit, ByteOrder order) {
    const char high = static_cast<char>(unit >> 8U);
    const char low = static_cast<char>(unit & 0xffU);
    wide += order == ByteOrder::Big ? high : low;
    wide += order == ByteOrder::Big ? low : high;
}

/// The code points of a text in UTF-8.
std::u32string CodePoints(const std::string& utf8) {
    std::u32string points;
    for (const char character : utf8) {
        const auto byte = static_cast<unsigned char>(character);
        if ((byte & 0xc0U) == 0x80U)
            points.back() = points.back() << 6U | (byte & 0x3fU);
        else
            points += byte < 0x80U ? byte
                                   : byte & (byte < 0xe0U ? 0x1fU : (byte < 0xf0U ? 0x0fU : 0x07U));
    }
    return points;
}

std::string Utf16(const std::string& utf8, ByteOrder order) {
    std::string wide;
    for (const char32_t point : CodePoints(utf8)) {
        if (point < 0x10000U) {
            AppendUnit(wide, static_cast<unsigned>(point), order);
        } else {
            AppendUnit(wide, static_cast<unsigned>(0xd800U + ((point - 0x10000U) >> 10U)), order);
            AppendUnit(wide, static_cast<unsigned>(0xdc00U + ((point - 0x10000U) & 0x3ffU)), order);
        }
    }
    return wide;
}

std::string Latin1(const std::string& utf8) {
    std::string bytes;
    for (const char32_t point : CodePoints(utf8))
        bytes += static_cast<char>(point);
    return bytes;
}

std::string Declared(const std::string& encoding, const std::string& token) {
    return "<?xml version='1.0' encoding='" + encoding + "'?>" + token;
}
std::string Misdeclared() {
    return NotParsed("encoding specified in XML declaration is incorrect");
}

/// Also, what is accepted by text keeps the text, byte for byte.
void ExpectOutcomesAndTexts(const std::vector<Attack>& attacks) {
    ExpectOutcomes(attacks);
    for (const Attack& attack : attacks) {
        if (attack.outcome.rfind("accepted", 0) != 0) continue;
        const auto token = CreateSamlToken(attack.token, Provider::TrustInTheRoot().get());
        EXPECT_EQ(token->GetXml(), attack.token) << attack.name;
    }
}

TEST(Encodings, OfTheSameCharactersSayTheSame) {
    const std::string& token = Genuine().token;
    const std::string same = Accepted(Genuine().spec);
    const std::string western = Accepted(GenuineWestern().spec);
    ExpectOutcomesAndTexts({
        {"Utf8.Declared", Declared("UTF-8", token), same},
        {"Utf8.DeclaredInSmallLetters", Declared("utf-8", token), same},
        {"Utf8.Marked", kByteOrderMark + token, same},
        {"Utf8.MarkedAndDeclared", kByteOrderMark + Declared("UTF-8", token), same},
        {"Utf16.BigMarked", "\xfe\xff" + Utf16(token, ByteOrder::Big), same},
        {"Utf16.LittleMarked", "\xff\xfe" + Utf16(token, ByteOrder::Little), same},
        {"Utf16.Big", Utf16(token, ByteOrder::Big), same},
        {"Utf16.Little", Utf16(token, ByteOrder::Little), same},
        {"Utf16.BigMarkedAndDeclared",
         "\xfe\xff" + Utf16(Declared("UTF-16", token), ByteOrder::Big), same},
        {"Utf16.LittleMarkedAndDeclared",
         "\xff\xfe" + Utf16(Declared("UTF-16", token), ByteOrder::Little), same},
        {"Utf16.BigDeclared", Utf16(Declared("UTF-16BE", token), ByteOrder::Big), same},
        {"Utf16.LittleDeclared", Utf16(Declared("UTF-16LE", token), ByteOrder::Little), same},
        {"Latin1", Declared("ISO-8859-1", Latin1(GenuineWestern().token)), western},
        {"Latin1.InSmallLetters", Declared("iso-8859-1", Latin1(GenuineWestern().token)), western},
        {"Ascii", Declared("US-ASCII", Replaced(GenuineWestern().token, "\u00eb", "&#235;")),
         western},
        {"CharacterReferences", Replaced(GenuineWestern().token, "\u00eb", "&#xEB;"), western},
    });
}

// The bytes are read as what they are declared to be, and then they say something else.
TEST(Encodings, ThatAreDeclaredFalselySayWhatWasNotSigned) {
    const std::string& token = GenuineWestern().token;
    const std::string wide = Utf16(token, ByteOrder::Big);
    ExpectOutcomes({
        {"Utf8AsLatin1", Declared("ISO-8859-1", token), RefusedAsTampered()},
        {"Latin1AsUtf8", Declared("UTF-8", Latin1(token)), NotWellFormed()},
        {"Latin1AsNothing", Latin1(token), NotWellFormed()},
        {"Latin1AsAscii", Declared("US-ASCII", Latin1(token)), NotWellFormed()},
        {"Utf8AsAscii", Declared("US-ASCII", token), NotWellFormed()},
        // The declaration wins against the mark.
        {"Utf8BehindItsMarkAsLatin1", kByteOrderMark + Declared("ISO-8859-1", token),
         RefusedAsTampered()},
        {"Latin1BehindAUtf8Mark", kByteOrderMark + Declared("ISO-8859-1", Latin1(token)),
         Accepted(GenuineWestern().spec)},
        {"Utf8AsUtf16", Declared("UTF-16", token), Misdeclared()},
        {"Utf8AsUtf16BE", Declared("UTF-16BE", token), Misdeclared()},
        {"Utf16AsUtf8", Utf16(Declared("UTF-8", token), ByteOrder::Big), Misdeclared()},
        {"Utf16AsLatin1", Utf16(Declared("ISO-8859-1", token), ByteOrder::Big), Misdeclared()},
        {"MarkedUtf16AsUtf8", "\xff\xfe" + Utf16(Declared("UTF-8", token), ByteOrder::Little),
         Misdeclared()},
        {"BigAsLittleByDeclaration", Utf16(Declared("UTF-16LE", token), ByteOrder::Big),
         Misdeclared()},
        {"BigAsLittleByMark", "\xff\xfe" + wide, NotWellFormed()},
        {"Utf8BehindAUtf16Mark", "\xfe\xff" + token, NotWellFormed()},
        {"Utf16BehindAUtf8Mark", kByteOrderMark + wide, NotWellFormed()},
        {"Utf16WithHalfACharacter", wide + '\0', NotParsed("unclosed token")},
        {"Utf16ThatEndsInAHalf", wide.substr(0, wide.size() - 1), NotParsed("unclosed token")},
        {"Utf16ThenUtf8", wide + token, NotWellFormed()},
    });
}

TEST(Encodings, ThatTheParserDoesNotKnowAreRefused) {
    const std::string unknown = NotParsed("unknown encoding");
    std::vector<Attack> attacks;
    for (const char* const encoding :
         {"UTF-7", "UTF-32", "UCS-4", "windows-1252", "cp1252", "ISO-8859-15", "Shift_JIS",
          "GB18030", "ISO-2022-JP", "EBCDIC-CP-US", "UTF8", "UTF-8-MAC", "utf-16-le", "latin1",
          "x"})
        attacks.push_back({encoding, Declared(encoding, Genuine().token), unknown});
    // In UTF-7 this would close the name and open another.
    attacks.push_back(
        {"UTF-7.WithMarkupInIt",
         Declared("UTF-7", Replaced(GenuineWestern().token, "Zo\u00eb", "+ADw-/saml:NameID+AD4-")),
         unknown});
    for (const char* const encoding : {"", " ", "7bit", "-", "UTF-8 ",
                                       "UTF\xe2\x80\x90"
                                       "8"})
        attacks.push_back({"Malformed.'" + std::string(encoding) + "'",
                           Declared(encoding, Genuine().token),
                           NotParsed("XML declaration not well-formed")});
    ExpectOutcomes(attacks);
}

/// The genuine token with these bytes behind the first name.
Attack WithBytes(const std::string& name, const std::string& bytes, const std::string& outcome) {
    return {name, Replaced(GenuineWestern().token, "Zo\u00eb", "Zo\u00eb" + bytes), outcome};
}

/// The token in UTF-16 with the first half of a pair of surrogates and nothing or a letter behind
/// it.
std::string WithHalfAPair(const std::string& letter) {
    return Replaced(Utf16(GenuineWestern().token, ByteOrder::Big), std::string("\0o\0\xeb", 4),
                    std::string("\0o\xd8\x3d", 4) + letter);
}

// An expat without the correction of CVE-2026-93990 takes whatever follows for the other half: a
// letter unnoticed, the bracket of the end tag so that the tags match no more.
std::string RefusedForHalfAPair() {
    const std::string outcome =
        OutcomeOf(WithHalfAPair(std::string("\0x", 2)), Provider::TrustInTheSigner());
    return outcome == NotWellFormed() ? outcome : NotParsed("mismatched tag");
}

// What a lenient decoder takes for a character that is not allowed, or for markup.
TEST(Encodings, OfCharactersThatAreNoneAreRefused) {
    ExpectOutcomes({
        WithBytes("OverlongNul", "\xc0\x80", NotWellFormed()),
        WithBytes("OverlongLessThan", "\xc0\xbc", NotWellFormed()),
        WithBytes("OverlongSlashOfThree", "\xe0\x80\xaf", NotWellFormed()),
        WithBytes("OverlongLessThanOfFour", "\xf0\x80\x80\xbc", NotWellFormed()),
        WithBytes("OverlongLetter", "\xc1\x81", NotWellFormed()),
        WithBytes("FiveBytes", "\xf8\x88\x80\x80\x80", NotWellFormed()),
        WithBytes("SixBytes", "\xfc\x84\x80\x80\x80\x80", NotWellFormed()),
        WithBytes("BeyondUnicode", "\xf4\x90\x80\x80", NotWellFormed()),
        WithBytes("LoneContinuation", "\x80", NotWellFormed()),
        WithBytes("MissingContinuation", "\xc3", NotWellFormed()),
        WithBytes("MissingContinuationBeforeAQuote", "\xe2\x82\"", NotWellFormed()),
        WithBytes("HighSurrogate", "\xed\xa0\x80", NotWellFormed()),
        WithBytes("LowSurrogate", "\xed\xb0\x80", NotWellFormed()),
        WithBytes("SurrogatePair", "\xed\xa0\xbd\xed\xb8\x80", NotWellFormed()),
        WithBytes("Nul", std::string(1, '\0'), NotWellFormed()),
        WithBytes("NulAndMore", std::string("\0admin", 6), NotWellFormed()),
        WithBytes("ControlCharacter", "\x08", NotWellFormed()),
        WithBytes("EscapeCharacter", "\x1b[2J", NotWellFormed()),
        WithBytes("NonCharacterFFFE", "\xef\xbf\xbe", NotWellFormed()),
        WithBytes("NonCharacterFFFF", "\xef\xbf\xbf", NotWellFormed()),
        WithBytes("ByteFF", "\xff", NotWellFormed()),
        // These are characters, if odd ones; they were not signed.
        WithBytes("DeleteCharacter", "\x7f", RefusedAsTampered()),
        WithBytes("C1ControlCharacter", "\xc2\x85", RefusedAsTampered()),
        WithBytes("LineSeparator", "\xe2\x80\xa8", RefusedAsTampered()),
        WithBytes("ByteOrderMark", kByteOrderMark, RefusedAsTampered()),
        WithBytes("NonCharacterOfAnotherPlane", "\xf0\x9f\xbf\xbe", RefusedAsTampered()),
        WithBytes("NonCharacterFDD0", "\xef\xb7\x90", RefusedAsTampered()),
        WithBytes("RightToLeftOverride", "\xe2\x80\xae", RefusedAsTampered()),
        {"LoneSurrogateInUtf16", WithHalfAPair(""), RefusedForHalfAPair()},
        {"NulBehindTheToken", GenuineWestern().token + '\0', NotWellFormed()},
        {"NulInFront", '\0' + GenuineWestern().token, NotWellFormed()},
        {"NothingElse", std::string(1, '\0'), NotParsed("unclosed token")},
    });
}

// A provider may sign odd characters; they are read as they are.
TEST(Encodings, OfOddCharactersThatWereSignedSayThem) {
    std::vector<Attack> attacks;
    for (const auto& [name, letters] : std::vector<std::pair<std::string, std::string>>{
             {"ByteOrderMark", "\ufeffAlice"},
             {"NonCharacterOfAnotherPlane", "Alice\xf0\x9f\xbf\xbe"},
             {"RightToLeftOverride", "\u202eecilA"},
             {"ZeroWidthSpace", "Ali\u200bce"},
             {"LineSeparator", "Alice\u2028Admin"},
             {"Decomposed", "Zoe\u0308"}}) {
        Forge::TokenSpec spec = Provider::CustomerSpec();
        spec.attributes[1].values = {letters};
        attacks.push_back({name, Provider::Signed(spec), Accepted(spec)});
    }
    ExpectOutcomesAndTexts(attacks);
}

TEST(XmlDeclarations, AreReadStrictly) {
    const std::string& token = GenuineWestern().token;
    const std::string same = Accepted(GenuineWestern().spec);
    const std::string malformed = NotParsed("XML declaration not well-formed");
    const std::string notAtStart = NotParsed("XML or text declaration not at start of entity");
    ExpectOutcomesAndTexts({
        {"Version1.0", "<?xml version='1.0'?>" + token, same},
        // XML 1.0, fifth edition, 2.8: documents of a later 1.x are read as 1.0.
        {"Version1.1", "<?xml version='1.1'?>" + token, same},
        {"Version1.1WithItsCharacters",
         "<?xml version='1.1'?>" + Replaced(token, "Zo\u00eb", "Zo&#1;"),
         NotParsed("reference to invalid character number")},
        {"Version1.1WithItsLineEnds",
         "<?xml version='1.1'?>" + Replaced(token, "Zo\u00eb", "Zo\u00eb\xc2\x85"),
         RefusedAsTampered()},
        {"Standalone", "<?xml version='1.0' standalone='yes'?>" + token, same},
        {"NotStandalone", "<?xml version='1.0' standalone='no'?>" + token, same},
        {"StandaloneWithAnExternalSubset",
         "<?xml version='1.0' standalone='yes'?><!DOCTYPE x SYSTEM 'x'>" +
             Replaced(token, "Zo\u00eb", "Zo\u00eb&nobody;"),
         NotParsed("undefined entity")},
        {"NotStandaloneWithAnExternalSubset",
         "<?xml version='1.0' standalone='no'?><!DOCTYPE x SYSTEM 'x'>" +
             Replaced(token, "Zo\u00eb", "Zo\u00eb&nobody;"),
         same},
        {"StandalonePerhaps", "<?xml version='1.0' standalone='perhaps'?>" + token, malformed},
        {"NoVersion", "<?xml encoding='UTF-8'?>" + token, malformed},
        {"EncodingTwice", "<?xml version='1.0' encoding='UTF-8' encoding='UTF-8'?>" + token,
         malformed},
        {"WrongOrder", "<?xml version='1.0' standalone='no' encoding='UTF-8'?>" + token, malformed},
        {"BehindABlank", " <?xml version='1.0'?>" + token, notAtStart},
        {"BehindALineFeed", "\n<?xml version='1.0'?>" + token, notAtStart},
        {"BehindAComment", "<!-- --><?xml version='1.0'?>" + token, notAtStart},
        {"Twice", "<?xml version='1.0'?><?xml version='1.0'?>" + token, notAtStart},
        {"SecondEncoding", Declared("UTF-8", Declared("ISO-8859-1", token)), notAtStart},
        {"AtTheEnd", token + "<?xml version='1.0'?>", NotParsed("junk after document element")},
        {"InCapitals", "<?XML version='1.0'?>" + token, NotWellFormed()},
        {"BlanksInFront", " \t\r\n" + token, same},
        {"BlanksBehind", token + " \r\n", same},
        {"TextInFront", "x" + token, NotWellFormed()},
        {"TextBehind", token + "x", NotParsed("junk after document element")},
        {"TwoTokens", token + token, NotParsed("junk after document element")},
        {"Nothing", "", NotParsed("no element found")},
    });
}

}  // namespace
}  // namespace Saml::Attacks
