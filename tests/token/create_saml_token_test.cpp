#include "saml/token.h"
#include "support/foreign_nodes.h"
#include "support/system_policy.h"
#include "support/test_keys.h"
#include "support/thrown.h"
#include "support/token_forge.h"

#include <gtest/gtest.h>

#include <atomic>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace Saml;
using Forge::Replaced;
using Xml::Security::KeyInfo;
using Xml::Security::KeyInfoResolver;

constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kGreatest = std::numeric_limits<std::int64_t>::max();
constexpr char kTampered[] = "Failed to verify signature: token might have been tampered with.";

/// Offers the same keys for every signature and counts how often it was asked.
class KeyOffer final : public KeyInfoResolver {
  public:
    explicit KeyOffer(std::list<ByteBlob> keys) : keys_(std::move(keys)) {}

    void Resolve(KeyInfo*, std::list<ByteBlob>& keys) override {
        ++asked;
        keys = keys_;
    }

    std::atomic<int> asked{0};

  private:
    const std::list<ByteBlob> keys_;
};

/// Throws a copy of `thrown` whenever it is asked.
template <class Thrown>
class Refuser final : public KeyInfoResolver {
  public:
    explicit Refuser(Thrown thrown) : thrown_(std::move(thrown)) {}
    void Resolve(KeyInfo*, std::list<ByteBlob>&) override { throw thrown_; }

  private:
    const Thrown thrown_;
};

const TestKeys::Key& SigningKey() {
    return TestKeys::KeyNamed("leaf");
}

Forge::Signer Signer() {
    return {SigningKey().privateKey, {TestKeys::CertificateNamed("self-signed").der}};
}

boost::intrusive_ptr<KeyOffer> RightKey() {
    return boost::intrusive_ptr<KeyOffer>(new KeyOffer({SigningKey().publicKey}));
}

std::string Signed(const Forge::TokenSpec& spec = {}, const Forge::SignatureSpec& choices = {}) {
    return Forge::Sign(Forge::Write(spec), Signer(), choices);
}

/// One of the two ways from a text to a token.
using Entry = std::shared_ptr<const SamlToken> (*)(const std::string& xml,
                                                   KeyInfoResolver* resolver,
                                                   std::int64_t tolerance);

std::shared_ptr<const SamlToken> FromText(const std::string& xml, KeyInfoResolver* resolver,
                                          std::int64_t tolerance) {
    return CreateSamlToken(xml, resolver, tolerance);
}
std::shared_ptr<const SamlToken> FromDom(const std::string& xml, KeyInfoResolver* resolver,
                                         std::int64_t tolerance) {
    return CreateSamlTokenFromDom(Forge::Parse(xml)->GetRootElement(), resolver, tolerance);
}

struct EntryCase {
    const char* name;
    Entry create;
};

/// What must be the same whichever way a token comes in.
class BothEntries : public testing::TestWithParam<EntryCase> {
  protected:
    std::shared_ptr<const SamlToken> Create(const std::string& xml,
                                            std::int64_t tolerance = DefaultClockTolerance) {
        return GetParam().create(xml, resolver_.get(), tolerance);
    }

    template <class Refusal>
    std::string RefusalOf(const std::string& xml, std::int64_t tolerance = DefaultClockTolerance) {
        return MessageOf<Refusal>([&] { Create(xml, tolerance); });
    }

    void UseResolver(KeyInfoResolver* resolver) { resolver_ = resolver; }

    boost::intrusive_ptr<KeyInfoResolver> resolver_ = RightKey();
};

INSTANTIATE_TEST_SUITE_P(CreateSamlToken, BothEntries,
                         testing::Values(EntryCase{"FromText", FromText},
                                         EntryCase{"FromDom", FromDom}),
                         [](const auto& row) { return std::string(row.param.name); });

// --- What is accepted

TEST_P(BothEntries, GiveATokenThatTellsEverything) {
    Forge::TokenSpec spec;
    spec.id = "_all";
    spec.subject.value = "jdoe@corp";
    spec.delegateId = Forge::Name{ProfileUri::UpnNameFormat, "two@b"};
    spec.delegates = {{{ProfileUri::UpnNameFormat, "one@a"}, "2020-01-01T00:00:01Z"},
                      {{ProfileUri::UpnNameFormat, "two@b"}, "2020-01-01T00:00:02Z"}};
    spec.audience = {"https://b.example/", "https://a.example/", "https://b.example/"};
    spec.proxyCount = "2";
    spec.renewRestriction = true;
    spec.renewCount = "1";
    spec.advice = {{"urn:source", {{"urn:advised", {"v1", ""}, "urn:format", "friend"}}}};
    spec.attributes = {{ProfileUri::GroupIdentity, {"dom\\grp", "dom\\a\\b"}},
                       {ProfileUri::GivenName, {"Jane &amp; Joan"}},
                       {ProfileUri::Surname, {"Doe"}},
                       {ProfileUri::IsSolution, {"True"}},
                       {"urn:unknown", {"dropped"}}};
    const std::string xml = Signed(spec);

    const std::shared_ptr<const SamlToken> token = Create(xml);
    EXPECT_EQ(token->GetId(), "_all");
    EXPECT_EQ(DateTime(token->GetStartTime()).value(), spec.notBefore);
    EXPECT_EQ(DateTime(token->GetExpirationTime()).value(), spec.notOnOrAfter);
    EXPECT_EQ(token->GetSubject().Name, "jdoe");
    EXPECT_EQ(token->GetSubject().Domain, "corp");
    EXPECT_TRUE(token->IsRenewable());
    EXPECT_TRUE(token->IsDelegable());
    EXPECT_TRUE(token->IsSolution());
    EXPECT_EQ(token->GetConfirmationType(), ConfirmationType::Bearer);
    EXPECT_EQ(token->GetHolderOfKeyCertificate(), nullptr);
    PersonName name;
    token->GetPersonName(name);
    EXPECT_EQ(name.FirstName, "Jane & Joan");
    EXPECT_EQ(name.LastName, "Doe");
    ASSERT_EQ(token->GetGroups().size(), 2U);
    EXPECT_EQ(token->GetGroups()[1].Domain, "dom");
    EXPECT_EQ(token->GetGroups()[1].Name, "a\\b");
    ASSERT_EQ(token->GetDelegationChain().size(), 2U);
    EXPECT_EQ(token->GetDelegationChain()[0].Delegate.Name, "one");
    EXPECT_EQ(token->GetDelegationChain()[1].Delegate.Name, "two");
    EXPECT_EQ(token->GetDelegationChain()[1].DelegationInstant.value(), "2020-01-01T00:00:02Z");
    std::set<std::string> audience;
    token->GetAudience(audience);
    EXPECT_EQ(audience, (std::set<std::string>{"https://a.example/", "https://b.example/"}));
    ASSERT_EQ(token->GetAdvice().size(), 1U);
    EXPECT_EQ(token->GetAdvice()[0].AdviceSource, "urn:source");
    EXPECT_EQ(token->GetAdvice()[0].Attributes[0].FriendlyName, "friend");
    EXPECT_EQ(token->GetAdvice()[0].Attributes[0].Values, (std::vector<std::string>{"v1", ""}));
}

TEST_P(BothEntries, GiveTheCertificateOfAHolderOfKey) {
    Forge::TokenSpec spec;
    spec.holderOfKeyCertificate = "AQID";
    const std::shared_ptr<const SamlToken> token = Create(Signed(spec));
    EXPECT_EQ(token->GetConfirmationType(), ConfirmationType::HolderOfKey);
    ASSERT_NE(token->GetHolderOfKeyCertificate(), nullptr);
    EXPECT_EQ(*token->GetHolderOfKeyCertificate(), (std::vector<unsigned char>{1, 2, 3}));
}

TEST_P(BothEntries, LetAHolderOfKeyConfirmationEndBeforeTheToken) {
    Forge::TokenSpec spec;
    spec.holderOfKeyCertificate = "AQID";
    spec.confirmationNotOnOrAfter = "2001-01-01T00:00:00Z";
    EXPECT_NE(Create(Signed(spec)), nullptr);
}

TEST_P(BothEntries, AcceptEveryPrefixOfAssertionAndSignature) {
    for (const std::string prefix : {"", "saml2", "a"}) {
        Forge::TokenSpec spec;
        spec.prefix = prefix;
        Forge::SignatureSpec choices;
        choices.prefix = prefix;
        EXPECT_EQ(Create(Signed(spec, choices))->GetSubject().Name, "jdoe") << prefix;
    }
}

TEST_P(BothEntries, AcceptRsaWithSha1AndAnEmptyUri) {
    SKIP_WHERE_SHA1_SIGNATURES_ARE_REFUSED();
    Forge::SignatureSpec choices;
    choices.uri = "";
    choices.signatureMethod = Xml::Security::Algorithm::RsaSha1;
    choices.digestMethod = Xml::Security::Algorithm::Sha1;
    EXPECT_NE(Create(Signed({}, choices)), nullptr);
}

TEST_P(BothEntries, AcceptEveryOtherSignatureMethodAndAnEmptyUri) {
    using namespace Xml::Security::Algorithm;
    const char* const kMethods[][2] = {
        {RsaSha256, Sha256}, {RsaSha384, Sha384}, {RsaSha512, Sha512}};
    for (const auto& method : kMethods) {
        Forge::SignatureSpec choices;
        choices.uri = "";
        choices.signatureMethod = method[0];
        choices.digestMethod = method[1];
        EXPECT_NE(Create(Signed({}, choices)), nullptr) << method[0];
    }
}

TEST_P(BothEntries, AcceptASignedTokenWithBlanksAndCommentsThatCanonicalizationKeepsApart) {
    // Comments are no part of what is signed (exc-c14n without comments), so they may come later.
    const std::string xml = Replaced(Signed(), "<saml:Subject>", "<!-- added --><saml:Subject>");
    EXPECT_EQ(Create(xml)->GetSubject().Name, "jdoe");
}

TEST_P(BothEntries, AcceptATokenThatADeployedResolverTrusts) {
    boost::intrusive_ptr<KeyInfoResolver> trusted;
    Xml::Security::CreateTrustSetKeyResolver({TestKeys::CertificateNamed("self-signed").der},
                                             trusted);
    UseResolver(trusted.get());
    EXPECT_NE(Create(Signed()), nullptr);
    Xml::Security::CreateTrustChainKeyResolver({TestKeys::CertificateNamed("root").der}, trusted);
    UseResolver(trusted.get());
    const Forge::Signer issued{
        SigningKey().privateKey,
        {TestKeys::CertificateNamed("leaf").der, TestKeys::CertificateNamed("intermediate").der}};
    EXPECT_NE(Create(Forge::Sign(Forge::Write({}), issued)), nullptr);
    EXPECT_EQ(RefusalOf<InvalidSignatureException>(Signed()),
              "Signature verification error. No verification key available.");
}

// --- The clock

TEST_P(BothEntries, TakeTheToleranceInSeconds) {
    Forge::TokenSpec early;
    early.notBefore = Forge::FromNow(1000);
    const std::string xmlEarly = Signed(early);
    EXPECT_NE(Create(xmlEarly, 1000), nullptr);
    EXPECT_EQ(RefusalOf<ParseException>(xmlEarly, 900),
              "Token start date is in the future: " + early.notBefore);

    Forge::TokenSpec late;
    late.notBefore = Forge::FromNow(-3600);
    late.notOnOrAfter = Forge::FromNow(-1000);
    const std::string xmlLate = Signed(late);
    EXPECT_NE(Create(xmlLate, 1100), nullptr);
    EXPECT_EQ(RefusalOf<ParseException>(xmlLate, 1000),
              "The token has expired at: " + late.notOnOrAfter);
}

TEST_P(BothEntries, RefuseATokenAtTheVerySecondOfItsEnd) {
    Forge::TokenSpec spec;
    spec.notOnOrAfter = Forge::FromNow(0);
    EXPECT_EQ(RefusalOf<ParseException>(Signed(spec), 0),
              "The token has expired at: " + spec.notOnOrAfter);
}

TEST_P(BothEntries, TakeAnyNumberForTheTolerance) {
    Forge::TokenSpec old;
    old.notBefore = "2001-01-01T00:00:00Z";
    old.notOnOrAfter = "2001-01-02T00:00:00Z";
    EXPECT_NE(Create(Signed(old), kGreatest), nullptr);
    const Forge::TokenSpec current;
    EXPECT_EQ(RefusalOf<ParseException>(Signed(current), kLeast),
              "Token start date is in the future: " + current.notBefore);
    EXPECT_NE(Create(Signed(current), -30), nullptr);
    EXPECT_EQ(RefusalOf<ParseException>(Signed(current), -3600),
              "Token start date is in the future: " + current.notBefore);
}

TEST(DefaultTolerance, IsTenMinutesAtBothEnds) {
    const auto resolver = RightKey();
    const auto createBoth = [&resolver](const Forge::TokenSpec& spec) {
        const std::string xml = Signed(spec);
        CreateSamlToken(xml, resolver.get());
        CreateSamlTokenFromDom(Forge::Parse(xml)->GetRootElement(), resolver.get());
    };
    Forge::TokenSpec spec;
    spec.notBefore = Forge::FromNow(599);
    EXPECT_NO_THROW(createBoth(spec));
    spec.notBefore = Forge::FromNow(-3600);
    spec.notOnOrAfter = Forge::FromNow(-570);
    EXPECT_NO_THROW(createBoth(spec));

    spec.notOnOrAfter = Forge::FromNow(-600);
    const std::string expired = Signed(spec);
    EXPECT_EQ(MessageOf<ParseException>([&] { CreateSamlToken(expired, resolver.get()); }),
              "The token has expired at: " + spec.notOnOrAfter);
    EXPECT_EQ(MessageOf<ParseException>([&] {
                  CreateSamlTokenFromDom(Forge::Parse(expired)->GetRootElement(), resolver.get());
              }),
              "The token has expired at: " + spec.notOnOrAfter);
    spec.notBefore = Forge::FromNow(630);
    spec.notOnOrAfter = Forge::FromNow(3600);
    const std::string early = Signed(spec);
    EXPECT_EQ(MessageOf<ParseException>([&] { CreateSamlToken(early, resolver.get()); }),
              "Token start date is in the future: " + spec.notBefore);
}

// --- The signature

TEST_P(BothEntries, RefuseATokenWhoseSignedContentWasAltered) {
    const std::string xml = Signed();
    for (const std::string& altered :
         {Replaced(xml, "jdoe@corp", "root@corp"), Replaced(xml, "jdoe@corp", "jdoe@corp "),
          Replaced(xml, "https://idp.example/", "https://idp.example"),
          Replaced(xml, "<saml:NameID ", "\n<saml:NameID "),
          Replaced(xml, "<saml:AuthnStatement ",
                   "<saml:Advice><ext:RSAAdvice AdviceSource=''/></saml:Advice>"
                   "<saml:AuthnStatement "),
          Replaced(xml, "ac:classes:Password", "ac:classes:Kerberos")})
        EXPECT_EQ(RefusalOf<InvalidSignatureException>(altered), kTampered) << altered;
    EXPECT_EQ(dynamic_cast<KeyOffer&>(*resolver_).asked, 0);
}

TEST_P(BothEntries, RefuseASignatureValueThatNoKeyVerifies) {
    const std::string xml = Signed();
    const std::string start = "<ds:SignatureValue>";
    const std::size_t at = xml.find(start) + start.size();
    std::string altered = xml;
    altered[at] = altered[at] == 'A' ? 'B' : 'A';
    EXPECT_EQ(RefusalOf<InvalidSignatureException>(altered), kTampered);
    altered[at] = '*';
    EXPECT_EQ(RefusalOf<InvalidSignatureException>(altered), kTampered);
    const boost::intrusive_ptr<KeyInfoResolver> other(
        new KeyOffer({TestKeys::KeyNamed("attacker").publicKey}));
    UseResolver(other.get());
    EXPECT_EQ(RefusalOf<InvalidSignatureException>(xml), kTampered);
}

TEST_P(BothEntries, SayWhyASignatureCannotBeChecked) {
    const std::string xml = Signed();
    UseResolver(new KeyOffer({}));
    EXPECT_EQ(RefusalOf<InvalidSignatureException>(xml),
              "Signature verification error. No verification key available.");
    UseResolver(RightKey().get());
    EXPECT_EQ(RefusalOf<InvalidSignatureException>(
                  Replaced(xml, "xmldsig-more#rsa-sha256", "xmldsig-more#rsa-md5")),
              "Signature verification error. The signature algorithm is not supported: "
              "http://www.w3.org/2001/04/xmldsig-more#rsa-md5");
    EXPECT_EQ(
        RefusalOf<InvalidSignatureException>(Replaced(xml, "xmlenc#sha256", "xmldsig-more#md5")),
        "Signature verification error. The following hash algorithm is unsupported: "
        "http://www.w3.org/2001/04/xmldsig-more#md5");
}

TEST_P(BothEntries, RefuseAnIdThatOccursTwice) {
    Forge::TokenSpec spec;
    spec.id = "_twice";
    const std::string xml =
        Replaced(Signed(spec), "<saml:Subject>", "<saml:Subject xmlns:Id='_twice'>");
    EXPECT_EQ(RefusalOf<InvalidSignatureException>(xml),
              "Signature verification error. Duplicate URI found: _twice");
}

TEST_P(BothEntries, ConvertWhatAResolverSaysAboutTheSignature) {
    using namespace Xml::Security;
    UseResolver(new Refuser(XmlSecurityException("root of them")));
    EXPECT_EQ(RefusalOf<InvalidSignatureException>(Signed()),
              "Signature verification error. root of them");
    UseResolver(new Refuser(SignatureVerificationException("no such key")));
    EXPECT_EQ(RefusalOf<InvalidSignatureException>(Signed()),
              "Signature verification error. no such key");
    UseResolver(new Refuser(SignatureSyntaxException("")));
    EXPECT_EQ(RefusalOf<InvalidSignatureException>(Signed()), "Signature verification error. ");
}

TEST_P(BothEntries, LetEverythingElseOfAResolverPass) {
    UseResolver(new Refuser(Xml::Security::CryptoException("engine")));
    EXPECT_EQ(RefusalOf<Xml::Security::CryptoException>(Signed()), "Crypto Exception: engine");
    UseResolver(new Refuser(InternalErrorException("state")));
    EXPECT_EQ(RefusalOf<InternalErrorException>(Signed()), "state");
    UseResolver(new Refuser(std::runtime_error("network")));
    EXPECT_EQ(RefusalOf<std::runtime_error>(Signed()), "network");
    UseResolver(new Refuser(42));
    EXPECT_THROW(Create(Signed()), int);
}

TEST_P(BothEntries, RefuseASignatureThatCoversAnotherElement) {
    Forge::SignatureSpec choices;
    choices.uri = "";
    const std::string xml = Replaced(Signed({}, choices), "URI=\"\"", "URI=\"#_inner\"");
    EXPECT_EQ(RefusalOf<ParseException>(xml), "Token's signature must cover the entire token");
}

// --- Which of several faults is reported

TEST_P(BothEntries, ReportTheExpiryOfATokenWithABrokenSignature) {
    Forge::TokenSpec spec;
    spec.notBefore = "2001-01-01T00:00:00Z";
    spec.notOnOrAfter = "2001-01-02T00:00:00Z";
    const std::string xml = Replaced(Signed(spec), "jdoe@corp", "root@corp");
    EXPECT_EQ(RefusalOf<ParseException>(xml), "The token has expired at: 2001-01-02T00:00:00Z");
    EXPECT_EQ(RefusalOf<InvalidSignatureException>(xml, kGreatest), kTampered);
    EXPECT_EQ(dynamic_cast<KeyOffer&>(*resolver_).asked, 0);
}

TEST_P(BothEntries, ReportTheTamperingOfATokenWithABadName) {
    Forge::TokenSpec spec;
    spec.subject.value = "nobody";
    const std::string xml = Signed(spec);
    EXPECT_EQ(RefusalOf<ParseException>(xml),
              "Failed to parse the UPN NameID: `nobody'; name or domain part is missing.");
    EXPECT_EQ(RefusalOf<InvalidSignatureException>(Replaced(xml, "nobody", "somebody")), kTampered);
}

TEST_P(BothEntries, ReportTheStructureOfAnExpiredToken) {
    Forge::TokenSpec spec;
    spec.version = "1.1";
    spec.notOnOrAfter = "2001-01-02T00:00:00Z";
    const std::string xml = Replaced(Signed(spec), "</saml:Assertion>", "x</saml:Assertion>");
    EXPECT_EQ(RefusalOf<ParseException>(xml), "Expected element 'AttributeStatement' not found.");
}

TEST_P(BothEntries, RefuseSoundSignaturesOverUnsoundAssertions) {
    Forge::TokenSpec spec;
    spec.id = "abc";
    EXPECT_EQ(RefusalOf<ParseException>(Signed(spec)), "Invalid token ID");
    spec = {};
    spec.version = "2.1";
    EXPECT_EQ(RefusalOf<ParseException>(Signed(spec)), "Invalid token version");
    spec = {};
    spec.notBefore = spec.notOnOrAfter;
    EXPECT_EQ(RefusalOf<ParseException>(Signed(spec), kGreatest),
              "Unsatisfiable token validity conditions: NotBefore must be less than NotOnOrAfter.");
    spec = {};
    spec.confirmationNotOnOrAfter = Forge::FromNow(3000);
    EXPECT_EQ(RefusalOf<ParseException>(Signed(spec)), "Invalid token subject validity");
    spec = {};
    spec.subject.format = "urn:oasis:names:tc:SAML:1.1:nameid-format:unspecified";
    EXPECT_EQ(RefusalOf<ParseException>(Signed(spec)),
              "Invalid or unsupported NameId format "
              "'urn:oasis:names:tc:SAML:1.1:nameid-format:unspecified'");
    spec = {};
    spec.attributes = {{ProfileUri::GroupIdentity, {"nodomain"}}};
    EXPECT_EQ(RefusalOf<ParseException>(Signed(spec)),
              "Failed to parse Group Identity value: `nodomain'; domain or group missing");
}

TEST_P(BothEntries, CompareDelegatesExactlyThoughPrincipalsIgnoreCase) {
    Forge::TokenSpec spec;
    spec.delegateId = Forge::Name{ProfileUri::UpnNameFormat, "Svc@corp"};
    spec.delegates = {{{ProfileUri::UpnNameFormat, "svc@corp"}}};
    ASSERT_TRUE((PrincipalId{"Svc", "corp"}) == (PrincipalId{"svc", "corp"}));
    EXPECT_EQ(RefusalOf<ParseException>(Signed(spec)),
              "The SubjectConfirmation delegate id does not match the id of the last delegate");
    spec.delegateId->value = "svc@corp";
    EXPECT_EQ(Create(Signed(spec))->GetDelegationChain().size(), 1U);
}

TEST_P(BothEntries, ThrowAPointerForABadSolutionUserAttribute) {
    Forge::TokenSpec spec;
    for (const auto& [values, message] :
         {std::pair<std::vector<std::string>, std::string>{
              {}, "No value found for attribute isSolution."},
          {{"true", "true"}, "More than one value found for attribute isSolution."}}) {
        spec.attributes = {{ProfileUri::IsSolution, values}};
        const std::string xml = Signed(spec);
        try {
            Create(xml);
            ADD_FAILURE() << "accepted";
        } catch (const std::exception& refusal) {
            ADD_FAILURE() << "thrown by value: " << refusal.what();
        } catch (ParseException* refusal) {
            EXPECT_EQ(std::unique_ptr<ParseException>(refusal)->what(), message);
        }
    }
}

// --- Arguments

TEST(CreateSamlToken, RefusesToWorkWithoutAResolverBeforeAnythingElse) {
    EXPECT_THROW(CreateSamlToken("no xml", nullptr), InvalidArgumentException);
    EXPECT_THROW(CreateSamlToken("no xml", nullptr, 0), InvalidArgumentException);
    const boost::intrusive_ptr<Xml::ElementNode> foreign(new Xml::ForeignElement);
    EXPECT_THROW(CreateSamlTokenFromDom(foreign.get(), nullptr), InvalidArgumentException);
    EXPECT_THROW(CreateSamlTokenFromDom(foreign.get(), nullptr, 0), InvalidArgumentException);
}

TEST(CreateSamlTokenFromDom, RefusesToWorkWithoutAnElement) {
    const auto resolver = RightKey();
    EXPECT_THROW(CreateSamlTokenFromDom(nullptr, resolver.get()), InvalidArgumentException);
    EXPECT_THROW(CreateSamlTokenFromDom(nullptr, nullptr, 0), InvalidArgumentException);
}

TEST(CreateSamlTokenFromDom, RefusesAnElementOfAForeignClass) {
    const auto resolver = RightKey();
    const boost::intrusive_ptr<Xml::ElementNode> foreign(new Xml::ForeignElement);
    EXPECT_THROW(CreateSamlTokenFromDom(foreign.get(), resolver.get()), TypeMismatchException);
}

// --- Text

TEST(CreateSamlToken, LetsTheParsersRefusalPass) {
    const auto resolver = RightKey();
    for (const std::string xml : {"", "no xml", "<saml:Assertion>", "<a/><b/>"})
        EXPECT_THROW(CreateSamlToken(xml, resolver.get()), Xml::XMLParseException) << xml;
    try {
        CreateSamlToken("<a>\n\n</b>", resolver.get());
        ADD_FAILURE() << "accepted";
    } catch (const Xml::XMLParseException& refusal) {
        EXPECT_STREQ(refusal.what(), "mismatched tag");
        EXPECT_EQ(refusal.line, 3U);
    }
}

TEST(CreateSamlToken, KeepsTheTextByteForByte) {
    const auto resolver = RightKey();
    const std::string xml =
        "<?xml version='1.0' encoding='UTF-8'?>\n<!-- before -->\n" +
        Replaced(Signed(), "<saml:Subject>", "<!-- within --><saml:Subject  >") +
        "\r\n<!-- after -->\n";
    EXPECT_EQ(CreateSamlToken(xml, resolver.get())->GetXml(), xml);
}

TEST(CreateSamlToken, KeepsTheTextThoughTheResolverChangesIt) {
    /// Offers the right key and spoils the text of which it is asked.
    class Spoiler final : public KeyInfoResolver {
      public:
        explicit Spoiler(std::string& text) : text_(text) {}
        void Resolve(KeyInfo*, std::list<ByteBlob>& keys) override {
            text_ = "spoiled";
            keys = {SigningKey().publicKey};
        }

      private:
        std::string& text_;
    };
    const std::string original = Signed();
    std::string text = original;
    const boost::intrusive_ptr<KeyInfoResolver> resolver(new Spoiler(text));
    const std::shared_ptr<const SamlToken> token = CreateSamlToken(text, resolver.get());
    EXPECT_EQ(text, "spoiled");
    EXPECT_EQ(token->GetXml(), original);
}

TEST(CreateSamlToken, LeavesATextToTheResolverThatKeepsIt) {
    /// Offers the right key and keeps the first group of the document that it is asked about.
    class Keeper final : public KeyInfoResolver {
      public:
        void Resolve(KeyInfo* keyInfo, std::list<ByteBlob>& keys) override {
            boost::intrusive_ptr<Xml::ElementNode> element;
            keyInfo->GetElement(element);
            Xml::Node* const assertion = element->GetParent()->GetParent();
            kept.reset(
                dynamic_cast<Xml::TextNode*>(assertion->GetFirstChildElement("AttributeStatement")
                                                 ->GetFirstChildElement("Attribute")
                                                 ->GetFirstChildElement("AttributeValue")
                                                 ->GetFirstChild()));
            keys = {SigningKey().publicKey};
        }
        boost::intrusive_ptr<Xml::TextNode> kept;
    };
    const std::string group(100, 'g');
    Forge::TokenSpec spec;
    spec.attributes = {{ProfileUri::GroupIdentity, {"corp\\" + group, "corp\\others"}}};
    const boost::intrusive_ptr<Keeper> resolver(new Keeper);
    const std::shared_ptr<const SamlToken> token = CreateSamlToken(Signed(spec), resolver.get());
    ASSERT_EQ(token->GetGroups().size(), 2U);
    EXPECT_EQ(token->GetGroups()[0].Name, group);
    EXPECT_EQ(token->GetGroups()[1].Name, "others");
    ASSERT_NE(resolver->kept, nullptr);
    EXPECT_EQ(resolver->kept->GetText(), "corp\\" + group);
}

TEST(CreateSamlToken, ExpandsEntitiesOfTheInternalSubset) {
    // Neither the parser's limits nor its ban on entity declarations hold for token texts.
    const auto resolver = RightKey();
    const std::string xml = "<!DOCTYPE saml:Assertion [<!ENTITY who \"jdoe\">]>" +
                            Replaced(Signed(), "jdoe@corp", "&who;@corp");
    const std::shared_ptr<const SamlToken> token = CreateSamlToken(xml, resolver.get());
    EXPECT_EQ(token->GetSubject().Name, "jdoe");
    EXPECT_EQ(token->GetXml(), xml);
}

TEST(CreateSamlToken, ReadsTextsDeeperThanTheLimitsOfTheParser) {
    constexpr std::size_t kDepth = 20000;  // the limit, were it enforced, is 8192
    std::string xml;
    for (std::size_t i = 0; i < kDepth; ++i)
        xml += "<a>";
    for (std::size_t i = 0; i < kDepth; ++i)
        xml += "</a>";
    const auto resolver = RightKey();
    EXPECT_EQ(MessageOf<ParseException>([&] { CreateSamlToken(xml, resolver.get()); }),
              "Expected element 'Assertion' not found.");
}

TEST(CreateSamlToken, GivesATokenThatOutlivesEverythingElse) {
    std::shared_ptr<const SamlToken> token;
    std::string expected;
    {
        auto resolver = RightKey();
        std::string xml = Signed();
        expected = xml;
        token = CreateSamlToken(xml, resolver.get());
    }
    EXPECT_EQ(token->GetXml(), expected);
    EXPECT_EQ(token->GetSubject().Domain, "corp");
}

TEST(CreateSamlToken, LeavesTheResolverToTheCaller) {
    const auto resolver = RightKey();
    const std::shared_ptr<const SamlToken> token = CreateSamlToken(Signed(), resolver.get());
    EXPECT_EQ(resolver->use_count(), 1U);
    EXPECT_EQ(resolver->asked, 1);
}

TEST(CreateSamlToken, RunsOnSeveralThreadsWithOneResolver) {
    const auto resolver = RightKey();
    const std::string xml = Signed();
    std::atomic<int> accepted{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < 5; ++round)
                if (CreateSamlToken(xml, resolver.get())->GetXml() == xml) ++accepted;
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(accepted, 20);
}

// --- Elements

std::string TextAt(const std::string& xml, const std::string& path) {
    std::string value;
    EXPECT_TRUE(Xml::EvaluateSimplePath(Forge::Parse(xml).get(), path, value)) << path;
    return value;
}

TEST(CreateSamlTokenFromDom, TakesTheInclusiveCanonicalFormForTheText) {
    Forge::TokenSpec spec;
    spec.id = "_c";
    const std::string xml = Forge::Sign(Forge::Write(spec), {SigningKey().privateKey, {}});
    const std::string digest = TextAt(xml, "Assertion/Signature/SignedInfo/Reference/DigestValue");
    const std::string value = TextAt(xml, "Assertion/Signature/SignatureValue");

    // The same token, written otherwise, inside an element whose declarations it inherits.
    std::string written = Replaced(xml, "<saml:Subject>", "<!-- c --><saml:Subject\n >");
    written = Replaced(written, "Version=\"2.0\"", "Version='2.0'");
    written = Replaced(written, "jdoe@corp", "&#106;doe@corp");
    written = Replaced(written, " xmlns:ext=", " xmlns:again=\"urn:again\" xmlns:ext=");
    const boost::intrusive_ptr<Xml::Document> document = Forge::Parse(
        "<around xmlns:z='urn:z' xmlns='urn:default'><!-- -->" + written + "</around>");
    Xml::ElementNode* const assertion =
        document->GetRootElement()->GetFirstChildElement("Assertion");

    // Canonical XML 1.0: declarations by prefix, then attributes by name, no comments, no empty
    // tags, double quotes, character references replaced.
    const std::string expected =
        "<saml:Assertion xmlns=\"urn:default\" xmlns:again=\"urn:again\""
        " xmlns:del=\"urn:oasis:names:tc:SAML:2.0:conditions:delegation\" xmlns:ext=\"" +
        std::string(ProfileUri::ExtensionNamespace) +
        "\" xmlns:saml=\"urn:oasis:names:tc:SAML:2.0:assertion\""
        " xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" xmlns:z=\"urn:z\""
        " ID=\"_c\" IssueInstant=\"" +
        spec.issueInstant +
        "\" Version=\"2.0\">"
        "<saml:Issuer Format=\"urn:oasis:names:tc:SAML:2.0:nameid-format:entity\">"
        "https://idp.example/</saml:Issuer>"
        "<ds:Signature xmlns:ds=\"http://www.w3.org/2000/09/xmldsig#\"><ds:SignedInfo>"
        "<ds:CanonicalizationMethod Algorithm=\"http://www.w3.org/2001/10/xml-exc-c14n#\">"
        "</ds:CanonicalizationMethod><ds:SignatureMethod Algorithm="
        "\"http://www.w3.org/2001/04/xmldsig-more#rsa-sha256\"></ds:SignatureMethod>"
        "<ds:Reference URI=\"#_c\"><ds:Transforms><ds:Transform Algorithm="
        "\"http://www.w3.org/2000/09/xmldsig#enveloped-signature\"></ds:Transform>"
        "<ds:Transform Algorithm=\"http://www.w3.org/2001/10/xml-exc-c14n#\"></ds:Transform>"
        "</ds:Transforms><ds:DigestMethod Algorithm=\"http://www.w3.org/2001/04/xmlenc#sha256\">"
        "</ds:DigestMethod><ds:DigestValue>" +
        digest + "</ds:DigestValue></ds:Reference></ds:SignedInfo><ds:SignatureValue>" + value +
        "</ds:SignatureValue></ds:Signature>"
        "<saml:Subject><saml:NameID Format=\"" +
        ProfileUri::UpnNameFormat +
        "\">jdoe@corp</saml:NameID><saml:SubjectConfirmation"
        " Method=\"urn:oasis:names:tc:SAML:2.0:cm:bearer\">"
        "<saml:SubjectConfirmationData NotOnOrAfter=\"" +
        spec.notOnOrAfter +
        "\"></saml:SubjectConfirmationData></saml:SubjectConfirmation></saml:Subject>"
        "<saml:Conditions NotBefore=\"" +
        spec.notBefore + "\" NotOnOrAfter=\"" + spec.notOnOrAfter +
        "\"></saml:Conditions><saml:AuthnStatement AuthnInstant=\"" + spec.authnInstant +
        "\"><saml:AuthnContext><saml:AuthnContextClassRef>"
        "urn:oasis:names:tc:SAML:2.0:ac:classes:Password"
        "</saml:AuthnContextClassRef></saml:AuthnContext></saml:AuthnStatement>"
        "</saml:Assertion>";
    EXPECT_EQ(CreateSamlTokenFromDom(assertion, RightKey().get())->GetXml(), expected);
}

TEST(CreateSamlTokenFromDom, LeavesTheCallersTreeUntouched) {
    Forge::TokenSpec spec;
    spec.attributes = {{ProfileUri::GroupIdentity, {"corp\\" + std::string(100, 'g')}}};
    const boost::intrusive_ptr<Xml::Document> document =
        Forge::Parse("<around>" + Signed(spec) + "<behind/></around>");
    Xml::ElementNode* const assertion =
        document->GetRootElement()->GetFirstChildElement("Assertion");
    StringWriter before;
    document->GetRootElement()->Write(before);
    const auto resolver = RightKey();
    const std::shared_ptr<const SamlToken> token =
        CreateSamlTokenFromDom(assertion, resolver.get());
    ASSERT_EQ(token->GetGroups().size(), 1U);
    EXPECT_EQ(token->GetGroups()[0].Name, std::string(100, 'g'));
    StringWriter after;
    document->GetRootElement()->Write(after);
    EXPECT_EQ(after.data, before.data);
    EXPECT_EQ(assertion->use_count(), 1U);
    EXPECT_EQ(assertion->GetParent(), document->GetRootElement());
}

TEST(CreateSamlTokenFromDom, LeavesTheCallersTreeUntouchedWhenItRefusesAGroup) {
    Forge::TokenSpec spec;
    spec.attributes = {{ProfileUri::GroupIdentity, {"corp\\" + std::string(100, 'g'), "nobody"}}};
    const boost::intrusive_ptr<Xml::Document> document = Forge::Parse(Signed(spec));
    StringWriter before;
    document->Write(before);
    const auto resolver = RightKey();
    EXPECT_EQ(MessageOf<ParseException>(
                  [&] { CreateSamlTokenFromDom(document->GetRootElement(), resolver.get()); }),
              "Failed to parse Group Identity value: `nobody'; domain or group missing");
    StringWriter after;
    document->Write(after);
    EXPECT_EQ(after.data, before.data);
}

TEST(CreateSamlTokenFromDom, LooksForIdsInsideTheAssertionOnly) {
    Forge::TokenSpec spec;
    spec.id = "_inside";
    const boost::intrusive_ptr<Xml::Document> document =
        Forge::Parse("<around ID='_inside'><other Id='_inside'/>" + Signed(spec) + "</around>");
    Xml::ElementNode* const assertion =
        document->GetRootElement()->GetFirstChildElement("Assertion");
    EXPECT_NE(CreateSamlTokenFromDom(assertion, RightKey().get()), nullptr);
}

TEST(CreateSamlTokenFromDom, ReadsAnAssertionAsDeepAsMemoryAllows) {
    constexpr std::size_t kDepth = 50000;
    Forge::TokenSpec spec;
    for (int i = 0; i < 2000; ++i)
        spec.attributes.push_back({"n", {"v"}});
    std::string xml;
    for (std::size_t i = 0; i < kDepth; ++i)
        xml += "<a>";
    xml += Signed(spec);
    for (std::size_t i = 0; i < kDepth; ++i)
        xml += "</a>";
    const boost::intrusive_ptr<Xml::Document> document = Forge::Parse(xml);
    Xml::ElementNode* element = document->GetRootElement();
    while (element->GetLocalName() != "Assertion")
        element = Xml::GetFirstChildElement(element);
    EXPECT_NE(CreateSamlTokenFromDom(element, RightKey().get()), nullptr);
}

}  // namespace
