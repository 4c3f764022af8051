// Canonicalization drops comments, CDATA sections and unused namespace declarations, so anybody may
// add them to a signed token without breaking its signature. Wherever they are added, the token is
// refused or says the same.
#include "saml/token.h"
#include "support/test_keys.h"
#include "support/token_account.h"
#include "support/token_forge.h"

#include <gtest/gtest.h>

#include <map>
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
    return Oracle::Told(Oracle::AccountOf(token));
}

std::string SignedTokenOfEveryKind() {
    Forge::TokenSpec spec;
    spec.holderOfKeyCertificate = "AQIDBAUG";
    spec.subject.value = " jdoe@corp ";  // blanks are part of a name
    spec.delegateId = Forge::Name{ProfileUri::UpnNameFormat, " svc@corp"};
    spec.delegates = {{{ProfileUri::UpnNameFormat, " svc@corp"}}};
    spec.audience = {"urn:a", "urn:b "};
    spec.proxyCount = "1";
    spec.renewRestriction = true;
    spec.renewCount = "1";
    spec.advice = {{"s", {{"n", {"v", ""}}}}};
    spec.attributes = {{ProfileUri::GroupIdentity, {"dom\\admin "}},
                       {ProfileUri::GivenName, {"Jane"}},
                       {ProfileUri::Surname, {""}},
                       {ProfileUri::IsSolution, {"true"}}};
    return Forge::Sign(Forge::Write(spec), {TestKeys::KeyNamed("leaf").privateKey, {}});
}

enum class Verdict { Same, Other, Refused };

/// Whether `spoiled` gives the same account as the token that it was made from.
Verdict Judge(const std::string& spoiled, const std::string& account) {
    const boost::intrusive_ptr<Xml::Security::KeyInfoResolver> resolver(new LeafKey);
    try {
        const bool isSame = Account(*CreateSamlToken(spoiled, resolver.get())) == account;
        return isSame ? Verdict::Same : Verdict::Other;
    } catch (const InvalidTokenException&) {
        return Verdict::Refused;
    } catch (const Xml::XMLParseException&) {  // declared twice
        return Verdict::Refused;
    }
}

std::string AccountOf(const std::string& xml) {
    const boost::intrusive_ptr<Xml::Security::KeyInfoResolver> resolver(new LeafKey);
    return Account(*CreateSamlToken(xml, resolver.get()));
}

struct Addition {
    const char* name;
    const char* markup;
    bool isEverAccepted;
};
std::string NameOfAddition(const testing::TestParamInfo<Addition>& row) {
    return row.param.name;
}

class AddedContent : public testing::TestWithParam<Addition> {};

TEST_P(AddedContent, NeverChangesWhatASignedTokenSays) {
    const std::string xml = SignedTokenOfEveryKind();
    const std::string account = AccountOf(xml);
    std::map<Verdict, int> verdicts;
    for (std::size_t place = xml.find('>') + 1; place < xml.size(); ++place) {
        if (xml.find('>', place) < xml.find('<', place)) continue;  // inside a tag
        const std::string spoiled = std::string(xml).insert(place, GetParam().markup);
        const Verdict verdict = Judge(spoiled, account);
        EXPECT_NE(verdict, Verdict::Other) << spoiled;
        ++verdicts[verdict];
    }
    EXPECT_GT(verdicts[Verdict::Refused], 100);  // in the middle of a text, for one
    EXPECT_EQ(verdicts[Verdict::Same] > 0, GetParam().isEverAccepted);
}

INSTANTIATE_TEST_SUITE_P(InvisibleMarkup, AddedContent,
                         testing::Values(Addition{"Comment", "<!-- x -->", true},
                                         Addition{"CDataSection", "<![CDATA[x]]>", false},
                                         Addition{"EmptyCDataSection", "<![CDATA[]]>", false}),
                         NameOfAddition);

class AddedDeclaration : public testing::TestWithParam<Addition> {};

TEST_P(AddedDeclaration, NeverChangesWhatASignedTokenSays) {
    const std::string xml = SignedTokenOfEveryKind();
    const std::string account = AccountOf(xml);
    std::map<Verdict, int> verdicts;
    for (std::size_t open = xml.find('<'); open != std::string::npos;
         open = xml.find('<', open + 1)) {
        if (xml[open + 1] == '/') continue;
        const std::size_t place = xml.find_first_of(" />", open);
        const std::string spoiled = std::string(xml).insert(place, GetParam().markup);
        const Verdict verdict = Judge(spoiled, account);
        EXPECT_NE(verdict, Verdict::Other) << spoiled;
        ++verdicts[verdict];
    }
    EXPECT_EQ(verdicts[Verdict::Same] > 0, GetParam().isEverAccepted);
    EXPECT_GT(verdicts[Verdict::Same] + verdicts[Verdict::Refused], 30);
}

INSTANTIATE_TEST_SUITE_P(
    InvisibleMarkup, AddedDeclaration,
    testing::Values(Addition{"Unused", " xmlns:unused='urn:unused'", true},
                    Addition{"MadeToLookLikeAType",
                             " xmlns:xmlns='http://www.w3.org/2001/XMLSchema-instance'"
                             " xmlns:type='del:DelegationRestrictionType'",
                             true},
                    Addition{"Default",
                             " xmlns='urn:oasis:names:tc:SAML:2.0:conditions:delegation'", true}),
    NameOfAddition);

// The prefix of an xsi:type value is not visibly used (exc-c14n 1.1), so its declaration is not
// signed. Who rebinds it finds no other type under the same local name.
TEST(InvisibleMarkup, CannotTurnOneConditionIntoAnother) {
    const std::string xml = SignedTokenOfEveryKind();
    const std::string account = AccountOf(xml);
    for (const std::string prefix : {"del", "ext"})
        for (const std::string& uri :
             {std::string("urn:oasis:names:tc:SAML:2.0:conditions:delegation"),
              std::string("urn:oasis:names:tc:SAML:2.0:assertion"),
              std::string(ProfileUri::ExtensionNamespace), std::string("urn:other")}) {
            const std::string start = "<saml:Condition ";
            for (std::size_t at = xml.find(start); at != std::string::npos;
                 at = xml.find(start, at + 1)) {
                const std::string spoiled = std::string(xml).insert(
                    at + start.size(), "xmlns:" + prefix + "='" + uri + "' ");
                EXPECT_NE(Judge(spoiled, account), Verdict::Other) << spoiled;
            }
        }
}

// A DTD is not part of the assertion: whoever presents a token may put one in front.
TEST(InvisibleMarkup, OfADtdNeverChangesWhatASignedTokenSays) {
    const std::string xml = SignedTokenOfEveryKind();
    const std::string account = AccountOf(xml);
    const std::map<std::string, Verdict> verdicts = {
        {"<!ATTLIST saml:Subject xmlns:unused CDATA 'urn:unused'>", Verdict::Same},
        {"<!ATTLIST saml:Assertion Version CDATA '3.0' ID ID 'x'>", Verdict::Same},
        {"<!ATTLIST ds:Reference Id CDATA 'x'>", Verdict::Refused},
        {"<!ATTLIST ds:KeyInfo xmlns:unused CDATA 'urn:unused'>", Verdict::Same},
        {"<!ATTLIST saml:NameID Format CDATA #FIXED 'other'>", Verdict::Same},
        {"<!ATTLIST saml:NameID xmlns:saml CDATA 'urn:other'>", Verdict::Refused},
        {"<!ATTLIST saml:AttributeValue x CDATA 'y'>", Verdict::Refused},
        {"<!ATTLIST saml:Audience ID CDATA '_4f1c0d7e'>", Verdict::Refused},
        {"<!ENTITY lt '&#38;#60;'><!ENTITY amp '&#38;#38;'>", Verdict::Same},
        {"<!ELEMENT saml:NameID EMPTY><!-- x --><?p x?>", Verdict::Same},
    };
    for (const auto& [declarations, verdict] : verdicts)
        EXPECT_EQ(Judge("<!DOCTYPE saml:Assertion [" + declarations + "]>" + xml, account), verdict)
            << declarations;
}

// As expat reads a document whose external subset it does not have: nothing stands for an entity
// that might be declared there. The digest sees what the token says.
TEST(InvisibleMarkup, OfEntitiesWithoutADeclarationSaysNothing) {
    const std::string xml = SignedTokenOfEveryKind();
    const std::string account = AccountOf(xml);
    const std::string split = Forge::Replaced(xml, "Jane", "Ja&nobody;ne");
    EXPECT_EQ(Judge("<!DOCTYPE saml:Assertion SYSTEM 'x'>" + split, account), Verdict::Same);
    EXPECT_EQ(Judge("<!DOCTYPE saml:Assertion [<!ENTITY nobody SYSTEM 'x'>]>" + split, account),
              Verdict::Same);
    EXPECT_EQ(Judge("<!DOCTYPE saml:Assertion [<!ENTITY nobody '<!-- -->'>]>" + split, account),
              Verdict::Refused);
    EXPECT_EQ(Judge("<!DOCTYPE saml:Assertion [<!ENTITY nobody 'x'>]>" + split, account),
              Verdict::Refused);
    EXPECT_EQ(Judge(split, account), Verdict::Refused);
}

/// The same characters in UTF-16, with a byte order mark.
std::string InUtf16(const std::string& ascii, bool bigEndian) {
    std::string wide = bigEndian ? "\xfe\xff" : "\xff\xfe";
    for (const char character : ascii) {
        if (bigEndian) wide += '\0';
        wide += character;
        if (!bigEndian) wide += '\0';
    }
    return wide;
}

TEST(InvisibleMarkup, MayBeInAnyEncodingThatTheParserKnows) {
    const std::string xml = SignedTokenOfEveryKind();
    const std::string account = AccountOf(xml);
    for (const std::string& text : {InUtf16(xml, true), InUtf16(xml, false), "\xef\xbb\xbf" + xml,
                                    "<?xml version='1.0' encoding='ISO-8859-1'?>" + xml})
        EXPECT_EQ(Judge(text, account), Verdict::Same);
    for (const std::string& text : {xml + '\0', "<?xml version='1.0' encoding='UTF-7'?>" + xml,
                                    "<?xml version='1.0' encoding='UTF-16'?>" + xml,
                                    "\xff\xfe" + xml, Forge::Replaced(xml, "Jane", "Ja\xc0\x80ne"),
                                    Forge::Replaced(xml, "Jane", "Jane\xed\xa0\x80")})
        EXPECT_EQ(Judge(text, account), Verdict::Refused);
}

/// A token that says in another namespace what an assertion without prefixes says.
std::string SignedInAnotherNamespace() {
    Forge::TokenSpec spec;
    spec.prefix = "";
    const std::string xml =
        Forge::Replaced(Forge::Write(spec), "xmlns=\"urn:oasis:names:tc:SAML:2.0:assertion\"",
                        "xmlns=\"urn:other\"");
    return Forge::Sign(xml, {TestKeys::KeyNamed("leaf").privateKey, {}});
}

// To canonicalization all three spellings are the default declaration, so each of these texts has
// the digest of the signed one.
TEST(InvisibleMarkup, CannotTurnAnotherNamespaceIntoTheAssertions) {
    const std::string xml = SignedInAnotherNamespace();
    const std::string ours = "xmlns=\"urn:oasis:names:tc:SAML:2.0:assertion\"";
    for (const std::string& spoiled :
         {Forge::Replaced(xml, "xmlns=\"urn:other\"", ours + " xmlns:=\"urn:other\""),
          Forge::Replaced(xml, "xmlns=\"urn:other\"", ours + " :xmlns=\"urn:other\""),
          Forge::Replaced(xml, "xmlns=\"urn:other\"", "xmlns:=\"urn:other\"")})
        EXPECT_EQ(Judge(spoiled, ""), Verdict::Refused) << spoiled;
}

}  // namespace
