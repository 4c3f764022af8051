// Canonicalization drops comments and CDATA sections, so anybody may add them to a signed token
// without breaking its signature. Wherever they are added, the token is refused or says the same.
#include "saml/token.h"
#include "support/test_keys.h"
#include "support/token_forge.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

using namespace Saml;

class LeafKey final : public Xml::Security::KeyInfoResolver {
  public:
    void Resolve(Xml::Security::KeyInfo*, std::list<ByteBlob>& keys) override {
        keys = {TestKeys::KeyNamed("leaf").publicKey};
    }
};

/// Everything that a token says, but its text.
std::string Account(const SamlToken& token) {
    std::string account;
    const auto add = [&account](const std::string& part) { account += part + "\n"; };
    const auto addPrincipal = [&add](const PrincipalId& id) { add(id.Name + "|" + id.Domain); };
    add(token.GetId());
    add(DateTime(token.GetStartTime()).value());
    add(DateTime(token.GetExpirationTime()).value());
    addPrincipal(token.GetSubject());
    add(std::string(token.IsRenewable() ? "renewable " : "") +
        (token.IsDelegable() ? "delegable " : "") + (token.IsSolution() ? "solution" : ""));
    PersonName name;
    token.GetPersonName(name);
    add(name.FirstName + "|" + name.LastName);
    for (const PrincipalId& group : token.GetGroups())
        addPrincipal(group);
    for (DelegateInfo& link : token.GetDelegationChain()) {
        addPrincipal(link.Delegate);
        add(link.DelegationInstant.value());
    }
    std::set<std::string> audience;
    token.GetAudience(audience);
    for (const std::string& one : audience)
        add(one);
    for (const Advice& advice : token.GetAdvice()) {
        add(advice.AdviceSource);
        for (const SamlAttribute& attribute : advice.Attributes) {
            add(attribute.Name + attribute.NameFormat + attribute.FriendlyName);
            for (const std::string& value : attribute.Values)
                add(value);
        }
    }
    if (token.GetHolderOfKeyCertificate()) add(Base64::Encode(*token.GetHolderOfKeyCertificate()));
    return account;
}

std::string SignedTokenOfEveryKind() {
    Forge::TokenSpec spec;
    spec.holderOfKeyCertificate = "AQIDBAUG";
    spec.delegateId = Forge::Name{ProfileUri::UpnNameFormat, "svc@corp"};
    spec.delegates = {{{ProfileUri::UpnNameFormat, "svc@corp"}}};
    spec.audience = {"urn:a", "urn:b"};
    spec.proxyCount = "1";
    spec.renewRestriction = true;
    spec.renewCount = "1";
    spec.advice = {{"s", {{"n", {"v", ""}}}}};
    spec.attributes = {{ProfileUri::GroupIdentity, {"dom\\admin"}},
                       {ProfileUri::GivenName, {"Jane"}},
                       {ProfileUri::Surname, {""}},
                       {ProfileUri::IsSolution, {"true"}}};
    return Forge::Sign(Forge::Write(spec), {TestKeys::KeyNamed("leaf").privateKey, {}});
}

class InvisibleMarkup : public testing::TestWithParam<std::pair<const char*, const char*>> {};

TEST_P(InvisibleMarkup, NeverChangesWhatASignedTokenSays) {
    const boost::intrusive_ptr<Xml::Security::KeyInfoResolver> resolver(new LeafKey);
    const std::string xml = SignedTokenOfEveryKind();
    const std::string account = Account(*CreateSamlToken(xml, resolver.get()));
    int refused = 0;
    int accepted = 0;
    bool insideTag = false;
    for (std::size_t place = 0; place < xml.size(); ++place) {
        if (!insideTag && place != 0) {
            const std::string spoiled = std::string(xml).insert(place, GetParam().second);
            try {
                ASSERT_EQ(Account(*CreateSamlToken(spoiled, resolver.get())), account) << spoiled;
                ++accepted;
            } catch (const InvalidTokenException&) {
                ++refused;
            }
        }
        if (xml[place] == '<') insideTag = true;
        if (xml[place] == '>') insideTag = false;
    }
    // In the middle of a name, for one, it must be refused.
    EXPECT_GT(refused, 100);
    // A comment may stand between any two elements; nothing else may stand anywhere.
    const bool isComment = std::string(GetParam().first) == "Comment";
    EXPECT_EQ(accepted > 0, isComment);
}

INSTANTIATE_TEST_SUITE_P(CreateSamlToken, InvisibleMarkup,
                         testing::Values(std::pair("Comment", "<!-- x -->"),
                                         std::pair("CDataSection", "<![CDATA[x]]>"),
                                         std::pair("EmptyCDataSection", "<![CDATA[]]>")),
                         [](const auto& row) { return std::string(row.param.first); });

}  // namespace
