#include "faults/faulty_calls.h"
#include "support/hand_signed.h"
#include "support/signature_texts.h"
#include "support/test_keys.h"
#include "support/token_forge.h"

#include <gtest/gtest.h>

#include <list>
#include <string>

namespace Saml::Faults {
namespace {

using namespace Xml::Security;
using TestKeys::KeyNamed;
using Xml::ElementNode;
using Xml::Held;
using Xml::Parsed;
using SignaturePtr = boost::intrusive_ptr<Signature>;

constexpr char kDigestFailed[] =
    "CryptoException: Crypto Exception: Digest context initialization failed";

std::string Written(Xml::Node* node) {
    StringWriter out;
    node->Write(out);
    return out.data;
}

TEST(SignatureInShortage, IsReadAndVerifiedOrTheShortageReported) {
    const std::string text = Forge::Sign(
        Forge::Write({}), {KeyNamed("leaf").privateKey, {TestKeys::CertificateNamed("leaf").der}});
    const Held<Xml::Document> document = Parsed(text);
    ElementNode& element = ElementNamed(*document, "Signature");
    const boost::intrusive_ptr<KeyInfoResolver> resolver(
        new HandSigned::PresetResolver({KeyNamed("leaf").publicKey}));
    const FaultyCall call = CallFor<SignaturePtr>(
        [&](SignaturePtr& result) {
            SignaturePtr read;
            CreateSignatureFromDom(document->GetRootElement(), &element, read);
            if (!read->Verify(resolver.get(), {})) throw Exception("does not hold");
            result = read;
        },
        [](const SignaturePtr& result) { return result ? Written(result->GetElement()) : "none"; },
        [] { return SignaturePtr(); });
    // OpenSSL does not tell want of memory inside the RSA operation from a wrong signature.
    ExpectSoundInShortage(
        call, kReturned,
        {{"bad_alloc"},
         {},
         {kDigestFailed, "Exception: does not hold",
          "SignatureVerificationException: Crypto Exception: Failed to initialize signature "
          "verification context.",
          "SignatureVerificationException: Crypto Exception: Invalid or unsupported format of the "
          "public key",
          "SignatureVerificationException: Crypto Exception: Signature verification failed"}});
    EXPECT_EQ(Written(document->GetRootElement()), text);
}

/// Adds everything to `signature` that a token's has.
void Furnish(Signature& signature) {
    boost::intrusive_ptr<SignatureReference> reference;
    signature.AddReference("", Algorithm::Sha256, reference);
    reference->AddEnvelopedSignatureTransform();
    reference->SetCanonicalizationMethod(Algorithm::ExclusiveC14N);
    signature.SetKeyInfo({TestKeys::CertificateNamed("leaf").der});
}

SignaturePtr Blank(const Held<Xml::Document>& document) {
    SignaturePtr signature;
    CreateBlankSignature(document->GetRootElement(), Algorithm::ExclusiveC14N, Algorithm::RsaSha256,
                         "ds", signature);
    return signature;
}

TEST(SignatureInShortage, IsMadeOrTheShortageReported) {
    const Held<Xml::Document> document = Parsed("<a>text</a>");
    const ByteBlob key = KeyNamed("leaf").privateKey;
    const FaultyCall call = CallFor<SignaturePtr>(
        [&](SignaturePtr& result) {
            const SignaturePtr signature = Blank(document);
            Furnish(*signature);
            signature->Sign(key);
            result = signature;
        },
        [](const SignaturePtr& result) { return result ? Written(result->GetElement()) : "none"; },
        [] { return SignaturePtr(); });
    ExpectSoundInShortage(
        call, kReturned,
        {{"bad_alloc"},
         {},
         {kDigestFailed,
          "SignatureGenerationException: Crypto Exception: Failed to initialize signature "
          "generation context.",
          "SignatureGenerationException: Crypto Exception: Invalid or unsupported private key",
          "SignatureGenerationException: Crypto Exception: Signing operation failed"}});
}

TEST(SignatureInShortage, LosesNothingThatItHadWhenSignedAgain) {
    const Held<Xml::Document> document = Parsed("<a>text</a>");
    const SignaturePtr signature = Blank(document);
    Furnish(*signature);
    signature->Sign(KeyNamed("leaf").privateKey);
    const ByteBlob key = KeyNamed("leaf").privateKey;
    const FaultyCall call = {nullptr, [&] { signature->Sign(key); },
                             [&] { return Written(signature->GetElement()); }, [] {}};
    ExpectSoundInShortage(
        call, kReturned,
        {{"bad_alloc"},
         {},
         {kDigestFailed,
          "SignatureGenerationException: Crypto Exception: Failed to initialize signature "
          "generation context.",
          "SignatureGenerationException: Crypto Exception: Invalid or unsupported private key",
          "SignatureGenerationException: Crypto Exception: Signing operation failed"}});
}

/// How a signature that was furnished hangs together: what it lists stands in its element.
std::string Coherence(const SignaturePtr& signature) {
    if (!signature) return "coherent";
    std::size_t listed = 0;
    for (const auto& reference : ReferencesOf(*signature)) {
        ++listed;
        if (reference->GetElement()->GetParent() == nullptr) return "a reference stands nowhere";
    }
    std::size_t standing = 0;
    std::size_t keyInfos = 0;
    for (Xml::Node* const node : Xml::ChildrenOf(*signature->GetElement()->GetFirstChild()))
        standing += dynamic_cast<ElementNode&>(*node).GetLocalName() == "Reference" ? 1 : 0;
    for (Xml::Node* const node : Xml::ChildrenOf(*signature->GetElement()))
        keyInfos += dynamic_cast<ElementNode&>(*node).GetLocalName() == "KeyInfo" ? 1 : 0;
    return listed == standing && keyInfos <= 1 ? "coherent" : Written(signature->GetElement());
}

TEST(SignatureInShortage, StaysCoherentWhileItIsBuilt) {
    const Held<Xml::Document> document = Parsed("<a>text</a>");
    const FaultyCall call =
        CallFor<SignaturePtr>([](SignaturePtr& signature) { Furnish(*signature); }, Coherence,
                              [&] { return Blank(document); });
    ExpectSoundInShortage(call, kReturned, {{"bad_alloc"}, {}, {}});
}

}  // namespace
}  // namespace Saml::Faults
