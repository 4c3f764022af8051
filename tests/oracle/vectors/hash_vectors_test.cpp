#include "oracle/vectors/digest_names.h"
#include "oracle/vectors/response_file.h"
#include "saml/security/hash_algorithm_impl.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <iostream>
#include <ostream>
#include <string>
#include <vector>

// Digests of NIST's validation program for FIPS 180-4, byte-oriented messages.
namespace Saml::Xml::Security {
namespace {

using Bytes = std::vector<unsigned char>;
using ResponseFile::Case;
using ResponseFile::PathOf;
using ResponseFile::ReadCases;

Bytes DigestOf(HashAlgorithmImpl& algorithm, const Bytes& message) {
    Bytes digest;
    algorithm.Digest(message.data(), message.size(), digest);
    return digest;
}

struct HashCase {
    const char* digest;
    std::size_t size;   ///< Of the digest, in bytes.
    std::size_t block;  ///< Of the function, in bits: message lengths step through one block.
};
void PrintTo(const HashCase& row, std::ostream* out) {
    *out << row.digest;
}

class NistHashVectors : public testing::TestWithParam<HashCase> {
  protected:
    static std::string File(const std::string& kind) {
        const std::string digest = GetParam().digest;
        return PathOf("hashes/" + std::string(digest == "SHA1" ? "SHA1" : "SHA2") + "/" + digest +
                      kind + ".rsp");
    }
};

TEST_P(NistHashVectors, AgreeForShortAndLongMessages) {
    HashAlgorithmImpl algorithm(DigestNamed(GetParam().digest));
    std::vector<Case> vectors = ReadCases(File("ShortMsg"), "MD", {});
    EXPECT_EQ(vectors.size(), GetParam().block / 8 + 1);
    const std::vector<Case> longer = ReadCases(File("LongMsg"), "MD", {});
    EXPECT_EQ(longer.size(), GetParam().block / 8);
    vectors.insert(vectors.end(), longer.begin(), longer.end());

    std::size_t bytes = 0;
    for (const Case& vector : vectors) {
        EXPECT_EQ(vector.Number("L"), GetParam().size);
        const std::size_t bits = vector.Number("Len");
        Bytes message = vector.Bytes("Msg");
        if (bits == 0) message.clear();  // written as one zero byte
        ASSERT_EQ(message.size() * 8, bits) << vector.Place();
        EXPECT_EQ(DigestOf(algorithm, message), vector.Bytes("MD"))
            << vector.Place() << "\nMsg = " << vector.Text("Msg");
        bytes += message.size();
    }
    std::cout << vectors.size() << " messages with " << bytes << " bytes\n";
    RecordProperty("messages", static_cast<int>(vectors.size()));
}

// Each of 100 checkpoints is a chain of 1000 digests, which goes on at the next.
TEST_P(NistHashVectors, AgreeAlongTheMonteCarloChain) {
    HashAlgorithmImpl algorithm(DigestNamed(GetParam().digest));
    const std::vector<Case> checkpoints = ReadCases(File("Monte"), "MD", {"Seed"});
    ASSERT_EQ(checkpoints.size(), 100u);
    Bytes seed = checkpoints.front().Bytes("Seed");
    ASSERT_EQ(seed.size(), GetParam().size);

    const auto size = static_cast<std::ptrdiff_t>(seed.size());
    std::size_t count = 0;
    for (const Case& checkpoint : checkpoints) {
        ASSERT_EQ(checkpoint.Number("COUNT"), count++);
        Bytes lastThree;
        for (int i = 0; i < 3; ++i)
            lastThree.insert(lastThree.end(), seed.begin(), seed.end());
        for (int i = 0; i < 1000; ++i) {
            seed = DigestOf(algorithm, lastThree);
            lastThree.erase(lastThree.begin(), lastThree.begin() + size);
            lastThree.insert(lastThree.end(), seed.begin(), seed.end());
        }
        ASSERT_EQ(seed, checkpoint.Bytes("MD")) << checkpoint.Place();
    }
    std::cout << count << " checkpoints, 1000 digests each\n";
    RecordProperty("checkpoints", static_cast<int>(count));
}

INSTANTIATE_TEST_SUITE_P(Oracle, NistHashVectors,
                         testing::Values(HashCase{"SHA1", 20, 512}, HashCase{"SHA224", 28, 512},
                                         HashCase{"SHA256", 32, 512}, HashCase{"SHA384", 48, 1024},
                                         HashCase{"SHA512", 64, 1024}),
                         [](const auto& row) { return std::string(row.param.digest); });

}  // namespace
}  // namespace Saml::Xml::Security
