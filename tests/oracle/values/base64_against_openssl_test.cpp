#include "saml/foundations.h"
#include "saml/security/openssl_handles.h"
#include "support/dice.h"
#include "support/random_seed.h"

#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// Base64 against OpenSSL's codec, on inputs whose meaning RFC 4648 leaves no doubt about.
namespace Saml {
namespace {

using Bytes = std::vector<unsigned char>;
using CodecHandle = std::unique_ptr<EVP_ENCODE_CTX, Xml::Security::FreeWith<EVP_ENCODE_CTX_free>>;

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

const unsigned char* BytesOf(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

std::string OpenSslText(const Bytes& data) {
    Bytes text((data.size() + 2) / 3 * 4 + 1);  // a zero is written behind it
    const int length = EVP_EncodeBlock(text.data(), data.data(), static_cast<int>(data.size()));
    return std::string(text.begin(), text.begin() + length);
}

/// Nothing when OpenSSL refuses the text.
std::optional<Bytes> OpenSslBytes(const std::string& text) {
    Bytes data(text.size() / 4 * 3 + 3);
    const int length = EVP_DecodeBlock(data.data(), BytesOf(text), static_cast<int>(text.size()));
    if (length < 0) return std::nullopt;
    // Padding comes out as zero bytes.
    const auto padding = std::count(text.begin(), text.end(), '=');
    data.resize(static_cast<std::size_t>(length) - static_cast<std::size_t>(padding));
    return data;
}

std::optional<Bytes> OurBytes(const std::string& text) {
    std::string error;
    Bytes data = Base64::Decode(text, error);
    if (error.empty()) return data;
    EXPECT_TRUE(data.empty()) << text;
    return std::nullopt;
}

/// The first bytes, for messages.
std::string Shown(const Bytes& data) {
    std::string shown = std::to_string(data.size()) + " bytes:";
    for (std::size_t i = 0; i < std::min<std::size_t>(data.size(), 64); ++i) {
        const std::string digits = "0123456789abcdef";
        shown += {' ', digits[data[i] / 16U], digits[data[i] % 16U]};
    }
    return data.size() > 64 ? shown + " ..." : shown;
}

std::string Shown(const std::optional<Bytes>& data) {
    return data ? Shown(*data) : "refused";
}

testing::AssertionResult DecodesAlike(const std::string& text) {
    const std::optional<Bytes> ours = OurBytes(text);
    const std::optional<Bytes> theirs = OpenSslBytes(text);
    if (ours == theirs) return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << testing::PrintToString(text.substr(0, 100)) << "\nours: " << Shown(ours)
           << "\nOpenSSL's: " << Shown(theirs);
}

/// Encoding agrees, and decoding the text agrees and gives the data.
testing::AssertionResult AgreesOn(const Bytes& data) {
    const std::string ours = Base64::Encode(data);
    const std::string theirs = OpenSslText(data);
    if (ours != theirs)
        return testing::AssertionFailure() << Shown(data) << "\nours: " << ours.substr(0, 100)
                                           << "\nOpenSSL's: " << theirs.substr(0, 100);
    const std::optional<Bytes> back = OurBytes(ours);
    if (back != data)
        return testing::AssertionFailure() << Shown(data) << "\ndecoded: " << Shown(back);
    return DecodesAlike(ours);
}

Bytes RandomBytes(Dice& dice, std::size_t length) {
    Bytes data(length);
    for (unsigned char& byte : data)
        byte = static_cast<unsigned char>(dice.Below(256));
    return data;
}

void Tell(std::size_t count) {
    std::cout << count << " inputs\n";
    testing::Test::RecordProperty("inputs", static_cast<int>(count));
}

TEST(Base64AgainstOpenSsl, AgreesOnRandomBytesOfEveryLength) {
    const std::uint64_t seed = RandomSeed(46480001);
    SCOPED_TRACE("seed " + std::to_string(seed));
    Dice dice(seed);
    std::size_t count = 0;
    for (std::size_t length = 0; length <= 300; ++length)
        for (int i = 0; i < 20; ++i, ++count)
            ASSERT_TRUE(AgreesOn(RandomBytes(dice, length)));
    Tell(count);
    EXPECT_EQ(count, 301u * 20);
}

TEST(Base64AgainstOpenSsl, AgreesOnBigInputs) {
    const std::uint64_t seed = RandomSeed(46480002);
    SCOPED_TRACE("seed " + std::to_string(seed));
    Dice dice(seed);
    std::size_t count = 0;
    for (const std::size_t size : {std::size_t{4096}, std::size_t{65536}, std::size_t{1} << 20})
        for (std::size_t more = 0; more < 3; ++more, ++count)
            ASSERT_TRUE(AgreesOn(RandomBytes(dice, size + more)));
    Tell(count);
}

TEST(Base64AgainstOpenSsl, AgreesOnEveryOneByteAndEveryTwo) {
    std::size_t count = 0;
    for (unsigned first = 0; first < 256; ++first) {
        const auto one = static_cast<unsigned char>(first);
        ASSERT_TRUE(AgreesOn({one}));
        ++count;
        for (unsigned second = 0; second < 256; ++second, ++count)
            ASSERT_TRUE(AgreesOn({one, static_cast<unsigned char>(second)}));
    }
    Tell(count);
    EXPECT_EQ(count, 256u + 65536);
}

// One input for each first byte, with all groups that begin with it.
TEST(Base64AgainstOpenSsl, AgreesOnEveryGroupOfThreeBytes) {
    std::size_t groups = 0;
    for (unsigned first = 0; first < 256; ++first) {
        Bytes data(3 * 65536);
        for (std::size_t i = 0; i < 65536; ++i, ++groups) {
            data[3 * i] = static_cast<unsigned char>(first);
            data[3 * i + 1] = static_cast<unsigned char>(i >> 8);
            data[3 * i + 2] = static_cast<unsigned char>(i & 0xFF);
        }
        ASSERT_TRUE(AgreesOn(data));
    }
    Tell(groups);
    EXPECT_EQ(groups, std::size_t{1} << 24);
}

// With bits that an encoder leaves zero, as both are lenient about them (RFC 4648 section 3.5).
TEST(Base64AgainstOpenSsl, AgreesOnEveryPaddedGroup) {
    std::size_t count = 0;
    for (std::size_t first = 0; first < 64; ++first)
        for (std::size_t second = 0; second < 64; ++second) {
            const std::string two{kAlphabet[first], kAlphabet[second]};
            ASSERT_TRUE(DecodesAlike(two + "=="));
            ASSERT_TRUE(DecodesAlike("TWFu" + two + "=="));
            count += 2;
            for (std::size_t third = 0; third < 64; ++third, ++count)
                ASSERT_TRUE(DecodesAlike(two + kAlphabet[third] + "="));
        }
    Tell(count);
    EXPECT_EQ(count, 64u * 64 * 2 + 64u * 64 * 64);
}

TEST(Base64AgainstOpenSsl, RefusesWhatIsOutsideTheAlphabetAtEveryPlace) {
    const std::string regular = "TWFuTWFuTWE=";
    std::size_t count = 0;
    for (int code = 0; code < 256; ++code) {
        const char character = static_cast<char>(code);
        // Blanks and padding have their own rules, which differ on purpose.
        if (std::string(kAlphabet).find(character) != std::string::npos ||
            std::string(" \t\n\v\f\r=").find(character) != std::string::npos)
            continue;
        for (std::size_t place = 0; place < regular.size() - 1; ++place, ++count) {
            std::string text = regular;
            text[place] = character;
            ASSERT_TRUE(DecodesAlike(text));
            ASSERT_EQ(OurBytes(text), std::nullopt) << testing::PrintToString(text);
        }
    }
    Tell(count);
    EXPECT_EQ(count, (256u - 64 - 7) * 11);
}

TEST(Base64AgainstOpenSsl, RefusesTruncatedTexts) {
    const std::string alphabet = kAlphabet;
    std::size_t count = 0;
    for (std::size_t length = 1; length < alphabet.size(); ++length) {
        if (length % 4 == 0) continue;
        ASSERT_TRUE(DecodesAlike(alphabet.substr(0, length)));
        ASSERT_EQ(OurBytes(alphabet.substr(0, length)), std::nullopt) << length;
        ++count;
    }
    Tell(count);
    EXPECT_EQ(count, 48u);
}

std::string BrokenIntoLines(const Bytes& data) {
    const CodecHandle codec(EVP_ENCODE_CTX_new());
    Bytes text(data.size() * 2 + 100);
    int length = 0;
    int rest = 0;
    EVP_EncodeInit(codec.get());
    EVP_EncodeUpdate(codec.get(), text.data(), &length, data.data(), static_cast<int>(data.size()));
    EVP_EncodeFinal(codec.get(), text.data() + length, &rest);
    return std::string(text.begin(), text.begin() + length + rest);
}

TEST(Base64AgainstOpenSsl, DecodesItsLines) {
    const std::uint64_t seed = RandomSeed(46480003);
    SCOPED_TRACE("seed " + std::to_string(seed));
    Dice dice(seed);
    std::size_t count = 0;
    std::size_t lines = 0;
    for (std::size_t length = 0; length <= 300; ++length)
        for (int i = 0; i < 5; ++i, ++count) {
            const Bytes data = RandomBytes(dice, length);
            const std::string text = BrokenIntoLines(data);
            lines += static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
            const std::optional<Bytes> ours = OurBytes(text);
            ASSERT_EQ(ours, data) << text << "ours: " << Shown(ours)
                                  << "\nencoded: " << Shown(data);
        }
    Tell(count);
    // 48 bytes a line, the last one not full.
    std::size_t expectedLines = 0;
    for (std::size_t length = 0; length <= 300; ++length)
        expectedLines += 5 * ((length + 47) / 48);
    EXPECT_EQ(lines, expectedLines);
}

}  // namespace
}  // namespace Saml
