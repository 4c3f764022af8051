#include "saml/security/hash_algorithm_impl.h"

#include "saml/foundations.h"
#include "support/test_keys.h"
#include "support/thrown.h"

#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <string>
#include <vector>

namespace Saml::Xml::Security {
namespace {

using Bytes = std::vector<unsigned char>;

std::string Hex(const Bytes& bytes) {
    std::string text;
    for (const unsigned char byte : bytes) {
        text += "0123456789abcdef"[byte >> 4];
        text += "0123456789abcdef"[byte & 15];
    }
    return text;
}

std::string DigestOf(DigestId id, const std::string& text) {
    Bytes digest;
    HashAlgorithmImpl(id).Digest(reinterpret_cast<const unsigned char*>(text.data()), text.size(),
                                 digest);
    return Hex(digest);
}

/// `ofNothing` and `ofAbc` are the example values of FIPS 180-4.
struct DigestCase {
    const char* name;
    DigestId id;
    const char* opensslName;
    const char* ofNothing;
    const char* ofAbc;
};
void PrintTo(const DigestCase& row, std::ostream* out) {
    *out << row.name;
}

class Digests : public testing::TestWithParam<DigestCase> {};

TEST_P(Digests, AgreeWithTheStandardsExamples) {
    EXPECT_EQ(DigestOf(GetParam().id, ""), GetParam().ofNothing);
    EXPECT_EQ(DigestOf(GetParam().id, "abc"), GetParam().ofAbc);
}

TEST_P(Digests, AgreeWithTheCommandLine) {
    std::string text(1000003, '\0');
    for (std::size_t i = 0; i < text.size(); ++i)
        text[i] = static_cast<char>(i * i >> 3);
    const std::string path = TestKeys::PathOf("text");
    TestKeys::WriteFile(path, text);
    const std::string answer =
        TestKeys::OpenSsl("dgst -r -" + std::string(GetParam().opensslName) + " " + path);
    EXPECT_EQ(DigestOf(GetParam().id, text), answer.substr(0, answer.find(' ')));
}

INSTANTIATE_TEST_SUITE_P(
    HashAlgorithm, Digests,
    testing::Values(DigestCase{"Sha1", DigestId::Sha1, "sha1",
                               "da39a3ee5e6b4b0d3255bfef95601890afd80709",
                               "a9993e364706816aba3e25717850c26c9cd0d89d"},
                    DigestCase{"Sha224WhichNoIdentifierReaches", DigestId::Sha224, "sha224",
                               "d14a028c2a3a2bc9476102bb288234c415a2b01f828ea62ac5b3e42f",
                               "23097d223405d8228642a477bda255b32aadbce4bda0b3f7e36c9da7"},
                    DigestCase{"Sha256", DigestId::Sha256, "sha256",
                               "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855",
                               "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
                    DigestCase{"Sha384", DigestId::Sha384, "sha384",
                               "38b060a751ac96384cd9327eb1b1e36a21fdb71114be07434c0cc7bf63f6e1da"
                               "274edebfe76f65fbd51ad2f14898b95b",
                               "cb00753f45a35e8bb5a03d699ac65007272c32ab0eded1631a8b605a43ff5bed"
                               "8086072ba1e7cc2358baeca134c825a7"},
                    DigestCase{"Sha512", DigestId::Sha512, "sha512",
                               "cf83e1357eefb8bdf1542850d66d8007d620e4050b5715dc83f4a921d36ce9ce"
                               "47d0d13c5d85f2b0ff8318d2877eec2f63b931bd47417a81a538327af927da3e",
                               "ddaf35a193617abacc417349ae20413112e6fa4e89a97ea20a9eeee64b55d39a"
                               "2192992a274fc1a836ba3c23a3feebbd454d4423643ce80e2a9ac94fa54ca49f"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(HashAlgorithm, TakesNoBytesFromNowhere) {
    Bytes digest;
    HashAlgorithmImpl(DigestId::Sha1).Digest(nullptr, 0, digest);
    EXPECT_EQ(Hex(digest), "da39a3ee5e6b4b0d3255bfef95601890afd80709");
}

TEST(HashAlgorithm, ReplacesWhatTheVectorHeld) {
    Bytes digest(1000, 'x');
    HashAlgorithmImpl(DigestId::Sha1).Digest(nullptr, 0, digest);
    EXPECT_EQ(digest.size(), 20U);
}

TEST(HashAlgorithm, NamesTheNumberThatIsNoDigestAndLeavesTheVector) {
    HashAlgorithmImpl algorithm(static_cast<DigestId>(7));
    Bytes digest{'o', 'l', 'd'};
    EXPECT_EQ(MessageOf<InvalidArgumentException>([&] { algorithm.Digest(nullptr, 0, digest); }),
              "Invalid algorithm id: 7");
    EXPECT_EQ(digest, (Bytes{'o', 'l', 'd'}));
}

}  // namespace
}  // namespace Saml::Xml::Security
