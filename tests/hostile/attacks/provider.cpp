#include "hostile/attacks/provider.h"

#include "support/test_keys.h"

#include <list>

namespace Saml::Attacks::Provider {
namespace {

std::list<ByteBlob> Certificates(const std::vector<std::string>& names) {
    std::list<ByteBlob> certificates;
    for (const std::string& name : names)
        certificates.push_back(TestKeys::CertificateNamed(name).der);
    return certificates;
}

}  // namespace

Forge::TokenSpec CustomerSpec() {
    Forge::TokenSpec spec;
    spec.id = "_genuine";
    spec.subject.value = "mallory@corp";
    spec.delegateId = Forge::Name{ProfileUri::UpnNameFormat, "svc@corp"};
    spec.delegates = {{{ProfileUri::UpnNameFormat, "svc@corp"}}};
    spec.audience = {"https://wiki.example/"};
    spec.proxyCount = "1";
    spec.renewRestriction = true;
    spec.renewCount = "1";
    spec.advice = {{"urn:advisor", {{"urn:advised", {"value"}}}}};
    spec.attributes = {{ProfileUri::GroupIdentity, {"corp\\guests"}},
                       {ProfileUri::GivenName, {"Mallory"}},
                       {ProfileUri::Surname, {"Doe"}},
                       {ProfileUri::IsSolution, {"false"}}};
    return spec;
}

std::string Signed(const std::string& xml, const Forge::SignatureSpec& choices) {
    return Forge::Sign(
        xml, {TestKeys::KeyNamed("leaf").privateKey, Certificates({"leaf", "intermediate"})},
        choices);
}

std::string Signed(const Forge::TokenSpec& spec, const Forge::SignatureSpec& choices) {
    return Signed(Forge::Write(spec), choices);
}

void SignInPlace(Xml::ElementNode& assertion, const std::vector<std::string>& uris) {
    using namespace Xml::Security;
    boost::intrusive_ptr<Signature> signature;
    CreateBlankSignature(&assertion, Algorithm::ExclusiveC14N, Algorithm::RsaSha256, "ds",
                         signature);
    assertion.InsertAfter(signature->GetElement(), assertion.GetFirstChildElement("Issuer"));
    for (const std::string& uri : uris) {
        boost::intrusive_ptr<SignatureReference> reference;
        signature->AddReference(uri, Algorithm::Sha256, reference);
        reference->AddEnvelopedSignatureTransform();
        reference->SetCanonicalizationMethod(Algorithm::ExclusiveC14N);
    }
    signature->SetKeyInfo(Certificates({"leaf", "intermediate"}));
    signature->Sign(TestKeys::KeyNamed("leaf").privateKey);
}

const Resolver& TrustInTheRoot() {
    static const Resolver resolver = TrustChain({"root"});
    return resolver;
}

const Resolver& TrustInTheSigner() {
    static const Resolver resolver = TrustSet({"leaf"});
    return resolver;
}

Resolver TrustChain(const std::vector<std::string>& certificates) {
    Resolver resolver;
    Xml::Security::CreateTrustChainKeyResolver(Certificates(certificates), resolver);
    return resolver;
}

Resolver TrustSet(const std::vector<std::string>& certificates) {
    Resolver resolver;
    Xml::Security::CreateTrustSetKeyResolver(Certificates(certificates), resolver);
    return resolver;
}

}  // namespace Saml::Attacks::Provider
