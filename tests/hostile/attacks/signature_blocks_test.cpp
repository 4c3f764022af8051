// What stands inside of an RSA signature (RFC 8017 sections 8.2.2 and 9.2). A verifier that takes
// the block apart instead of comparing it whole can be given one with room for a forger's numbers;
// with the public exponent 3 these are a mere cube root: D. Bleichenbacher at CRYPTO 2006
// (CVE-2006-4339), "BERserk" (CVE-2014-1568), and many since (CVE-2016-1494, CVE-2018-16151).
//
// Here OpenSSL compares; RFC 8017 demands NULL parameters in the DigestInfo of this scheme, and its
// verification encodes anew, so that a block without them is refused, too.
#include "hostile/attacks/hand_made_signature.h"
#include "hostile/attacks/raw_rsa.h"
#include "hostile/attacks/refusals.h"
#include "support/test_keys.h"

#include <gtest/gtest.h>

#include <functional>

namespace Saml::Attacks {
namespace {

using namespace std::string_literals;

constexpr char kDigestName[] = "SHA256";
constexpr char kSha256Oid[] = "\x60\x86\x48\x01\x65\x03\x04\x02\x01";
constexpr std::size_t kModulusSize = 256;

/// A signer of the provider's whose key has the public exponent 3.
const char* CubeSigner() {
    constexpr char kExtensions[] = "basicConstraints=CA:FALSE\nkeyUsage=digitalSignature\n";
    TestKeys::Issue({"cube-signer", "Cube Signer", "rsa-3", "intermediate", kExtensions});
    return "cube-signer";
}

std::string Value(unsigned char tag, const std::string& content) {
    std::string value(1, static_cast<char>(tag));
    return (value += static_cast<char>(content.size())) += content;  // less than 128 bytes
}
std::string Identifier() {
    return Value(0x06, kSha256Oid);
}
std::string DigestInfo(const std::string& algorithm, const std::string& digest) {
    return Value(0x30, Value(0x30, algorithm) + Value(0x04, digest));
}
std::string DigestInfo(const std::string& digest) {
    return DigestInfo(Identifier() + Value(0x05, ""), digest);
}

/// EMSA-PKCS1-v1_5 with this content, filled up to the modulus.
std::string Block(const std::string& content) {
    return "\0\1"s + std::string(kModulusSize - 3 - content.size(), '\xff') + "\0"s + content;
}
/// With so few bytes of padding, and `rest` filled up to the modulus behind the content.
std::string ShortBlock(std::size_t padding, const std::string& content, char rest = '\0') {
    std::string block = "\0\1"s + std::string(padding, '\xff') + "\0"s + content;
    block.resize(kModulusSize, rest);
    return block;
}

using Blocks = std::function<std::string(const std::string& digest)>;

std::string TokenOf(const Signing& sign, const Forge::TokenSpec& spec) {
    HandMadeSignature signature;
    signature.sign = sign;
    signature.keyInfo = Sending({CubeSigner(), "intermediate"});
    return TokenWith(signature, spec);
}

/// With the block as the right key encrypts it: only its form is wrong.
std::string WithBlock(const Blocks& block, const Forge::TokenSpec& spec) {
    return TokenOf(
        [block](const std::string& signedInfo) {
            return RawRsa::Encrypted("rsa-3", block(DigestOf(kDigestName, signedInfo)));
        },
        spec);
}

/// Everybody trusts this signer, too.
void ExpectOutcomesForTheCubeSigner(const std::vector<Attack>& attacks) {
    std::vector<Attack> tried;
    for (Attack attack : attacks) {
        const std::string name = attack.name;
        attack.trust = Provider::TrustInTheRoot();
        tried.push_back(attack);
        attack.name = name + "ForTheSet";
        attack.trust = Provider::TrustSet({CubeSigner()});
        tried.push_back(attack);
    }
    ExpectOutcomes(tried);
}

TEST(SignatureBlocks, OfTheRightFormAreAccepted) {
    const Forge::TokenSpec customer = Provider::CustomerSpec();
    ExpectOutcomesForTheCubeSigner({
        {"ByOpenSsl", TokenOf(SigningWith("rsa-3"), customer), Accepted(customer)},
        {"ByHand",
         WithBlock([](const std::string& digest) { return Block(DigestInfo(digest)); }, customer),
         Accepted(customer)},
    });
}

TEST(SignatureBlocks, OfAnotherFormAreRefused) {
    const Forge::TokenSpec customer = Provider::CustomerSpec();
    const auto with = [&](const char* name, const Blocks& block) {
        return Attack{name, WithBlock(block, customer), RefusedAsTampered()};
    };
    const auto replaced = [&](const char* name, std::size_t place, char by) {
        return with(name, [place, by](const std::string& digest) {
            std::string block = Block(DigestInfo(digest));
            block[place] = by;
            return block;
        });
    };
    ExpectOutcomesForTheCubeSigner({
        with("GarbageBehindTheDigest",
             [](const auto& d) { return ShortBlock(8, DigestInfo(d), '\x5a'); }),
        with("ZerosBehindTheDigest", [](const auto& d) { return ShortBlock(8, DigestInfo(d)); }),
        with("OneByteBehindTheDigest", [](const auto& d) { return Block(DigestInfo(d) + "\0"s); }),
        with("SevenBytesOfPadding",
             [](const auto& d) { return ShortBlock(7, DigestInfo(d), '\x5a'); }),
        with("NoPadding", [](const auto& d) { return ShortBlock(0, DigestInfo(d), '\x5a'); }),
        replaced("FirstByteNotZero", 0, '\x01'),
        replaced("BlockType0", 1, '\x00'),
        replaced("BlockType2", 1, '\x02'),
        replaced("PaddingBeginsWithAnotherByte", 2, '\xfe'),
        replaced("PaddingHoldsAnotherByte", 100, '\x7f'),
        replaced("PaddingHoldsAZero", 100, '\x00'),
        with("PaddingOfZeros",
             [](const auto& d) {
                 const std::string info = DigestInfo(d);
                 return "\0\1"s + std::string(kModulusSize - 2 - info.size(), '\0') + info;
             }),
        with("NoSeparator",
             [](const auto& d) {
                 const std::string info = DigestInfo(d);
                 return "\0\1"s + std::string(kModulusSize - 2 - info.size(), '\xff') + info;
             }),
        with("EncryptionPadding",
             [](const auto& d) {
                 std::string block = Block(DigestInfo(d));
                 block[1] = '\x02';
                 for (std::size_t i = 2; block[i] != '\0'; ++i)
                     block[i] = '\x5a';
                 return block;
             }),
        with("DigestWithoutItsInfo", [](const auto& d) { return Block(d); }),
        with("DigestAsAnOctetString", [](const auto& d) { return Block(Value(0x04, d)); }),
        with("DigestInTheMiddle",
             [](const auto& d) { return ShortBlock(100, DigestInfo(d), '\xff'); }),
        with("OnlyZeros", [](const auto&) { return std::string(kModulusSize, '\0'); }),
    });
}

TEST(SignatureBlocks, OfAnotherDigestInfoAreRefused) {
    const Forge::TokenSpec customer = Provider::CustomerSpec();
    const auto with = [&](const char* name, const Blocks& info) {
        return Attack{
            name,
            WithBlock([info](const std::string& digest) { return Block(info(digest)); }, customer),
            RefusedAsTampered()};
    };
    ExpectOutcomesForTheCubeSigner({
        with("WithoutParameters", [](const auto& d) { return DigestInfo(Identifier(), d); }),
        with("GarbageInTheNull",
             [](const auto& d) {
                 return DigestInfo(Identifier() + Value(0x05, std::string(20, '\x5a')), d);
             }),
        with("GarbageInsteadOfTheNull",
             [](const auto& d) {
                 return DigestInfo(Identifier() + Value(0x04, std::string(20, '\x5a')), d);
             }),
        with("GarbageBehindTheNull",
             [](const auto& d) {
                 return DigestInfo(
                     Identifier() + Value(0x05, "") + Value(0x04, std::string(20, '\x5a')), d);
             }),
        with("TheNullTwice",
             [](const auto& d) {
                 return DigestInfo(Identifier() + Value(0x05, "") + Value(0x05, ""), d);
             }),
        with("GarbageInsideBehindTheDigest",
             [](const auto& d) {
                 return Value(0x30, Value(0x30, Identifier() + Value(0x05, "")) + Value(0x04, d) +
                                        std::string(20, '\x5a'));
             }),
        with("LengthInTwoBytes",
             [](const auto& d) {
                 const std::string info = DigestInfo(d);
                 return info.substr(0, 1) + "\x81" + info.substr(1);
             }),
        with("LengthInThreeBytes",
             [](const auto& d) {
                 const std::string info = DigestInfo(d);
                 return info.substr(0, 1) + "\x82\0"s + info.substr(1);
             }),
        with("LengthOfTheDigestInTwoBytes",
             [](const auto& d) {
                 return Value(0x30,
                              Value(0x30, Identifier() + Value(0x05, "")) + "\x04\x81\x20" + d);
             }),
        with("LengthOfTheNullInTwoBytes",
             [](const auto& d) { return DigestInfo(Identifier() + "\x05\x81\0"s, d); }),
        with("IndefiniteLength",
             [](const auto& d) {
                 const std::string info = DigestInfo(d);
                 return "\x30\x80"s + info.substr(2) + "\0\0"s;
             }),
        with("LengthBeyondTheBlock",
             [](const auto& d) {
                 std::string info = DigestInfo(d);
                 info[1] = '\x7f';
                 return info;
             }),
        with("DigestOfOtherContent",
             [](const auto& d) { return DigestInfo(DigestOf(kDigestName, d)); }),
        with("DigestCutOff", [](const auto& d) { return DigestInfo(d.substr(0, 31)); }),
        with("EmptyDigest", [](const auto&) { return DigestInfo(""); }),
        with("IdentifierOfSha1",
             [](const auto& d) {
                 return DigestInfo(Value(0x06, "\x2b\x0e\x03\x02\x1a") + Value(0x05, ""), d);
             }),
        with("IdentifierOfTheSignature",
             [](const auto& d) {
                 return DigestInfo(
                     Value(0x06, "\x2a\x86\x48\x86\xf7\x0d\x01\x01\x0b") + Value(0x05, ""), d);
             }),
    });
}

/// The least number whose cube begins with `begin`, as a signature of the modulus' size.
std::string CubeRoot(const std::string& begin) {
    std::string cube = begin;
    cube.resize(kModulusSize, '\0');
    return RawRsa::RoundedUpCubeRoot(cube);
}

// No private key is used: the public one does it all. `begin` must be the beginning of the block
// that the cube gives, or the forgery is none.
TEST(SignatureBlocks, WhoseCubeBeginsRightAreRefused) {
    const Forge::TokenSpec customer = Provider::CustomerSpec();
    const auto with = [&](const char* name, const Blocks& begin) {
        return Attack{name,
                      TokenOf(
                          [begin](const std::string& signedInfo) {
                              const std::string wanted = begin(DigestOf(kDigestName, signedInfo));
                              const std::string forged = CubeRoot(wanted);
                              EXPECT_EQ(RawRsa::Decrypted("rsa-3", forged).substr(0, wanted.size()),
                                        wanted);
                              return forged;
                          },
                          customer),
                      RefusedAsTampered()};
    };
    ExpectOutcomesForTheCubeSigner({
        with(
            "WithEightBytesOfPadding",
            [](const auto& d) { return "\0\1"s + std::string(8, '\xff') + "\0"s + DigestInfo(d); }),
        with("WithOneByteOfPadding", [](const auto& d) { return "\0\1\xff\0"s + DigestInfo(d); }),
        with("WithoutPadding", [](const auto& d) { return "\0\1\0"s + DigestInfo(d); }),
        with("WithoutParameters",
             [](const auto& d) {
                 return "\0\1"s + std::string(8, '\xff') + "\0"s + DigestInfo(Identifier(), d);
             }),
    });
}

TEST(SignatureNumbers, OutOfRangeOrOfAnotherLengthAreRefused) {
    const Forge::TokenSpec customer = Provider::CustomerSpec();
    const Signing genuine = SigningWith("rsa-3");
    const auto with = [&](const char* name, const std::function<std::string(std::string)>& change) {
        return Attack{
            name,
            TokenOf([genuine, change](const std::string& info) { return change(genuine(info)); },
                    customer),
            RefusedAsTampered()};
    };
    const std::string modulus = RawRsa::Modulus("rsa-3");
    const std::string below = RawRsa::Sum(modulus, -1);
    ExpectOutcomesForTheCubeSigner({
        with("Zero", [](const auto&) { return std::string(kModulusSize, '\0'); }),
        with("One", [](const auto&) { return std::string(kModulusSize - 1, '\0') + "\1"; }),
        with("ModulusLessOne", [=](const auto&) { return below; }),
        with("Modulus", [=](const auto&) { return modulus; }),
        with("ModulusPlusOne", [=](const auto&) { return RawRsa::Sum(modulus, 1); }),
        with("AllBits", [](const auto&) { return std::string(kModulusSize, '\xff'); }),
        with("OneByteOfZero", [](const auto&) { return "\0"s; }),
        with("OneByteShort", [](const auto& s) { return s.substr(0, kModulusSize - 1); }),
        with("WithoutItsFirstByte", [](const auto& s) { return s.substr(1); }),
        with("OneByteLonger", [](const auto& s) { return s + "\0"s; }),
        with("AZeroInFront", [](const auto& s) { return "\0"s + s; }),
        with("Twice", [](const auto& s) { return s + s; }),
        with("Backwards", [](const auto& s) { return std::string(s.rbegin(), s.rend()); }),
        with("AMegabyteLonger", [](const auto& s) { return s + std::string(1 << 20, '\0'); }),
        with("Negated", [=](const auto& s) { return RawRsa::Difference(modulus, s); }),
    });
}

// The same residue, above the modulus: a verifier that reduces first accepts it as a second
// spelling. It fits into the modulus' length for small residues only, so that signatures are made
// until there is one.
TEST(SignatureNumbers, ThatExceedTheModulusByASignatureAreRefused) {
    const std::string modulus = RawRsa::Modulus("rsa-3");
    for (int attempt = 0;; ++attempt) {
        ASSERT_LT(attempt, 1000) << "no signature is small enough";
        Forge::TokenSpec customer = Provider::CustomerSpec();
        customer.id = "_attempt" + std::to_string(attempt);
        bool fits = false;
        const std::string token = TokenOf(
            [&](const std::string& info) {
                const std::string sum = RawRsa::Sum(modulus, SigningWith("rsa-3")(info));
                fits = sum.size() == kModulusSize;
                return sum;
            },
            customer);
        if (!fits) continue;
        ExpectOutcomesForTheCubeSigner({{"SamePlusModulus", token, RefusedAsTampered()}});
        return;
    }
}

TEST(SignatureTexts, ThatHoldNoNumberAreRefused) {
    const Forge::TokenSpec customer = Provider::CustomerSpec();
    const auto written = [&](const std::function<std::string(const std::string&)>& text) {
        HandMadeSignature signature;
        signature.signatureText = text;
        return TokenWith(signature, customer);
    };
    const std::string notText = RefusedSignatureSyntax(
        "Element 'SignatureValue' must only have textual content (but has extra children or is "
        "empty).");
    ExpectOutcomes({
        {"Empty", written([](const auto&) { return ""s; }), notText},
        {"Blank", written([](const auto&) { return " "s; }), notText},
        {"Comment", written([](const auto&) { return "<!-- -->"s; }), notText},
        {"Section",
         written([](const std::string& s) { return "<![CDATA[" + Base64Text(s) + "]]>"; }),
         notText},
        {"TwoTexts", written([](const std::string& s) {
             return Base64Text(s.substr(0, 66)) + "<!-- -->" + Base64Text(s.substr(66));
         }),
         notText},
        {"NoBase64", written([](const auto&) { return "?"s; }), RefusedAsTampered()},
        {"PaddingAlone", written([](const auto&) { return "===="s; }), RefusedAsTampered()},
        {"NothingAtAll", written([](const auto&) { return "=="s; }), RefusedAsTampered()},
        // Line breaks are how many signers write it.
        {"InLines", written([](const std::string& s) {
             return Base64Text(s.substr(0, 66)) + "\n" + Base64Text(s.substr(66)) + "\n";
         }),
         Accepted(customer)},
    });
}

}  // namespace
}  // namespace Saml::Attacks
