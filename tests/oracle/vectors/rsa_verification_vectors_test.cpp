#include "oracle/vectors/digest_names.h"
#include "oracle/vectors/response_file.h"
#include "oracle/vectors/rsa_numbers.h"
#include "saml/security/verify_algorithm_impl.h"
#include "support/system_policy.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <iostream>
#include <map>
#include <ostream>
#include <string>
#include <vector>

// RSA signatures of NIST's validation programs: every verdict is compared.
namespace Saml::Xml::Security {
namespace {

using ResponseFile::Case;
using ResponseFile::PathOf;
using ResponseFile::ReadCases;

enum class Verdict { Valid, Invalid, Refused };

std::ostream& operator<<(std::ostream& out, Verdict verdict) {
    return out << (verdict == Verdict::Valid     ? "valid"
                   : verdict == Verdict::Invalid ? "invalid"
                                                 : "refused with an exception");
}

Verdict VerdictOn(const Case& vector, const std::vector<unsigned char>& signature) {
    const ByteBlob key = RsaNumbers::PublicKeyDer(vector.Bytes("n"), vector.Bytes("e"));
    const std::vector<unsigned char> message = vector.Bytes("Msg");
    VerifyAlgorithmImpl algorithm(DigestNamed(vector.Text("SHAAlg")), key);
    try {
        return algorithm.Verify(message.data(), message.size(), signature) ? Verdict::Valid
                                                                           : Verdict::Invalid;
    } catch (const CryptoException& failure) {
        EXPECT_STREQ(failure.what(), "Crypto Exception: Signature verification failed");
        return Verdict::Refused;
    }
}

/// Counts what was compared, by digest and modulus, and by verdict.
class Counts {
  public:
    void Add(const Case& vector, Verdict verdict) {
        ++byKind_[vector.Text("SHAAlg") + " with " + vector.Text("mod") + " bits"];
        ++byVerdict_[verdict];
    }
    std::size_t Of(Verdict verdict) const {
        const auto found = byVerdict_.find(verdict);
        return found == byVerdict_.end() ? 0 : found->second;
    }
    /// Each of the five digests with each of the five moduli occurs equally often.
    void ExpectEach(std::size_t count) const {
        EXPECT_EQ(byKind_.size(), 25u);
        for (const auto& [kind, counted] : byKind_)
            EXPECT_EQ(counted, count) << kind;
    }
    void Tell() const {
        for (const auto& [verdict, count] : byVerdict_)
            std::cout << count << " " << verdict << "\n";
        testing::Test::RecordProperty("valid", static_cast<int>(Of(Verdict::Valid)));
        testing::Test::RecordProperty("invalid", static_cast<int>(Of(Verdict::Invalid)));
        testing::Test::RecordProperty("refused", static_cast<int>(Of(Verdict::Refused)));
    }

  private:
    std::map<std::string, std::size_t> byKind_;
    std::map<Verdict, std::size_t> byVerdict_;
};

struct VerificationFile {
    const char* name;
    const char* path;
    std::size_t valid;
    std::size_t notValid;
};
void PrintTo(const VerificationFile& file, std::ostream* out) {
    *out << file.path;
}

class NistSignatureVerification : public testing::TestWithParam<VerificationFile> {};

TEST_P(NistSignatureVerification, GivesTheVerdictOfTheFile) {
    SKIP_WHERE_SHA1_SIGNATURES_ARE_REFUSED();  // a fifth of the file
    Counts counts;
    for (const Case& vector : ReadCases(PathOf(GetParam().path), "Result", {"n", "p", "q"})) {
        const std::string& result = vector.Text("Result");
        ASSERT_TRUE(result == "P" || result.substr(0, 3) == "F (") << result;
        const Verdict verdict = VerdictOn(vector, vector.Bytes("S"));
        EXPECT_EQ(verdict == Verdict::Valid, result == "P")
            << vector.Place() << ": " << verdict << ", expected " << result
            << "\nn = " << vector.Text("n") << "\ne = " << vector.Text("e")
            << "\nMsg = " << vector.Text("Msg") << "\nS = " << vector.Text("S");
        counts.Add(vector, verdict);
    }
    counts.Tell();
    EXPECT_EQ(counts.Of(Verdict::Valid), GetParam().valid);
    EXPECT_EQ(counts.Of(Verdict::Invalid) + counts.Of(Verdict::Refused), GetParam().notValid);
    counts.ExpectEach((GetParam().valid + GetParam().notValid) / 25);
}

INSTANTIATE_TEST_SUITE_P(
    Oracle, NistSignatureVerification,
    testing::Values(
        VerificationFile{"Fips186", "asymmetric/RSA/FIPS_186-2/SigVer15_186-3.rsp", 75, 375},
        VerificationFile{"EncodedMessages", "asymmetric/RSA/SigVer15EMTest.txt", 0, 150}),
    [](const auto& row) { return std::string(row.param.name); });

struct GenerationFile {
    const char* name;
    const char* path;
    std::size_t beginningWithZero;  ///< So many signatures do.
};
void PrintTo(const GenerationFile& file, std::ostream* out) {
    *out << file.path;
}

class NistSignatures : public testing::TestWithParam<GenerationFile> {};

// Files of signature generation have no verdicts: each of their signatures is good.
TEST_P(NistSignatures, AreValid) {
    SKIP_WHERE_SHA1_SIGNATURES_ARE_REFUSED();  // a fifth of the file
    Counts counts;
    for (const Case& vector : ReadCases(PathOf(GetParam().path), "S", {"n", "e", "d"})) {
        const Verdict verdict = VerdictOn(vector, vector.Bytes("S"));
        EXPECT_EQ(verdict, Verdict::Valid)
            << vector.Place() << "\nn = " << vector.Text("n") << "\ne = " << vector.Text("e")
            << "\nMsg = " << vector.Text("Msg") << "\nS = " << vector.Text("S");
        counts.Add(vector, verdict);
    }
    counts.Tell();
    EXPECT_EQ(counts.Of(Verdict::Valid), 250u);
    counts.ExpectEach(10);
}

// RFC 8017 section 8.2.2, step 1: not even zeros in front, which leave the number as it is.
TEST_P(NistSignatures, AreNotValidInAnotherLength) {
    std::size_t count = 0;
    std::size_t withoutZero = 0;
    for (const Case& vector : ReadCases(PathOf(GetParam().path), "S", {"n", "e", "d"})) {
        std::vector<unsigned char> signature = vector.Bytes("S");
        if (signature.front() == 0) {
            const std::vector<unsigned char> shorter(signature.begin() + 1, signature.end());
            EXPECT_NE(VerdictOn(vector, shorter), Verdict::Valid) << vector.Place();
            ++withoutZero;
        }
        signature.insert(signature.begin(), 0);
        EXPECT_NE(VerdictOn(vector, signature), Verdict::Valid) << vector.Place();
        ++count;
    }
    std::cout << count << " with a zero more, " << withoutZero << " with a zero less\n";
    RecordProperty("longer", static_cast<int>(count));
    RecordProperty("shorter", static_cast<int>(withoutZero));
    EXPECT_EQ(count, 250u);
    EXPECT_EQ(withoutZero, GetParam().beginningWithZero);
}

INSTANTIATE_TEST_SUITE_P(
    Oracle, NistSignatures,
    testing::Values(GenerationFile{"Older", "asymmetric/RSA/FIPS_186-2/SigGen15_186-2.txt", 0},
                    GenerationFile{"Newer", "asymmetric/RSA/FIPS_186-2/SigGen15_186-3.rsp", 1}),
    [](const auto& row) { return std::string(row.param.name); });

/// Signatures of another scheme by the same kind of keys; some are valid in theirs.
struct OtherScheme {
    const char* name;
    const char* path;
    std::size_t count;
};
void PrintTo(const OtherScheme& scheme, std::ostream* out) {
    *out << scheme.path;
}

class NistSignaturesOfAnotherScheme : public testing::TestWithParam<OtherScheme> {};

TEST_P(NistSignaturesOfAnotherScheme, AreNeverValid) {
    Counts counts;
    for (const Case& vector : ReadCases(PathOf(GetParam().path), "Result", {"n", "p", "q"})) {
        const Verdict verdict = VerdictOn(vector, vector.Bytes("S"));
        EXPECT_NE(verdict, Verdict::Valid) << vector.Place();
        counts.Add(vector, verdict);
    }
    counts.Tell();
    EXPECT_EQ(counts.Of(Verdict::Invalid) + counts.Of(Verdict::Refused), GetParam().count);
}

INSTANTIATE_TEST_SUITE_P(
    Oracle, NistSignaturesOfAnotherScheme,
    testing::Values(OtherScheme{"Pss", "asymmetric/RSA/FIPS_186-2/SigVerPSS_186-3.rsp", 450},
                    OtherScheme{"X931", "asymmetric/RSA/FIPS_186-2/SigVerRSA.rsp", 360}),
    [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace Saml::Xml::Security
