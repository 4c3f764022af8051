#include "soak/soak_tokens.h"

#include "support/resolving.h"
#include "support/test_keys.h"
#include "support/token_forge.h"

#include <exception>
#include <memory>

namespace Soak {
namespace {

using namespace Saml;
using Forge::Replaced;
using Forge::TokenSpec;
using Xml::Security::Ders;

constexpr std::int64_t kMonth = 30 * 24 * 60 * 60;
constexpr char kTampered[] = "Failed to verify signature: token might have been tampered with.";
constexpr char kNoKey[] = "Signature verification error. No verification key available.";

TokenSpec LastingSpec() {
    TokenSpec spec;
    spec.notOnOrAfter = Forge::FromNow(kMonth);
    return spec;
}

/// With everything in it that a token may say.
TokenSpec FullSpec() {
    TokenSpec spec = LastingSpec();
    spec.holderOfKeyCertificate = Base64::Encode(*TestKeys::CertificateNamed("leaf").der);
    spec.delegateId = Forge::Name{ProfileUri::UpnNameFormat, "delegate@corp"};
    spec.delegates = {{{ProfileUri::UpnNameFormat, "first@corp"}}, {*spec.delegateId}};
    spec.audience = {"https://a.example/", "https://b.example/"};
    spec.proxyCount = "2";
    spec.renewRestriction = true;
    spec.advice = {{"https://advice.example/", {{"name", {"one", "two"}}}}};
    spec.attributes = {{ProfileUri::GroupIdentity, {"corp\\staff", "corp\\admins"}},
                       {ProfileUri::GivenName, {"Jane"}}};
    return spec;
}

std::string Signed(const TokenSpec& spec, const std::vector<const char*>& sent) {
    return Forge::Sign(Forge::Write(spec), {TestKeys::KeyNamed("leaf").privateKey, Ders(sent)});
}

std::string SignedWith(void (*change)(TokenSpec&)) {
    TokenSpec spec = LastingSpec();
    change(spec);
    return Signed(spec, {"leaf"});
}

}  // namespace

std::vector<Token> CreateTokens() {
    ResolverPtr set;
    CreateTrustSetKeyResolver(Ders({"leaf", "expired-leaf"}), set);
    ResolverPtr chain;
    CreateTrustChainKeyResolver(Ders({"root", "self-signed-ca"}), chain);

    const std::string accepted = "accepted";
    const std::string bearer = Signed(LastingSpec(), {"leaf"});
    const std::string full = Signed(FullSpec(), {"leaf"});
    const std::string chained = Signed(LastingSpec(), {"leaf", "intermediate"});
    return {
        {"bearer by set", bearer, set, accepted},
        {"cut off", Replaced(bearer, "</saml:Assertion>", ""), set, "no element found"},
        {"full by set", full, set, accepted},
        {"altered", Replaced(full, "jdoe", "root"), set, kTampered},
        {"bearer by chain", chained, chain, accepted},
        {"another root", "<root>text</root>", set, "Expected element 'Assertion' not found."},
        {"full from DOM", full, set, accepted, true},
        {"unsupported transform", Replaced(bearer, "xmldsig#enveloped-signature", "xmldsig#base64"),
         set,
         "Signature syntax error: Unsupported transformation algorithm: "
         "http://www.w3.org/2000/09/xmldsig#base64"},
        {"bearer by set again", bearer, set, accepted},
        {"expired", SignedWith([](TokenSpec& spec) {
             spec.notBefore = "2020-01-01T00:00:00Z";
             spec.notOnOrAfter = "2020-01-01T01:00:00Z";
         }),
         set, "The token has expired at: 2020-01-01T01:00:00Z"},
        {"full by set again", full, set, accepted},
        {"unknown signer", Signed(LastingSpec(), {"self-signed"}), set, kNoKey},
        {"chained from DOM", chained, chain, accepted, true},
        {"expired certificate", Signed(LastingSpec(), {"expired-leaf"}), set, kNoKey},
        {"expired certificate in a chain", Signed(LastingSpec(), {"expired-leaf", "intermediate"}),
         chain, kNoKey},
        {"bearer by set once more", bearer, set, accepted},
        {"wrong signature value",
         Replaced(bearer, "<ds:SignatureValue>", "<ds:SignatureValue>AAAA"), set, kTampered},
        {"a name that is none", SignedWith([](TokenSpec& spec) { spec.subject.value = "jdoe"; }),
         set, "Failed to parse the UPN NameID: `jdoe'; name or domain part is missing."},
        {"two solution values", SignedWith([](TokenSpec& spec) {
             spec.attributes = {{ProfileUri::IsSolution, {"true", "true"}}};
         }),
         set, "More than one value found for attribute isSolution."},
        {"recursive entity",
         "<!DOCTYPE x [<!ENTITY a '&b;'><!ENTITY b '&a;'>]>" + Replaced(bearer, "jdoe", "&a;"), set,
         "recursive entity reference"},
    };
}

std::string Judge(const Token& token) {
    try {
        if (token.fromDom)
            CreateSamlTokenFromDom(Forge::Parse(token.xml)->GetRootElement(), token.resolver.get());
        else
            CreateSamlToken(token.xml, token.resolver.get());
        return "accepted";
    } catch (const Exception& refusal) {
        return refusal.what();
    } catch (const ParseException* refusal) {
        return std::unique_ptr<const ParseException>(refusal)->what();
    }
}

}  // namespace Soak
