#include "support/failing_openssl.h"

#include "saml/security.h"
#include "saml/security/certificate_codec.h"
#include "saml/security/hash_algorithm_impl.h"
#include "saml/security/key_codec.h"
#include "saml/security/sign_algorithm_impl.h"
#include "saml/security/trust_chain_resolver.h"
#include "saml/security/trust_set_resolver.h"
#include "saml/security/trusted_certificates.h"
#include "saml/security/verify_algorithm_impl.h"
#include "support/resolving.h"
#include "support/test_keys.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <openssl/x509v3.h>

#include <list>
#include <new>
#include <set>
#include <string>
#include <vector>

/// Every call here is made once without shortage beforehand, so that what OpenSSL sets up for the
/// whole program is there. An outcome of "" is a call that did without what it could not have.
namespace Saml::Xml::Security {
namespace {

using Bytes = std::vector<unsigned char>;
using Extent = FailingOpenSsl::Shortage::Extent;
using Outcomes = std::set<std::string>;
using FailingOpenSsl::OutcomesOf;
using testing::AnyOfArray;
using testing::Contains;
using testing::Each;
using testing::IsSupersetOf;
using TestKeys::CertificateNamed;
using TestKeys::KeyNamed;
using TestKeys::OpenSsl;
using TestKeys::PathOf;
using TestKeys::ToBlob;

std::string BadAlloc() {
    return std::bad_alloc().what();
}

/// All of `failures` came up and nothing else did, except success.
void ExpectFailures(const Outcomes& outcomes, const Outcomes& failures) {
    EXPECT_THAT(outcomes, IsSupersetOf(failures));
    Outcomes allowed = failures;
    allowed.insert("");
    EXPECT_THAT(outcomes, Each(AnyOfArray(allowed)));
}

/// `call`, which must not change `result` when it fails.
template <class Result, class Call>
auto SparingOnFailure(Result& result, Call call) {
    return [&result, call] {
        const Result before = result;
        try {
            call();
        } catch (...) {
            EXPECT_TRUE(result == before);
            throw;
        }
    };
}

TEST(ShortageOfMemory, KeepsADigestFromStarting) {
    HashAlgorithmImpl algorithm(DigestId::Sha256);
    Bytes expected;
    algorithm.Digest(nullptr, 0, expected);
    Bytes digest{'o', 'l', 'd'};
    const auto call = SparingOnFailure(digest, [&] { algorithm.Digest(nullptr, 0, digest); });
    ExpectFailures(OutcomesOf(Extent::Onwards, call),
                   {"Crypto Exception: Digest context initialization failed"});
    EXPECT_EQ(digest, expected);
}

TEST(ShortageOfMemory, NeverMakesAWrongSignature) {
    SignAlgorithmImpl algorithm(DigestId::Sha256, KeyNamed("root").privateKey);
    Bytes expected;
    algorithm.Sign(nullptr, 0, expected);
    Bytes signature{'o', 'l', 'd'};
    const auto call = SparingOnFailure(signature, [&] {
        algorithm.Sign(nullptr, 0, signature);
        EXPECT_EQ(signature, expected);
    });
    ExpectFailures(OutcomesOf(Extent::Onwards, call),
                   {"Crypto Exception: Invalid or unsupported private key",
                    "Crypto Exception: Failed to initialize signature generation context.",
                    "Crypto Exception: Signing operation failed"});
    EXPECT_EQ(signature, expected);
}

TEST(ShortageOfMemory, KeepsATrustChainResolverFromBeingMade) {
    const std::list<ByteBlob> trusted = Ders({"root"});
    boost::intrusive_ptr<KeyInfoResolver> result(new X509TrustChainKeyResolver(trusted));
    const auto call =
        SparingOnFailure(result, [&] { CreateTrustChainKeyResolver(trusted, result); });
    ExpectFailures(OutcomesOf(Extent::Onwards, call),
                   {"Invalid X.509 Certificate", "Crypto Exception: Failed to allocate X.509 Store",
                    "Failed to add certificate to trust store"});
}

TEST(ShortageOfMemory, KeepsATrustSetResolverFromBeingMade) {
    const std::list<ByteBlob> trusted = Ders({"root"});
    boost::intrusive_ptr<KeyInfoResolver> result(new X509TrustSetKeyResolver(trusted));
    const auto call = SparingOnFailure(result, [&] { CreateTrustSetKeyResolver(trusted, result); });
    ExpectFailures(OutcomesOf(Extent::Onwards, call), {"Invalid X.509 Certificate"});
}

struct Conversion {
    const char* name;
    void (*convert)(const std::string&, ByteBlob&);
    std::string (*pem)();
    Outcomes failures;
};
void PrintTo(const Conversion& row, std::ostream* out) {
    *out << row.name;
}

class ShortageDuring : public testing::TestWithParam<Conversion> {};

TEST_P(ShortageDuring, AConversionLeavesTheResult) {
    const std::string pem = GetParam().pem();
    ByteBlob result;
    GetParam().convert(pem, result);
    const auto call = SparingOnFailure(result, [&] { GetParam().convert(pem, result); });
    ExpectFailures(OutcomesOf(Extent::Onwards, call), GetParam().failures);
}

INSTANTIATE_TEST_SUITE_P(
    PemHelpers, ShortageDuring,
    testing::Values(
        Conversion{"CertificatePEMToBlob",
                   CertificatePEMToBlob,
                   [] { return CertificateNamed("root").pem; },
                   {BadAlloc(), "Wrong or unsupported X.509 Certificate format",
                    "Crypto Exception: Wrong or unsupported X.509 Certificate format"}},
        Conversion{"PrivateKeyPEMToBlob",
                   PrivateKeyPEMToBlob,
                   [] { return KeyNamed("root").pem; },
                   {BadAlloc(), "Crypto Exception: Invalid or unsupported private key"}},
        Conversion{"PublicKeyPEMToBlob",
                   PublicKeyPEMToBlob,
                   [] { return KeyNamed("root").publicPem; },
                   {BadAlloc(), "Crypto Exception: Invalid or unsupported public key"}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(ShortageOfMemory, MayChangeTheFormOfAPrivateKeyButNotItsRoom) {
    // With a single allocation missing OpenSSL 3.0 falls back to the longer PKCS #8.
    const Bytes usual = *KeyNamed("root").privateKey;
    const Bytes wrapped =
        *ToBlob(OpenSsl("pkcs8 -topk8 -nocrypt -outform DER -in " + KeyNamed("root").pemPath));
    const KeyHandle key = ParsePrivateKeyPem(KeyNamed("root").pem);
    EncodePrivateKey(*key);
    ExpectFailures(
        OutcomesOf(Extent::Once,
                   [&] { EXPECT_THAT(*EncodePrivateKey(*key), testing::AnyOf(usual, wrapped)); }),
        {"Crypto Exception: Invalid or unsupported private key"});
}

TEST(ShortageOfMemory, MakesThePemOfAPublicKeyEmpty) {
    const ByteBlob& der = CertificateNamed("root").der;
    TestKeys::WriteFile(PathOf("der"), std::string(der->begin(), der->end()));
    const std::string base64 = OpenSsl("base64 -A -in " + PathOf("der"));
    ExtractX509PublicKeyFromCertificateBase64(base64);

    std::set<std::string> results;
    ExpectFailures(
        OutcomesOf(Extent::Onwards,
                   [&] { results.insert(ExtractX509PublicKeyFromCertificateBase64(base64)); }),
        {BadAlloc(), "Invalid X.509 Certificate"});
    // The last run, the one without a failing allocation, gave the whole text.
    EXPECT_EQ(results, (std::set<std::string>{"", KeyNamed("root").publicPem}));
}

TEST(ShortageOfMemory, LeavesNoCertificateHalfRead) {
    // A flaw stays with the certificate: a resolver would never trust it, nor find its key.
    for (const char* const name : {"root", "leaf", "ec-self-signed"}) {
        SCOPED_TRACE(name);
        const ByteBlob& der = CertificateNamed(name).der;
        const auto flags = X509_get_extension_flags(DecodeCertificateDer(der).get());
        const auto call = [&der, flags] {
            const CertificateHandle certificate = DecodeCertificateDer(der);
            ASSERT_NE(certificate, nullptr);
            EXPECT_NE(X509_get0_pubkey(certificate.get()), nullptr);
            EXPECT_EQ(X509_get_extension_flags(certificate.get()), flags);
        };
        EXPECT_EQ(OutcomesOf(Extent::Once, call), Outcomes{""});
    }
}

TEST(ShortageOfMemory, DoesNotMatterWhereAnRsaKeyIsTakenOutOfItsCertificate) {
    const CertificateHandle certificate = ParseCertificateDer(CertificateNamed("leaf").der);
    EXPECT_EQ(OutcomesOf(Extent::Onwards, [&] { EncodePublicKeyOf(*certificate); }), Outcomes());
}

/// One failing allocation is more insidious than many: what follows goes on without it.
class ShortageOf : public testing::TestWithParam<Extent> {};

TEST_P(ShortageOf, MemoryNeverVerifiesAWrongSignature) {
    VerifyAlgorithmImpl algorithm(DigestId::Sha256, KeyNamed("root").publicKey);
    const Bytes signature(128, 1);
    bool everVerified = algorithm.Verify(nullptr, 0, signature);
    ExpectFailures(
        OutcomesOf(GetParam(), [&] { everVerified |= algorithm.Verify(nullptr, 0, signature); }),
        {"Crypto Exception: Failed to initialize signature verification context.",
         "Crypto Exception: Invalid or unsupported format of the public key",
         "Crypto Exception: Signature verification failed"});
    EXPECT_FALSE(everVerified);
}

TEST_P(ShortageOf, MemoryNeverMakesAnExpiredCertificateCurrent) {
    const CertificateHandle expired = ParseCertificateDer(CertificateNamed("expired-leaf").der);
    bool everCurrent = IsCurrent(*expired);
    EXPECT_EQ(OutcomesOf(GetParam(), [&] { everCurrent |= IsCurrent(*expired); }), Outcomes());
    EXPECT_FALSE(everCurrent);
}

/// The keys that come up while OpenSSL is short of memory. What it then cannot parse counts as
/// garbage, so that a trusted authority behind it may pass for the signer.
std::set<Bytes> KeysInShortage(Extent extent, const std::vector<const char*>& names) {
    const X509TrustChainKeyResolver resolver(Ders({"intermediate", "self-signed"}));
    const std::list<ByteBlob> sent = Ders(names);
    std::list<ByteBlob> keys;
    resolver.AppendKeys(sent, keys);
    EXPECT_THAT(OutcomesOf(extent, [&] { resolver.AppendKeys(sent, keys); }), Contains(BadAlloc()));
    std::set<Bytes> contents;
    for (const ByteBlob& key : keys)
        contents.insert(*key);
    return contents;
}

TEST_P(ShortageOf, MemoryNeverMakesAChain) {
    const Bytes attackers = *KeyNamed("attacker").publicKey;
    const Bytes signers = *KeyNamed("leaf").publicKey;
    EXPECT_EQ(KeysInShortage(GetParam(), {"false-leaf-with-id", "intermediate"}).count(attackers),
              0U);
    EXPECT_EQ(KeysInShortage(GetParam(), {"attacker-leaf", "attacker-intermediate"}),
              std::set<Bytes>());
    EXPECT_EQ(KeysInShortage(GetParam(), {"false-self-signed"}), std::set<Bytes>());
    EXPECT_EQ(KeysInShortage(GetParam(), {"expired-leaf", "intermediate"}).count(signers), 0U);
    EXPECT_EQ(KeysInShortage(GetParam(), {"leaf"}), std::set<Bytes>{signers});
    EXPECT_EQ(KeysInShortage(GetParam(), {"self-signed"}), std::set<Bytes>{signers});
}

INSTANTIATE_TEST_SUITE_P(Openssl, ShortageOf, testing::Values(Extent::Once, Extent::Onwards),
                         [](const auto& row) {
                             return std::string(row.param == Extent::Once ? "Once" : "Onwards");
                         });

}  // namespace
}  // namespace Saml::Xml::Security
