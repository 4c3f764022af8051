#include "faults/faulty_tokens.h"
#include "saml/security/trust_chain_resolver.h"
#include "saml/security/trust_set_resolver.h"
#include "support/resolving.h"
#include "support/test_keys.h"

#include <gtest/gtest.h>

#include <list>
#include <ostream>
#include <stdexcept>
#include <string>

namespace Saml::Faults {
namespace {

using namespace Xml::Security;
using TestKeys::CertificateNamed;
using TestKeys::KeyNamed;

std::string Bytes(const ByteBlob& blob) {
    return blob ? std::string(blob->begin(), blob->end()) : "none";
}

/// The keys that `Made` offers to one who sends "self-signed".
template <class Made>
std::string KeyOffered(const ResolverPtr& resolver) {
    std::list<ByteBlob> keys;
    dynamic_cast<const Made&>(*resolver).AppendKeys(Ders({"self-signed"}), keys);
    return keys.empty() ? "none" : Bytes(keys.front());
}

template <class Made>
FaultyCall Creation(Trust trust, void (*create)(const std::list<ByteBlob>&, ResolverPtr&)) {
    const std::list<ByteBlob> trusted = Ders({"self-signed"});
    return CallFor<ResolverPtr>([trusted, create](ResolverPtr& result) { create(trusted, result); },
                                [](const ResolverPtr& result) { return KeyOffered<Made>(result); },
                                [trust] {
                                    return CreateResolver(trust, {"attacker-root", "root"});
                                });
}

TEST(CreateTrustChainKeyResolver, MakesAWholeResolverOrNone) {
    const FaultyCall call =
        Creation<X509TrustChainKeyResolver>(Trust::Chain, CreateTrustChainKeyResolver);
    ExpectSoundInShortage(call, kReturned,
                          {{"bad_alloc"},
                           {},
                           {"InvalidArgumentException: Invalid X.509 Certificate",
                            "CryptoException: Crypto Exception: Failed to allocate X.509 Store",
                            "InternalErrorException: Failed to add certificate to trust store"}});
}

TEST(CreateTrustSetKeyResolver, MakesAWholeResolverOrNone) {
    const FaultyCall call =
        Creation<X509TrustSetKeyResolver>(Trust::Set, CreateTrustSetKeyResolver);
    ExpectSoundInShortage(
        call, kReturned,
        {{"bad_alloc"}, {}, {"InvalidArgumentException: Invalid X.509 Certificate"}});
}

FaultyCall Conversion(void (*convert)(const std::string&, ByteBlob&), const std::string& pem) {
    return CallFor<ByteBlob>([convert, pem](ByteBlob& result) { convert(pem, result); }, Bytes,
                             [] { return TestKeys::ToBlob("old"); });
}

TEST(PemHelpers, LeaveTheResultOfACertificateWhenMemoryIsShort) {
    ExpectSoundInShortage(
        Conversion(CertificatePEMToBlob, CertificateNamed("root").pem), kReturned,
        {{"bad_alloc"},
         {},
         {"bad_alloc",
          "CryptoException: Crypto Exception: Wrong or unsupported X.509 Certificate format",
          "InvalidArgumentException: Wrong or unsupported X.509 Certificate format"}});
}

TEST(PemHelpers, LeaveTheResultOfAPrivateKeyWhenMemoryIsShort) {
    // With a single allocation missing OpenSSL falls back to PKCS #8, which is the key as well.
    FaultyCall call = Conversion(PrivateKeyPEMToBlob, KeyNamed("root").pem);
    const auto told = call.result;
    call.result = [told] { return told() == "old" ? "old" : "the key"; };
    ExpectSoundInShortage(
        call, kReturned,
        {{"bad_alloc"},
         {},
         {"bad_alloc", "CryptoException: Crypto Exception: Invalid or unsupported private key"}});
}

TEST(PemHelpers, LeaveTheResultOfAPublicKeyWhenMemoryIsShort) {
    ExpectSoundInShortage(
        Conversion(PublicKeyPEMToBlob, KeyNamed("root").publicPem), kReturned,
        {{"bad_alloc"},
         {},
         {"bad_alloc", "CryptoException: Crypto Exception: Invalid or unsupported public key"}});
}

TEST(PemHelpers, TakeTheKeyOutOfACertificateOrThrow) {
    const FaultyCall call = CallFor<ByteBlob>(
        [](ByteBlob& result) { result = ExtractCertPubKey(CertificateNamed("root").der); }, Bytes,
        [] { return TestKeys::ToBlob("old"); });
    ExpectSoundInShortage(
        call, kReturned,
        {{"bad_alloc"}, {}, {"InvalidArgumentException: Invalid X.509 Certificate"}});
}

TEST(PemHelpers, WriteTheKeyOfACertificateOrNothing) {
    const std::string base64 = Base64::Encode(*CertificateNamed("root").der);
    const FaultyCall call = CallFor<std::string>(
        [base64](std::string& result) {
            std::string pem = ExtractX509PublicKeyFromCertificateBase64(base64);
            if (pem.empty()) throw std::runtime_error("nothing was written");
            result = std::move(pem);
        },
        [](const std::string& result) { return result; }, [] { return std::string("old"); });
    ExpectSoundInShortage(call, kReturned,
                          {{"bad_alloc"},
                           {},
                           {"bad_alloc", "runtime_error: nothing was written",
                            "InvalidArgumentException: Invalid X.509 Certificate"}});
}

}  // namespace
}  // namespace Saml::Faults
