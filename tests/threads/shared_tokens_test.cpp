#include "saml/token.h"
#include "support/resolving.h"
#include "support/test_keys.h"
#include "support/token_account.h"
#include "support/token_forge.h"
#include "threads/many_threads.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace Saml::Threads {
namespace {

/// A token of which every getter has something to say.
std::string FullText() {
    Forge::TokenSpec spec;
    spec.holderOfKeyCertificate = Base64::Encode(*TestKeys::CertificateNamed("leaf").der);
    spec.delegateId = Forge::Name{ProfileUri::UpnNameFormat, "delegate@corp"};
    spec.delegates = {{{ProfileUri::UpnNameFormat, "first@corp"}}, {*spec.delegateId}};
    spec.audience = {"https://a.example/", "https://b.example/"};
    spec.proxyCount = "2";
    spec.renewRestriction = true;
    spec.renewCount = "3";
    spec.advice = {{"https://advice.example/", {{"name", {"one", "two"}}}}};
    spec.attributes = {{ProfileUri::GroupIdentity, {"corp\\staff", "corp\\admins"}},
                       {ProfileUri::IsSolution, {"true"}},
                       {ProfileUri::GivenName, {"Jane"}},
                       {ProfileUri::Surname, {"Doe"}}};
    return Forge::Sign(Forge::Write(spec),
                       {TestKeys::KeyNamed("leaf").privateKey, Xml::Security::Ders({"leaf"})});
}

/// Makes the same token whenever it is asked.
class Maker {
  public:
    Maker() { CreateTrustSetKeyResolver(Xml::Security::Ders({"leaf"}), resolver_); }
    std::shared_ptr<const SamlToken> Make() const {
        return CreateSamlToken(text_, resolver_.get());
    }

  private:
    const std::string text_ = FullText();
    boost::intrusive_ptr<Xml::Security::KeyInfoResolver> resolver_;
};

TEST(SharedToken, SaysTheSameToManyThreads) {
    const std::shared_ptr<const SamlToken> token = Maker().Make();
    ASSERT_EQ(token->GetGroups().size(), 2U);
    ASSERT_EQ(token->GetDelegationChain().size(), 2U);
    ExpectSameOnManyThreads(500, 1, [&](int) {
        const std::shared_ptr<const SamlToken> held = token;  // counted by all of them
        return Oracle::Told(Oracle::AccountOf(*held)) + held->GetXml();
    });
}

TEST(TokenOfAnotherThread, MayBeReadAndReleasedAnywhere) {
    // One run in two replaces the token that the others read: whoever reads it last releases it.
    const Maker maker;
    std::shared_ptr<const SamlToken> shared = maker.Make();
    const std::string told = Oracle::Told(Oracle::AccountOf(*shared));
    ExpectSameOnManyThreads(100, 2, [&](int kind) {
        const std::shared_ptr<const SamlToken> token =
            kind == 0 ? maker.Make() : std::atomic_load(&shared);
        if (kind == 0) std::atomic_store(&shared, token);
        return Oracle::Told(Oracle::AccountOf(*token));
    });
    EXPECT_EQ(Oracle::Told(Oracle::AccountOf(*shared)), told);
}

}  // namespace
}  // namespace Saml::Threads
