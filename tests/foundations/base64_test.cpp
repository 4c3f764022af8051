#include "saml/foundations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <random>
#include <type_traits>

namespace Saml {
namespace {

using Bytes = std::vector<unsigned char>;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kTruncated[] = "Truncated Base64!";
constexpr char kInvalidPadding[] = "Invalid Padding in Base 64!";
constexpr char kInvalidCharacter[] = "Non-Valid Character in Base 64!";
constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

Bytes BytesOf(const std::string& text) {
    return Bytes(text.begin(), text.end());
}

/// What a text decodes to: its bytes, or the text of the fault.
struct Decoded {
    Bytes bytes;
    std::string error;
    bool operator==(const Decoded& other) const {
        return bytes == other.bytes && error == other.error;
    }
};

Decoded Decode(const std::string& text) {
    Decoded decoded;
    decoded.bytes = Base64::Decode(text, decoded.error);
    return decoded;
}

void PrintTo(const Decoded& decoded, std::ostream* out) {
    *out << testing::PrintToString(decoded.bytes) << " \"" << decoded.error << "\"";
}

/// The bytes of a text that has no fault.
Bytes Good(const std::string& text) {
    const Decoded decoded = Decode(text);
    EXPECT_EQ(decoded.error, "") << testing::PrintToString(text);
    return decoded.bytes;
}

/// The fault of a text, which gives no bytes.
std::string Fault(const std::string& text) {
    const Decoded decoded = Decode(text);
    EXPECT_THAT(decoded.bytes, IsEmpty()) << testing::PrintToString(text);
    return decoded.error;
}

// RFC 4648 section 10.
struct Vector {
    const char* name;
    const char* bytes;
    const char* text;
};
class Rfc4648Vectors : public testing::TestWithParam<Vector> {};

TEST_P(Rfc4648Vectors, Encode) {
    EXPECT_EQ(Base64::Encode(BytesOf(GetParam().bytes)), GetParam().text);
}

TEST_P(Rfc4648Vectors, Decode) {
    EXPECT_EQ(Good(GetParam().text), BytesOf(GetParam().bytes));
}

INSTANTIATE_TEST_SUITE_P(Base64, Rfc4648Vectors,
                         testing::Values(Vector{"Nothing", "", ""}, Vector{"OneByte", "f", "Zg=="},
                                         Vector{"TwoBytes", "fo", "Zm8="},
                                         Vector{"OneGroup", "foo", "Zm9v"},
                                         Vector{"FourBytes", "foob", "Zm9vYg=="},
                                         Vector{"FiveBytes", "fooba", "Zm9vYmE="},
                                         Vector{"TwoGroups", "foobar", "Zm9vYmFy"}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(Base64Encode, PadsTheLastGroup) {
    EXPECT_EQ(Base64::Encode({0x4D}), "TQ==");
    EXPECT_EQ(Base64::Encode({0x4D, 0x61}), "TWE=");
    EXPECT_EQ(Base64::Encode({0x4D, 0x61, 0x6E}), "TWFu");
}

TEST(Base64Encode, LeavesUnusedBitsZero) {
    EXPECT_EQ(Base64::Encode({0xFF}), "/w==");
    EXPECT_EQ(Base64::Encode({0xFF, 0xFF}), "//8=");
    EXPECT_EQ(Base64::Encode({0xFF, 0xFF, 0xFF}), "////");
    EXPECT_EQ(Base64::Encode({0x00}), "AA==");
}

/// All 64 values in their order, packed: 000000 000001 000010 ...
Bytes EveryValueInOrder() {
    Bytes bytes;
    for (unsigned value = 0; value < 64; value += 4) {
        const unsigned group = value << 18 | (value + 1) << 12 | (value + 2) << 6 | (value + 3);
        for (const unsigned shift : {16u, 8u, 0u})
            bytes.push_back(static_cast<unsigned char>(group >> shift & 0xFF));
    }
    return bytes;
}

TEST(Base64Encode, UsesTheStandardAlphabet) {
    EXPECT_EQ(Base64::Encode(EveryValueInOrder()), kAlphabet);
}

TEST(Base64Encode, NeverBreaksLines) {
    const std::string text = Base64::Encode(Bytes(3 * 100000, 0));
    EXPECT_EQ(text, std::string(4 * 100000, 'A'));
}

TEST(Base64Decode, KnowsTheWholeAlphabetAndNothingElse) {
    EXPECT_EQ(Good(kAlphabet), EveryValueInOrder());

    const std::string known = std::string(kAlphabet) + "=";
    for (int code = 0; code < 256; ++code) {
        const char character = static_cast<char>(code);
        if (known.find(character) != std::string::npos) continue;
        for (std::size_t place = 1; place < 4; ++place) {
            std::string text = "TWFuTWFu";
            text[4 + place] = character;
            // The last character of a text is trimmed when it is one of the four blanks.
            const bool trimmed =
                place == 3 && std::string("\n\r\t ").find(character) != std::string::npos;
            EXPECT_EQ(Fault(text), trimmed ? kTruncated : kInvalidCharacter)
                << "character " << code << " at place " << place;
        }
    }
}

TEST(Base64Decode, SkipsTheSixAsciiBlanksBetweenGroupsAndNoOtherCharacter) {
    const std::string blanks = " \t\n\v\f\r";
    for (int code = 0; code < 256; ++code) {
        const char character = static_cast<char>(code);
        const std::string text = std::string("TWFu") + character + "TWFu";
        if (blanks.find(character) != std::string::npos) {
            EXPECT_EQ(Good(text), BytesOf("ManMan")) << "character " << code;
        } else if (std::string(kAlphabet).find(character) != std::string::npos) {
            EXPECT_EQ(Fault(text), kTruncated) << "character " << code;
        } else if (character == '=') {
            EXPECT_EQ(Fault(text), kInvalidPadding);
        } else {
            EXPECT_EQ(Fault(text), kInvalidCharacter) << "character " << code;
        }
    }
    EXPECT_EQ(Good(" \t\n\v\f\r TWFu\r\n\r\n  TWFu"), BytesOf("ManMan"));
}

TEST(Base64Decode, GivesNothingAndNoFaultForTextsWithoutCharacters) {
    for (const std::string text : {"", " ", "\n", "\r\n", "\t", " \r\n\t \n", "\v", "\f", " \v\f "})
        EXPECT_EQ(Decode(text), (Decoded{{}, ""})) << testing::PrintToString(text);
}

TEST(Base64Decode, TrimsTrailingBlanks) {
    EXPECT_EQ(Good("TWFu\n"), BytesOf("Man"));
    EXPECT_EQ(Good("TWFu \t\r\n"), BytesOf("Man"));
    EXPECT_EQ(Good("TQ==\n"), BytesOf("M"));
    EXPECT_EQ(Good("TWE=\r\n \t"), BytesOf("Ma"));
}

TEST(Base64Decode, DoesNotTrimFormFeedAndVerticalTab) {
    EXPECT_EQ(Good("TWFu\f"), BytesOf("Man"));
    EXPECT_EQ(Good("TWFu\v"), BytesOf("Man"));
    EXPECT_EQ(Good("TWFu\v\f\n"), BytesOf("Man"));
    EXPECT_EQ(Fault("TWFu\fT"), kTruncated);
    EXPECT_EQ(Fault("TW\f"), kInvalidCharacter);
    // Behind a padding they are characters that follow it.
    EXPECT_EQ(Fault("TQ==\f"), kInvalidPadding);
    EXPECT_EQ(Good("TWE=\v"), (Bytes{0x58}));
}

TEST(Base64Decode, RefusesBlanksInsideAGroup) {
    EXPECT_EQ(Fault("TW Fu"), kInvalidCharacter);
    EXPECT_EQ(Fault("T WFu"), kInvalidCharacter);
    EXPECT_EQ(Fault("TWF u"), kInvalidCharacter);
    EXPECT_EQ(Fault("TWFuTW\nFu"), kInvalidCharacter);
}

TEST(Base64Decode, RefusesATextThatEndsInsideAGroup) {
    for (const std::string text :
         {"T", "TW", "TWF", "TWFuT", "TWFuTW", "TWFuTWF", "TWF\n", "TWFu TW"})
        EXPECT_EQ(Fault(text), kTruncated) << text;
}

TEST(Base64Decode, DoesNotExamineTheCharacterAfterTheFirstOfTwoPaddings) {
    EXPECT_THAT(Good("TQ=="), ElementsAre(0x4D));
    for (const char follower : {'x', '!', '\0', '\xFF', '\f'})
        EXPECT_THAT(Good(std::string("TQ=") + follower), ElementsAre(0x4D));
}

TEST(Base64Decode, DoesNotRequireUnusedBitsToBeZero) {
    EXPECT_THAT(Good("TR=="), ElementsAre(0x4D));
    EXPECT_THAT(Good("Tf=="), ElementsAre(0x4D));
    EXPECT_THAT(Good("TWG="), ElementsAre(0x4D, 0x61));
    EXPECT_THAT(Good("TWH="), ElementsAre(0x4D, 0x61));
}

TEST(Base64Decode, RefusesAPaddingThatTwoOrMoreCharactersFollow) {
    for (const std::string text :
         {"T===", "TQ==TWFu", "=AA", "====", "TWFu====", "TWE=TWFu", "TWFu=TWFu", "T=\f\f"})
        EXPECT_EQ(Fault(text), kInvalidPadding) << testing::PrintToString(text);
}

// A padding takes its bytes from the last 18 bits read, wherever it stands. The values are worked
// out by hand: T = 19, W = 22, F = 5, Q = 16; "TWFu" leaves 0x4D616E.
struct MisplacedPadding {
    const char* name;
    const char* text;
    Bytes bytes;
};
class PaddingArithmetic : public testing::TestWithParam<MisplacedPadding> {};

TEST_P(PaddingArithmetic, KeepsTheBitsOfTheGroupBefore) {
    EXPECT_EQ(Good(GetParam().text), GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(
    Base64, PaddingArithmetic,
    testing::Values(
        MisplacedPadding{"AloneInAText", "=", {0x00, 0x00}},
        MisplacedPadding{"TwiceInAText", "==", {0x00}},
        MisplacedPadding{"FirstWithAFollower", "=!", {0x00}},
        MisplacedPadding{"AfterOneCharacter", "T=", {0x00, 0x04}},
        MisplacedPadding{"TwiceAfterOneCharacter", "T==", {0x01}},
        MisplacedPadding{"OnceAfterTwoCharacters", "TQ=", {0x01, 0x34}},
        MisplacedPadding{"OnceAfterTwoCharactersTrimmed", "TQ= \n", {0x01, 0x34}},
        MisplacedPadding{"AfterThreeCharacters", "TWF=", {0x4D, 0x61}},
        MisplacedPadding{"AfterThreeCharactersWithAFollower", "TWF=x", {0x58}},
        MisplacedPadding{"FirstAfterAGroup", "TWFu=", {0x4D, 0x61, 0x6E, 0x58, 0x5B}},
        MisplacedPadding{"FirstAfterAGroupAndBlanks", "TWFu \v=", {0x4D, 0x61, 0x6E, 0x58, 0x5B}},
        MisplacedPadding{"TwiceAfterAGroup", "TWFu==", {0x4D, 0x61, 0x6E, 0x16}},
        MisplacedPadding{"SecondAfterAGroup", "TWFuT=", {0x4D, 0x61, 0x6E, 0x16, 0xE4}},
        MisplacedPadding{"SecondAfterAGroupWithAFollower", "TWFuT=x", {0x4D, 0x61, 0x6E, 0xB9}},
        MisplacedPadding{"OnceAsThirdAfterAGroup", "TWFuTQ=", {0x4D, 0x61, 0x6E, 0xB9, 0x34}},
        MisplacedPadding{"TwiceAsUsual", "TWFuTQ==", {0x4D, 0x61, 0x6E, 0x4D}},
        MisplacedPadding{"OnceAsUsual", "TWFuTWE=", {0x4D, 0x61, 0x6E, 0x4D, 0x61}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(Base64Decode, ReportsTheFirstFaultFromTheLeft) {
    EXPECT_EQ(Fault("T!"), kInvalidCharacter);  // not truncated
    EXPECT_EQ(Fault("!"), kInvalidCharacter);
    EXPECT_EQ(Fault("T=!!"), kInvalidPadding);    // the padding stands before the characters
    EXPECT_EQ(Fault("T!=="), kInvalidCharacter);  // and here behind
    EXPECT_EQ(Fault("!==="), kInvalidCharacter);
    EXPECT_EQ(Fault("TWFu!WFu===="), kInvalidCharacter);
    EXPECT_EQ(Fault("TWFuTWF=T!"), kInvalidPadding);
}

TEST(Base64Decode, AppendsItsFaultsToWhatTheErrorHolds) {
    std::string error = "before: ";
    EXPECT_THAT(Base64::Decode("TWF", error), IsEmpty());
    EXPECT_EQ(error, "before: Truncated Base64!");
    EXPECT_THAT(Base64::Decode("TWFu!", error), IsEmpty());
    EXPECT_EQ(error, "before: Truncated Base64!Non-Valid Character in Base 64!");
    EXPECT_THAT(Base64::Decode("T===", error), IsEmpty());
    EXPECT_EQ(
        error,
        "before: Truncated Base64!Non-Valid Character in Base 64!Invalid Padding in Base 64!");
}

TEST(Base64Decode, LeavesTheErrorUntouchedOnSuccess) {
    std::string error = "before";
    EXPECT_EQ(Base64::Decode("TWFu", error), BytesOf("Man"));
    EXPECT_THAT(Base64::Decode(" \n", error), IsEmpty());
    EXPECT_THAT(Base64::Decode("", error), IsEmpty());
    EXPECT_EQ(error, "before");
}

/// The rules of decoding taken one character at a time.
Decoded DecodeCharacterByCharacter(std::string text) {
    while (!text.empty() && std::string("\n\r\t ").find(text.back()) != std::string::npos)
        text.pop_back();

    Bytes bytes;
    std::uint32_t bits = 0;
    int place = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char character = text[i];
        if (place == 0 && std::string(" \t\n\v\f\r").find(character) != std::string::npos) continue;
        if (character == '=') {
            const std::uint32_t shifted = bits << 6;
            const std::size_t followers = text.size() - i - 1;
            if (followers > 1) return {{}, kInvalidPadding};
            if (followers == 1) {
                bytes.push_back(static_cast<unsigned char>(shifted >> 10 & 0xFF));
            } else {
                bytes.push_back(static_cast<unsigned char>(shifted >> 16 & 0xFF));
                bytes.push_back(static_cast<unsigned char>(shifted >> 8 & 0xFF));
            }
            return {bytes, ""};
        }
        const std::size_t value = std::string(kAlphabet).find(character);
        if (value == std::string::npos) return {{}, kInvalidCharacter};
        bits = bits << 6 | static_cast<std::uint32_t>(value);
        place = (place + 1) % 4;
        if (place == 0)
            for (const int shift : {16, 8, 0})
                bytes.push_back(static_cast<unsigned char>(bits >> shift & 0xFF));
    }
    if (place != 0) return {{}, kTruncated};
    return {bytes, ""};
}

TEST(Base64Decode, AgreesWithTheRulesOnEveryShortText) {
    const std::string characters = "T/9= \f!";
    std::size_t texts = 1;
    for (std::size_t length = 0; length <= 6; ++length, texts *= characters.size())
        for (std::size_t number = 0; number < texts; ++number) {
            std::string text;
            for (std::size_t i = 0, rest = number; i < length; ++i, rest /= characters.size())
                text += characters[rest % characters.size()];
            ASSERT_EQ(Decode(text), DecodeCharacterByCharacter(text))
                << testing::PrintToString(text);
        }
}

TEST(Base64Decode, AgreesWithTheRulesOnLongerTextsWithFewFaults) {
    std::mt19937 random(20120501);
    for (int round = 0; round < 5000; ++round) {
        std::string text;
        for (std::size_t groups = random() % 12; groups > 0; --groups) {
            for (int i = 0; i < 4; ++i)
                text += kAlphabet[random() % 64];
            if (random() % 4 == 0) text += "\r\n";
        }
        for (std::size_t oddities = random() % 3; oddities > 0; --oddities)
            text.insert(random() % (text.size() + 1), 1, " \f==A!"[random() % 6]);
        ASSERT_EQ(Decode(text), DecodeCharacterByCharacter(text)) << testing::PrintToString(text);
    }
}

TEST(Base64, DecodesWhatItEncoded) {
    std::mt19937 random(4648);
    for (std::size_t length = 0; length < 400; ++length) {
        Bytes bytes(length);
        for (unsigned char& byte : bytes)
            byte = static_cast<unsigned char>(random() & 0xFF);
        const std::string text = Base64::Encode(bytes);
        EXPECT_EQ(text.size(), (length + 2) / 3 * 4);
        EXPECT_EQ(Good(text), bytes);
    }
}

TEST(Base64, DecodesALongTextOfLines) {
    Bytes bytes(48 * 20000);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<unsigned char>(i * 7 & 0xFF);
    const std::string text = Base64::Encode(bytes);
    std::string lines;
    for (std::size_t i = 0; i < text.size(); i += 64)
        lines += text.substr(i, 64) + "\r\n";
    EXPECT_EQ(Good(lines), bytes);
}

TEST(Base64, IsAValueWithoutState) {
    const Base64 first;
    Base64 second(first);
    EXPECT_EQ(&(second = first), &second);
    EXPECT_TRUE(std::is_empty_v<Base64>);
}

}  // namespace
}  // namespace Saml
