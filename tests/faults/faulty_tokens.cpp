#include "faults/faulty_tokens.h"

#include "support/resolving.h"
#include "support/test_keys.h"
#include "support/token_account.h"
#include "support/token_forge.h"

#include <memory>

namespace Saml::Faults {
namespace {

using TestKeys::CertificateNamed;
using TestKeys::KeyNamed;

std::string Told(const std::shared_ptr<const SamlToken>& token) {
    return token ? Oracle::Told(Oracle::AccountOf(*token)) + "\ntext " + token->GetXml() : "none";
}

/// What a call works with.
struct Desk {
    std::string xml;
    ResolverPtr resolver;
    boost::intrusive_ptr<Xml::Document> document;
    std::shared_ptr<const SamlToken> token;
};

FaultyCall CallAt(const std::shared_ptr<Desk>& desk) {
    FaultyCall call;
    call.call = [desk] { desk->token = CreateSamlToken(desk->xml, desk->resolver.get()); };
    call.result = [desk] { return Told(desk->token); };
    call.forget = [desk] { desk->token.reset(); };
    return call;
}

}  // namespace

ResolverPtr CreateResolver(Trust trust, const std::vector<const char*>& trusted) {
    ResolverPtr resolver;
    if (trust == Trust::Chain)
        Xml::Security::CreateTrustChainKeyResolver(Xml::Security::Ders(trusted), resolver);
    else
        Xml::Security::CreateTrustSetKeyResolver(Xml::Security::Ders(trusted), resolver);
    return resolver;
}

ResolverPtr UsualResolver(Trust trust) {
    return CreateResolver(trust, {trust == Trust::Chain ? "root" : "leaf"});
}

ResolverPtr NearResolver(Trust trust) {
    return CreateResolver(trust, {trust == Trust::Chain ? "intermediate" : "leaf"});
}

std::string SignedToken(const Forge::TokenSpec& spec, const std::vector<const char*>& sent,
                        const Forge::SignatureSpec& choices) {
    return Forge::Sign(Forge::Write(spec), {KeyNamed("leaf").privateKey, Xml::Security::Ders(sent)},
                       choices);
}

std::string BearerToken() {
    return SignedToken({}, {"leaf", "intermediate"});
}

std::string HolderOfKeyToken() {
    Forge::TokenSpec spec;
    spec.holderOfKeyCertificate = Base64::Encode(*CertificateNamed("leaf").der);
    return SignedToken(spec, {"leaf", "intermediate"});
}

FaultyCall CallOfText(const std::string& xml, const ResolverPtr& resolver) {
    return CallAt(std::make_shared<Desk>(Desk{xml, resolver, nullptr, nullptr}));
}

FaultyCall FirstCallOf(const std::string& xml, Trust trust) {
    const auto desk = std::make_shared<Desk>(Desk{xml, nullptr, nullptr, nullptr});
    FaultyCall call = CallAt(desk);
    call.prepare = [desk, trust] { desk->resolver = NearResolver(trust); };
    call.forget = [desk] {
        desk->token.reset();
        desk->resolver.reset();
    };
    return call;
}

FaultyCall CallOfDom(const std::string& xml, const ResolverPtr& resolver) {
    const auto desk =
        std::make_shared<Desk>(Desk{std::string(), resolver, Forge::Parse(xml), nullptr});
    FaultyCall call = CallAt(desk);
    call.call = [desk] {
        desk->token =
            CreateSamlTokenFromDom(desk->document->GetRootElement(), desk->resolver.get());
    };
    return call;
}

Failures FailuresUpTo(Stage stage, Trust trust) {
    Failures failures{{"bad_alloc", "XMLParseException: parsing aborted"},
                      {"bad_alloc", "XMLParseException: out of memory"},
                      {}};
    if (stage >= Stage::Digesting)
        failures.openSsl.insert(
            "CryptoException: Crypto Exception: Digest context initialization failed");
    if (stage >= Stage::Resolving && trust == Trust::Chain)
        failures.openSsl.insert(
            {"bad_alloc",
             "InvalidSignatureException: Signature verification error. No verification key "
             "available."});
    if (stage >= Stage::Verifying)
        for (const char* const detail :
             {"Signature verification error. Crypto Exception: Failed to initialize signature "
              "verification context.",
              "Signature verification error. Crypto Exception: Signature verification failed",
              "Failed to verify signature: token might have been tampered with."})
            failures.openSsl.insert(std::string("InvalidSignatureException: ") + detail);
    return failures;
}

}  // namespace Saml::Faults
