#include "oracle/vectors/digest_names.h"
#include "oracle/vectors/response_file.h"
#include "oracle/vectors/rsa_numbers.h"
#include "saml/security/sign_algorithm_impl.h"
#include "saml/security/verify_algorithm_impl.h"
#include "support/system_policy.h"
#include "support/test_keys.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <iostream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

// RSASSA-PKCS1-v1_5 is deterministic (RFC 8017 section 8.2): signatures are compared byte for byte.
namespace Saml::Xml::Security {
namespace {

using Bytes = std::vector<unsigned char>;
using ResponseFile::Case;
using ResponseFile::FromHex;
using ResponseFile::PathOf;
using ResponseFile::ReadCases;
using RsaNumbers::PrivateKey;

/// Signs the message, compares the signature with the expected one and verifies that.
void ExpectSignature(DigestId id, const PrivateKey& key, const Bytes& message,
                     const Bytes& expected) {
    Bytes signature;
    SignAlgorithmImpl(id, PrivateKeyDer(key)).Sign(message.data(), message.size(), signature);
    EXPECT_EQ(signature, expected);
    EXPECT_TRUE(VerifyAlgorithmImpl(id, RsaNumbers::PublicKeyDer(key.modulus, key.publicExponent))
                    .Verify(message.data(), message.size(), expected));
}

TEST(NistSignatureGeneration, GivesTheSignaturesOfTheFile) {
    SKIP_WHERE_SHA1_SIGNATURES_ARE_REFUSED();  // a fifth of the file
    std::map<std::string, PrivateKey> keys;    // by modulus
    std::map<std::string, std::size_t> counts;
    for (const Case& vector :
         ReadCases(PathOf("asymmetric/RSA/FIPS_186-2/SigGen15_186-2.txt"), "S", {"n", "e", "d"})) {
        SCOPED_TRACE(vector.Place());
        PrivateKey& key = keys[vector.Text("n")];
        if (key.modulus.empty())
            key = RsaNumbers::Completed(vector.Bytes("n"), vector.Bytes("e"), vector.Bytes("d"));
        const std::string& digest = vector.Text("SHAAlg");
        ExpectSignature(DigestNamed(digest), key, vector.Bytes("Msg"), vector.Bytes("S"));
        ++counts[digest + " with " + vector.Text("mod") + " bits"];
    }
    EXPECT_EQ(keys.size(), 5u);
    EXPECT_EQ(counts.size(), 25u);  // five digests, five moduli
    std::size_t total = 0;
    for (const auto& [kind, count] : counts) {
        EXPECT_EQ(count, 10u) << kind;
        total += count;
    }
    std::cout << total << " signatures by " << keys.size() << " keys\n";
    RecordProperty("signatures", static_cast<int>(total));
    EXPECT_EQ(total, 250u);
}

/// A label, "# Message to be signed:", and the number in the lines below it.
struct LabelledNumber {
    std::string label;
    std::string digits;
};

/// The labelled numbers of a file of pairs of hexadecimal digits. Text before the first label and
/// comments that are no label of a number are left out.
std::vector<LabelledNumber> ReadLabelledNumbers(const std::string& text) {
    std::vector<LabelledNumber> numbers;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t last = line.find_last_not_of(" \r");
        line.resize(last == std::string::npos ? 0 : last + 1);
        if (line.size() > 2 && line.front() == '#') {
            numbers.push_back({line.substr(2), {}});
        } else if (!numbers.empty()) {
            numbers.back().digits += line + " ";
        }
    }
    std::vector<LabelledNumber> filled;
    for (const LabelledNumber& number : numbers)
        if (number.digits.find_first_not_of(' ') != std::string::npos) filled.push_back(number);
    return filled;
}

/// Takes one labelled number after the other, in the order in which the file must have them.
class LabelledReader {
  public:
    explicit LabelledReader(std::vector<LabelledNumber> numbers) : numbers_(std::move(numbers)) {}

    bool AtEnd() const { return next_ == numbers_.size(); }
    bool IsNext(const std::string& label) const {
        return !AtEnd() && numbers_[next_].label == label + ":";
    }
    Bytes Take(const std::string& label) {
        if (!IsNext(label))
            throw std::runtime_error("expected " + label + ", found " +
                                     (AtEnd() ? "the end" : numbers_[next_].label));
        return FromHex(numbers_[next_++].digits);
    }

  private:
    const std::vector<LabelledNumber> numbers_;
    std::size_t next_ = 0;
};

/// A key stands in the file as the public and the private one.
PrivateKey TakeKey(LabelledReader& reader) {
    const Bytes modulus = reader.Take("Modulus");
    const Bytes exponent = reader.Take("Exponent");
    PrivateKey key;
    key.modulus = reader.Take("Modulus");
    key.publicExponent = reader.Take("Public exponent");
    key.privateExponent = reader.Take("Exponent");
    key.prime1 = reader.Take("Prime 1");
    key.prime2 = reader.Take("Prime 2");
    key.exponent1 = reader.Take("Prime exponent 1");
    key.exponent2 = reader.Take("Prime exponent 2");
    key.coefficient = reader.Take("Coefficient");
    EXPECT_EQ(key.modulus, modulus);
    EXPECT_EQ(key.publicExponent, exponent);
    return key;
}

// Moduli of 1025 to 1031 bits are among them, whose first byte is not full.
TEST(RsaLaboratoriesSignatures, AreWhatTheirKeysSign) {
    SKIP_WHERE_SHA1_SIGNATURES_ARE_REFUSED();  // all of the file
    LabelledReader reader(
        ReadLabelledNumbers(TestKeys::ReadFile(PathOf("asymmetric/RSA/pkcs1v15sign-vectors.txt"))));
    std::size_t keys = 0;
    std::size_t signatures = 0;
    while (!reader.AtEnd()) {
        const PrivateKey key = TakeKey(reader);
        ++keys;
        std::size_t number = 0;
        while (reader.IsNext("Message to be signed")) {
            SCOPED_TRACE("example " + std::to_string(keys) + "." + std::to_string(++number));
            const Bytes message = reader.Take("Message to be signed");
            ExpectSignature(DigestId::Sha1, key, message, reader.Take("Signature"));
        }
        EXPECT_EQ(number, 20u) << "of key " << keys;
        signatures += number;
    }
    std::cout << signatures << " signatures by " << keys << " keys\n";
    RecordProperty("signatures", static_cast<int>(signatures));
    EXPECT_EQ(keys, 15u);
    EXPECT_EQ(signatures, 300u);
}

}  // namespace
}  // namespace Saml::Xml::Security
