#include "support/refusing_openssl.h"

#include "saml/security/hash_algorithm_impl.h"
#include "saml/security/sign_algorithm_impl.h"
#include "saml/security/verify_algorithm_impl.h"
#include "saml/security/x509_key_info.h"
#include "support/resolving.h"
#include "support/test_keys.h"
#include "support/thrown.h"

#include <gtest/gtest.h>

#include <new>
#include <vector>

// What OpenSSL refuses to do is reported, and leaves what the caller had.
namespace Saml::Xml::Security {
namespace {

using RefusingOpenSsl::Function;
using RefusingOpenSsl::Refusal;
using Bytes = std::vector<unsigned char>;

const Bytes kData = {'d', 'a', 't', 'a'};
const Bytes kFormer = {1, 2, 3};

const TestKeys::Key& Key() {
    return *TestKeys::CertificateNamed("leaf").key;
}

class DigestWithout : public testing::TestWithParam<Function> {};

TEST_P(DigestWithout, AStepIsReported) {
    Bytes digest = kFormer;
    const Refusal refusal(GetParam());
    EXPECT_EQ(MessageOf<CryptoException>([&] {
                  HashAlgorithmImpl(DigestId::Sha256).Digest(kData.data(), kData.size(), digest);
              }),
              "Crypto Exception: Digest calculation failed");
    EXPECT_EQ(digest, kFormer);
}

INSTANTIATE_TEST_SUITE_P(RefusingOpenSsl, DigestWithout,
                         testing::Values(Function::DigestUpdate, Function::DigestFinal));

class SigningWithout : public testing::TestWithParam<Function> {};

TEST_P(SigningWithout, AStepIsReported) {
    Bytes signature = kFormer;
    SignAlgorithmImpl algorithm(DigestId::Sha256, Key().privateKey);
    const Refusal refusal(GetParam());
    EXPECT_EQ(
        MessageOf<CryptoException>([&] { algorithm.Sign(kData.data(), kData.size(), signature); }),
        "Crypto Exception: Signing operation failed");
    EXPECT_EQ(signature, kFormer);
}

INSTANTIATE_TEST_SUITE_P(RefusingOpenSsl, SigningWithout,
                         testing::Values(Function::DigestUpdate, Function::SignFinal));

TEST(VerificationWithoutAStep, IsReported) {
    VerifyAlgorithmImpl algorithm(DigestId::Sha256, Key().publicKey);
    const Refusal refusal(Function::DigestUpdate);
    EXPECT_EQ(
        MessageOf<CryptoException>([&] { algorithm.Verify(kData.data(), kData.size(), kFormer); }),
        "Crypto Exception: Signature verification failed");
}

TEST(TrustChainWithoutRoomForACertificate, IsReported) {
    boost::intrusive_ptr<KeyInfoResolver> resolver;
    CreateTrustChainKeyResolver(Ders({"root"}), resolver);
    const boost::intrusive_ptr<KeyInfo> sent(new X509KeyInfo("ds", Ders({"leaf", "intermediate"})));
    EXPECT_EQ(KeysOf(*resolver, sent.get()), ExpectedKeys("leaf"));
    const Refusal refusal(Function::StackPush);
    EXPECT_THROW(KeysOf(*resolver, sent.get()), std::bad_alloc);
}

}  // namespace
}  // namespace Saml::Xml::Security
