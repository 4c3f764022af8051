// What comes after parsing: the digest of the reference, and the whole signature.
#include "support/curve.h"
#include "support/floor.h"
#include "support/our_works.h"

#include <list>
#include <stdexcept>

namespace Bench {
namespace {

using namespace Saml::Xml;
using namespace Saml::Xml::Security;

boost::intrusive_ptr<Signature> SignatureOf(Document& document) {
    ElementNode* const assertion = document.GetRootElement();
    boost::intrusive_ptr<Signature> signature;
    CreateSignatureFromDom(assertion, assertion->GetFirstChildElement("Signature"), signature);
    return signature;
}

void Require(bool held) {
    if (!held) throw std::runtime_error("a signature did not verify while it was measured");
}

void Digest(benchmark::State& state) {
    const std::string& xml = TokenOf(state.range(0)).xml;
    const auto document = Ours::Parse(xml);
    std::list<boost::intrusive_ptr<SignatureReference>> references;
    SignatureOf(*document)->GetReferences(references);
    Measure(state, xml, [&] { Require(references.front()->VerifyDigest()); });
}
BENCHMARK(Digest)->Name("digest/samltoken")->Apply(OverSizes);

void DigestOfReadyBytes(benchmark::State& state) {
    const Token& token = TokenOf(state.range(0));
    Measure(state, token.xml, [&] { Floor::Digest(token.canonicalAssertion); });
}
BENCHMARK(DigestOfReadyBytes)->Name("digest/floor")->Apply(OverSizes);

void Verify(benchmark::State& state, KeyInfoResolver* (*resolver)()) {
    const std::string& xml = TokenOf(state.range(0)).xml;
    const auto document = Ours::Parse(xml);
    Measure(state, xml, [&] { Require(SignatureOf(*document)->Verify(resolver(), {})); });
}
BENCHMARK_CAPTURE(Verify, known_key, &Ours::TrustSet)
    ->Name("verify/samltoken, known key")
    ->Apply(OverSizes);
BENCHMARK_CAPTURE(Verify, chain, &Ours::TrustChain)
    ->Name("verify/samltoken, chain")
    ->Apply(OverSizes);

void VerifyReadyBytes(benchmark::State& state) {
    const Token& token = TokenOf(state.range(0));
    Measure(state, token.xml, [&] {
        Floor::Digest(token.canonicalAssertion);
        Floor::VerifySignature(token);
    });
}
BENCHMARK(VerifyReadyBytes)->Name("verify/floor, known key")->Apply(OverSizes);

}  // namespace
}  // namespace Bench
