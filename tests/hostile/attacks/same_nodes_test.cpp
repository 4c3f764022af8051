// What a token says and what was digested are the same nodes. Shown twice: no character of what is
// signed can be changed, and whatever is done to a token, an account of the digested bytes, read by
// another reader, is the account that the token gives.
#include "hostile/attacks/digested_account.h"
#include "hostile/attacks/provider.h"
#include "oracle/signatures/markup_places.h"
#include "support/dice.h"
#include "support/random_seed.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <memory>
#include <optional>

namespace Saml::Attacks {
namespace {

using MarkupPlaces::Span;

/// The account of a token; nothing when it is refused.
std::optional<Oracle::Account> Verified(const std::string& text) {
    try {
        return Oracle::AccountOf(*CreateSamlToken(text, Provider::TrustInTheSigner().get()));
    } catch (ParseException* thrown) {
        const std::unique_ptr<ParseException> refusal(thrown);
    } catch (const Exception&) {
        // Which refusal it is does not matter here.
    }
    return std::nullopt;
}

bool IsIn(const std::string& text, std::size_t place, const char* begin, const char* end) {
    return place >= text.find(begin) && place < text.find(end);
}

/// Whether the canonical forms of the assertion and of SignedInfo hold what stands here. Namespace
/// declarations are the exception: those that only xsi:type uses are not in them.
bool IsSigned(const std::string& text, std::size_t place) {
    return !IsIn(text, place, "<ds:SignatureValue", "</ds:Signature>");
}

std::vector<Span> ValuesAndTexts(const std::string& token, bool ofDeclarations) {
    const MarkupPlaces::Places places = MarkupPlaces::PlacesOf(token);
    std::vector<Span> spans;
    for (const MarkupPlaces::Element& element : places.elements)
        for (const MarkupPlaces::Attribute& attribute : element.attributes)
            if ((token.compare(attribute.name.begin, 5, "xmlns") == 0) == ofDeclarations)
                spans.push_back(attribute.value);
    if (!ofDeclarations)
        for (const MarkupPlaces::Run& run : places.runs)
            spans.push_back(run.span);
    return spans;
}

std::string RichToken(bool isHolderOfKey) {
    Forge::TokenSpec spec = Provider::CustomerSpec();
    if (isHolderOfKey) spec.holderOfKeyCertificate = "AQIDBAUG";
    spec.advice[0].attributes[0].friendlyName = "friendly";
    return Provider::Signed(spec);
}

class EveryCharacter : public testing::TestWithParam<bool> {};

TEST_P(EveryCharacter, OfWhatIsSignedIsPartOfTheDigest) {
    const std::string token = RichToken(GetParam());
    const std::string said = Oracle::Told(Verified(token).value());
    int refused = 0;
    int withoutMeaning = 0;
    for (const bool ofDeclarations : {false, true})
        for (const Span& span : ValuesAndTexts(token, ofDeclarations))
            for (std::size_t place = span.begin; place != span.end; ++place) {
                std::string changed = token;
                changed[place] = token[place] == 'a' ? 'b' : 'a';
                const std::optional<Oracle::Account> account = Verified(changed);
                ++(account ? withoutMeaning : refused);
                if (!account) continue;
                EXPECT_TRUE(ofDeclarations || !IsSigned(token, place)) << changed;
                EXPECT_EQ(Oracle::Told(*account), said) << changed;
            }
    std::cout << refused << " changed characters are refused, " << withoutMeaning
              << " mean nothing\n";
    RecordProperty("refused", refused);
    EXPECT_GT(refused, 2000);
}

INSTANTIATE_TEST_SUITE_P(SameNodes, EveryCharacter, testing::Bool(),
                         [](const auto& row) { return row.param ? "HolderOfKey" : "Bearer"; });

constexpr const char* kWords[] = {"a",   "Zo\u00eb", " x ",    "admin",  "&lt;b&gt;", "&amp;amp;",
                                  "1,2", "'\"",      "\u0416", "]]&gt;", "--&gt;"};

/// A token of random values, with whatever is optional there or not.
Forge::TokenSpec RandomSpec(Dice& dice) {
    const auto word = [&dice] { return std::string(dice.Any(kWords)); };
    const auto name = [&] { return word() + word() + "@corp" + word(); };
    Forge::TokenSpec spec;
    spec.id = "_" + std::to_string(dice.Below(1000000));
    spec.subject.value = name();
    if (dice.Chance(50)) spec.holderOfKeyCertificate = dice.Chance(50) ? "AQIDBAUG" : "AAAA";
    if (dice.Chance(50)) {
        spec.delegateId = Forge::Name{ProfileUri::UpnNameFormat, name()};
        spec.delegates = {{{ProfileUri::UpnNameFormat, name()}}, {*spec.delegateId}};
    }
    for (std::size_t left = dice.Below(3); left != 0; --left)
        spec.audience.push_back("urn:" + word());
    if (dice.Chance(50)) spec.proxyCount = std::to_string(dice.Below(3));
    spec.renewRestriction = dice.Chance(50);
    if (dice.Chance(50)) spec.renewCount = std::to_string(dice.Below(3));
    for (std::size_t left = dice.Below(3); left != 0; --left)
        spec.advice.push_back({"urn:" + std::to_string(left), {{"urn:x", {word(), word()}}}});
    spec.attributes = {{ProfileUri::GivenName, {word()}},
                       {ProfileUri::Surname, {word()}},
                       {ProfileUri::GroupIdentity, {"corp\\" + word(), word() + "\\" + word()}},
                       {ProfileUri::IsSolution, {dice.Chance(50) ? "true" : "false"}}};
    return spec;
}

/// Does something to a token that canonicalization may not see.
class Disguise {
  public:
    Disguise(std::string token, Dice& dice) : token_(std::move(token)), dice_(dice) {}

    std::string Put(std::size_t times) {
        std::string declarations =
            "<!ENTITY none ''><!ENTITY remark '<!-- -->'>"
            "<!ENTITY outside SYSTEM 'file:///etc/hostname'>";
        // From behind, so that the places in front stay where they are.
        std::vector<std::size_t> places = ContentPlaces();
        dice_.Shuffle(places);
        places.resize(std::min(times, places.size()));
        std::sort(places.rbegin(), places.rend());
        const bool isGentle = dice_.Chance(60);
        for (const std::size_t place : places)
            isGentle ? PutGently(place) : Insert(place, dice_.Any(kAdditions));
        if (dice_.Chance(30)) declarations += dice_.Any(kDefaults);
        return "<!DOCTYPE saml:Assertion [" + declarations + "]>" + token_;
    }

  private:
    void Insert(std::size_t place, const std::string& addition) { token_.insert(place, addition); }

    /// What cannot be seen in the canonical form: a comment beside a tag, an entity that says
    /// nothing, a letter as its number.
    void PutGently(std::size_t place) {
        const bool isBesideATag = token_[place] == '<' || token_[place - 1] == '>';
        if (isBesideATag && dice_.Chance(70))
            Insert(place, "<!-- -->");
        else if (token_[place] >= 'a' && token_[place] <= 'z' && dice_.Chance(50))
            token_.replace(place, 1, "&#" + std::to_string(int{token_[place]}) + ";");
        else
            Insert(place, dice_.Chance(50) ? "&none;" : "&outside;");
    }

    static constexpr const char* kAdditions[] = {
        "<!-- -->", "<!-- -->",     "<!---->",       "&none;", "&none;", "&outside;",
        "&remark;", "<![CDATA[]]>", "<![CDATA[x]]>", " ",      "<x/>",   "x"};
    static constexpr const char* kDefaults[] = {
        "<!ATTLIST saml:Subject xmlns:x CDATA 'urn:x'>",
        "<!ATTLIST saml:NameID Format CDATA 'urn:x'>",
        "<!ATTLIST saml:ProxyRestriction Count CDATA '9'>",
        "<!ATTLIST saml:AttributeValue xmlns CDATA 'urn:x'>",
        "<!ATTLIST ds:X509Data xmlns:x CDATA 'urn:x'>",
        "<!ATTLIST saml:Attribute FriendlyName CDATA 'x'>",
        "<!ATTLIST saml:Condition Count CDATA '9'>"};

    /// Every place in the content of an element.
    std::vector<std::size_t> ContentPlaces() const {
        std::vector<std::size_t> places;
        bool isInReference = false;
        for (std::size_t place = token_.find('>') + 1; place != token_.size(); ++place) {
            const std::size_t open = token_.find('<', place);
            if (token_.find('>', place) < open) continue;  // inside a tag
            if (token_[place - 1] == '&') isInReference = true;
            if (token_[place - 1] == ';') isInReference = false;
            if (!isInReference) places.push_back(place);
        }
        return places;
    }

    std::string token_;
    Dice& dice_;
};

std::string DigestValueOf(Xml::ElementNode& assertion) {
    Xml::Node* const digestValue = assertion.GetFirstChildElement("Signature")
                                       ->GetFirstChildElement("SignedInfo")
                                       ->GetFirstChildElement("Reference")
                                       ->GetFirstChildElement("DigestValue");
    for (Xml::Node* child = digestValue->GetFirstChild(); child != nullptr;
         child = child->GetNextSibling())
        if (auto* const text = dynamic_cast<Xml::TextNode*>(child)) return text->GetText();
    return {};
}

TEST(WhatWasDigested, IsWhatAnAcceptedTokenSays) {
    constexpr std::size_t kTokens = 200;
    constexpr std::size_t kDisguises = 10;
    const std::uint64_t seed = RandomSeed(20120808);
    int accepted = 0;
    int refused = 0;
    for (std::size_t number = 0; number != kTokens; ++number) {
        Dice dice(seed, {number});
        const std::string token = Provider::Signed(RandomSpec(dice));
        ASSERT_TRUE(Verified(token)) << token;
        for (std::size_t disguise = 0; disguise != kDisguises; ++disguise) {
            const std::string text = Disguise(token, dice).Put(disguise);
            const std::optional<Oracle::Account> account = Verified(text);
            ++(account ? accepted : refused);
            if (!account) continue;
            const boost::intrusive_ptr<Xml::Document> document = Forge::Parse(text);
            Xml::ElementNode& assertion = *document->GetRootElement();
            const std::string digestValue = DigestValueOf(assertion);
            const std::string digested = DigestInput(assertion);
            ASSERT_EQ(Sha256(digested), digestValue) << text;
            ASSERT_EQ(Oracle::Told(DigestedAccount(digested)), Oracle::Told(*account)) << text;
        }
    }
    std::cout << accepted << " disguised tokens are accepted, " << refused << " are refused\n";
    RecordProperty("accepted", accepted);
    RecordProperty("refused", refused);
    EXPECT_GT(accepted, 500);
    EXPECT_GT(refused, 500);
}

}  // namespace
}  // namespace Saml::Attacks
