// Markup in the middle of a text. Canonicalization drops comments, so they can be added to a signed
// token, and a reader that stops at one reads "admin@corp" where "admin@corp.evil.example" was
// signed (CVE-2017-11427 and its kin, CVE-2018-0489). Whatever is added: the whole text is read, or
// the token is refused.
#include "hostile/attacks/provider.h"
#include "hostile/attacks/refusals.h"
#include "hostile/attacks/stolen_signature.h"

#include <gtest/gtest.h>

#include <iostream>
#include <iterator>
#include <utility>

namespace Saml::Attacks {
namespace {

using Forge::Replaced;

/// A token in which every text ends with something that an attacker would like to cut off.
Forge::TokenSpec LongTexts() {
    Forge::TokenSpec spec = Provider::CustomerSpec();
    spec.subject.value = "admin@corp.evil.example";
    spec.holderOfKeyCertificate = "AQIDBAUG";
    spec.delegateId = Forge::Name{ProfileUri::UpnNameFormat, "svc@corp.evil.example"};
    spec.delegates = {{{ProfileUri::UpnNameFormat, "svc@corp.evil.example"}}};
    spec.audience = {"https://bank.example/wiki"};
    spec.contextClass = "urn:smartcard-not";
    spec.advice = {{"urn:advisor", {{"urn:advised", {"yes-no"}}}}};
    spec.attributes = {{ProfileUri::GroupIdentity, {"corp\\admins.evil"}},
                       {ProfileUri::GivenName, {"Alice-not"}},
                       {ProfileUri::IsSolution, {"true-not"}}};
    return spec;
}

struct LongToken {
    Forge::TokenSpec spec = LongTexts();
    std::string token = Provider::Signed(spec);
};
const LongToken& Long() {
    static const LongToken token;
    return token;
}

/// The text of the first element with this start tag.
std::string TextBehind(const std::string& startTag) {
    const std::size_t begin = Long().token.find(startTag) + startTag.size();
    return Long().token.substr(begin, Long().token.find('<', begin) - begin);
}

struct Field {
    const char* name;
    const char* element;
    std::string before;  ///< Markup in front of the text; so that it is found once.
    std::string wanted;  ///< What the attacker would like to be all of the text.
    std::string rest;
    std::string behind;
    bool isBase64 = false;
    bool isOfSignature = false;
    /// Compared with another text before the signature is verified.
    bool isRepeated = false;
};

Field OfSignature(const char* name, const std::string& before) {
    const std::string text = TextBehind(before);
    const std::size_t half = text.size() / 2;
    return {name, name, before, text.substr(0, half), text.substr(half), "</", true, true};
}

std::vector<Field> Fields() {
    return {
        {"SubjectNameID", "NameID", ">", "admin@corp", ".evil.example", "<"},
        {"Issuer", "Issuer", ">", "https://idp.example", "/", "<"},
        {"ConfirmationNameID", "NameID", ">", "svc@corp", ".evil.example",
         "</saml:NameID><saml:SubjectConfirmationData", false, false, true},
        {"DelegateNameID", "NameID", ">", "svc@corp", ".evil.example",
         "</saml:NameID></del:Delegate>", false, false, true},
        {"HolderOfKeyCertificate", "X509Certificate", ">", "AQID", "BAUG", "<", true},
        {"Audience", "Audience", ">", "https://bank.example/", "wiki", "<"},
        {"AdvisedValue", "AttributeValue", ">", "yes", "-no", "<"},
        {"AuthnContextClassRef", "AuthnContextClassRef", ">", "urn:smartcard", "-not", "<"},
        {"Group", "AttributeValue", ">", "corp\\admins", ".evil", "<"},
        {"GivenName", "AttributeValue", ">", "Alice", "-not", "<"},
        {"SolutionFlag", "AttributeValue", ">", "true", "-not", "<"},
        OfSignature("DigestValue", "<ds:DigestValue>"),
        OfSignature("SignatureValue", "<ds:SignatureValue>"),
        OfSignature("X509Certificate", "<ds:X509Data><ds:X509Certificate>"),
    };
}

constexpr char kDeclarations[] =
    "<!ENTITY nothing ''><!ENTITY text 'text'><!ENTITY comment '<!-- -->'>"
    "<!ENTITY hidden '&comment;'><!ENTITY section '<![CDATA[x]]>'><!ENTITY element '<x/>'>"
    "<!ENTITY instruction '<?x y?>'><!ENTITY external SYSTEM 'file:///etc/hostname'>"
    "<!ENTITY itself '&itself;'>";

std::string Around(const Field& field, const std::string& text) {
    return Replaced(Long().token, field.before + field.wanted + field.rest + field.behind,
                    field.before + text + field.behind);
}

std::string NotOnlyText(const Field& field) {
    if (!field.isOfSignature) return Attacks::NotOnlyText(field.element);
    return RefusedSignatureSyntax(
        std::string("Element '") + field.element +
        "' must only have textual content (but has extra children or is empty).");
}
std::string OtherDelegate() {
    return Refused<ParseException>(
        "The SubjectConfirmation delegate id does not match the id of the last delegate");
}

enum class Effect {
    None,        ///< Says nothing: the token is as it was.
    Splits,      ///< Says nothing at the ends; in the middle there are two texts.
    IsNoText,    ///< A node that is not expected here.
    IsMoreText,  ///< Not what was signed.
    IsNotParsed
};
struct Splitter {
    const char* name;
    const char* markup;
    Effect effect;
    const char* reason = "";
};
constexpr Splitter kSplitters[] = {
    {"Comment", "<!-- -->", Effect::Splits},
    {"EmptyComment", "<!---->", Effect::Splits},
    {"TwoComments", "<!-- --><!-- -->", Effect::Splits},
    {"CDataSection", "<![CDATA[x]]>", Effect::IsNoText},
    {"EmptyCDataSection", "<![CDATA[]]>", Effect::IsNoText},
    {"CommentAndCDataSection", "<!-- --><![CDATA[]]>", Effect::IsNoText},
    {"Element", "<x/>", Effect::IsNoText},
    {"EmptyEntity", "&nothing;", Effect::None},
    {"ExternalEntity", "&external;", Effect::None},
    {"EntityWithAComment", "&comment;", Effect::Splits},
    {"EntityOfAnEntityWithAComment", "&hidden;", Effect::Splits},
    {"EntityWithACDataSection", "&section;", Effect::IsNoText},
    {"EntityWithAnElement", "&element;", Effect::IsNoText},
    {"EntityWithText", "&text;", Effect::IsMoreText},
    {"CharacterReference", "&#x200b;", Effect::IsMoreText},
    {"Instruction", "<?x y?>", Effect::IsNotParsed, "parsing aborted"},
    {"EntityWithAnInstruction", "&instruction;", Effect::IsNotParsed, "parsing aborted"},
    {"UndeclaredEntity", "&nobody;", Effect::IsNotParsed, "undefined entity"},
    {"RecursiveEntity", "&itself;", Effect::IsNotParsed, "recursive entity reference"},
    {"NulByNumber", "&#0;", Effect::IsNotParsed, "reference to invalid character number"},
};

std::string Outcome(const Splitter& splitter, const Field& field, bool isInTheMiddle) {
    switch (splitter.effect) {
        case Effect::Splits:
            if (isInTheMiddle) return NotOnlyText(field);
            [[fallthrough]];
        case Effect::None:
            return Accepted(Long().spec);
        case Effect::IsNoText:
            return NotOnlyText(field);
        case Effect::IsMoreText:
            return field.isRepeated ? OtherDelegate() : RefusedAsTampered();
        case Effect::IsNotParsed:
            break;
    }
    return NotParsed(splitter.reason);
}

class SplitText : public testing::TestWithParam<std::size_t> {
  protected:
    const Field field_ = Fields().at(GetParam());
};

TEST_P(SplitText, IsReadWholeOrRefused) {
    std::vector<Attack> attacks;
    const auto add = [&](const Splitter& splitter, const char* place, const std::string& text,
                         bool isInTheMiddle) {
        attacks.push_back({std::string(splitter.name) + place,
                           WithDtd(kDeclarations, Around(field_, text)),
                           Outcome(splitter, field_, isInTheMiddle)});
    };
    for (const Splitter& splitter : kSplitters) {
        // More characters in Base64 may be a fault of another kind.
        if (field_.isBase64 && splitter.effect == Effect::IsMoreText) continue;
        const std::string whole = field_.wanted + field_.rest;
        add(splitter, ".InFront", splitter.markup + whole, false);
        add(splitter, ".InTheMiddle", field_.wanted + splitter.markup + field_.rest, true);
        add(splitter, ".Behind", whole + splitter.markup, false);
    }
    ExpectOutcomes(attacks);
}

std::string CharacterReferences(const std::string& text) {
    std::string references;
    for (const char character : text)
        references += "&#" + std::to_string(static_cast<unsigned char>(character)) + ";";
    return references;
}

// The same characters by other means: to any canonicalizer of the standard these tokens are what
// was signed. A provider might have written them like this.
TEST_P(SplitText, OfTheSameCharactersIsReadWholeOrRefused) {
    const std::string& wanted = field_.wanted;
    const std::string& rest = field_.rest;
    const std::string section = "<![CDATA[" + rest + "]]>";
    const std::string same = Accepted(Long().spec);
    const auto with = [&](const std::string& name, const std::string& text,
                          const std::string& entity, const std::string& outcome) {
        return Attack{name, WithDtd("<!ENTITY rest '" + entity + "'>", Around(field_, text)),
                      outcome};
    };
    ExpectOutcomes({
        with("AllInACDataSection", "<![CDATA[" + wanted + rest + "]]>", "", NotOnlyText(field_)),
        with("RestInACDataSection", wanted + section, "", NotOnlyText(field_)),
        with("StartInACDataSection", "<![CDATA[" + wanted + "]]>" + rest, "", NotOnlyText(field_)),
        with("RestInAnEntity", wanted + "&rest;", rest, same),
        with("StartInAnEntity", "&rest;" + rest, wanted, same),
        with("RestInACDataSectionOfAnEntity", wanted + "&rest;", section, NotOnlyText(field_)),
        with("RestBehindACommentInAnEntity", wanted + "&rest;", "<!-- -->" + rest,
             NotOnlyText(field_)),
        with("RestBeforeACommentInAnEntity", wanted + "&rest;", rest + "<!-- -->", same),
        with("CharacterReferences", CharacterReferences(wanted + rest), "", same),
        with("RestAsCharacterReferences", wanted + CharacterReferences(rest), "", same),
        with("CharacterReferencesInAnEntity", wanted + "&rest;", CharacterReferences(rest), same),
        {"EntityOfAnExternalSubset",
         "<!DOCTYPE saml:Assertion SYSTEM 'http://idp.example/dtd'>" +
             Around(field_, wanted + "&nobody;" + rest),
         same},
    });
}

INSTANTIATE_TEST_SUITE_P(SplitTexts, SplitText, testing::Range(std::size_t{0}, std::size_t{14}),
                         [](const auto& row) { return std::string(Fields().at(row.param).name); });

// A blank that was signed is part of the text, also when it stands alone between markup.
TEST(SplitText, BesideABlankIsRefused) {
    Forge::TokenSpec spec = LongTexts();
    spec.subject.value = " admin@corp ";
    const std::string token = Provider::Signed(spec);
    const std::string refused = Attacks::NotOnlyText("NameID");
    const auto with = [&](const std::string& text, const std::string& outcome) {
        return Attack{"'" + text + "'", Replaced(token, "> admin@corp <", ">" + text + "<"),
                      outcome};
    };
    ExpectOutcomes({
        with(" admin@corp ", Accepted(spec)),
        with(" <!-- -->admin@corp ", refused),
        with(" admin@corp<!-- --> ", refused),
        with(" <!-- -->admin@corp<!-- --> ", refused),
        with("<!-- --> admin@corp <!-- -->", Accepted(spec)),
        with(" <![CDATA[]]>admin@corp ", refused),
        with(" admin@corp<![CDATA[ ]]> ", refused),
        with("&#32;admin@corp&#32;", Accepted(spec)),
        with(" &#32;admin@corp ", RefusedAsTampered()),
        with("admin@corp", RefusedAsTampered()),
        with("admin@corp<!-- -->", RefusedAsTampered()),
        with("\nadmin@corp ", RefusedAsTampered()),
    });
}

// Blanks mean nothing in Base64. Those of DigestValue are signed, the others are not.
TEST(SplitText, BesideABlankInASignatureSaysTheSame) {
    const std::string same = Accepted(Long().spec);
    std::vector<Attack> attacks;
    for (const Field& field : Fields()) {
        if (!field.isOfSignature) continue;
        const bool isSigned = field.name == std::string("DigestValue");
        const std::string outcome = isSigned ? RefusedAsTampered() : same;
        const std::string whole = field.wanted + field.rest;
        attacks.push_back({std::string(field.name) + ".BlankAndComment",
                           Around(field, " <!-- -->" + whole), outcome});
        attacks.push_back({std::string(field.name) + ".CommentAndLineFeed",
                           Around(field, whole + "<!-- -->\n"), outcome});
        attacks.push_back({std::string(field.name) + ".BlankAndCommentInTheMiddle",
                           Around(field, field.wanted + " <!-- -->" + field.rest),
                           NotOnlyText(field)});
    }
    ExpectOutcomes(attacks);
}

/// The outcome of what the provider itself signed with this in the place of the subject's name.
std::string OutcomeOfSigned(const std::string& name) {
    Forge::TokenSpec spec = Long().spec;
    spec.subject.value = name;
    const boost::intrusive_ptr<Xml::Document> document =
        Forge::Parse(WithDtd(kDeclarations, Forge::Write(spec)));
    Provider::SignInPlace(*document->GetRootElement(), {"#_genuine"});
    return OutcomeOf(*document->GetRootElement(), Provider::TrustInTheRoot());
}

TEST(SplitText, ThatTheProviderSignedIsReadWholeOrRefused) {
    const std::string refused = Attacks::NotOnlyText("NameID");
    const std::string whole = Accepted(Long().spec);
    const std::pair<const char*, std::string> names[] = {
        {"admin@corp<!-- -->.evil.example", refused},
        {"<!-- -->admin@corp.evil.example<!-- -->", whole},
        {"admin@corp<![CDATA[.evil.example]]>", refused},
        {"<![CDATA[admin@corp]]>.evil.example", refused},
        {"admin@corp.evil.example<![CDATA[]]>", refused},
        {"admin@corp&comment;.evil.example", refused},
        {"admin@corp&nothing;.evil.example", whole},
        {"admin@corp&external;.evil.example", whole},
        {"admin@corp<x/>.evil.example", refused},
    };
    for (const auto& [name, outcome] : names)
        EXPECT_EQ(OutcomeOfSigned(name), outcome) << name;
    std::cout << std::size(names) << " attacks\n";
    RecordProperty("attacks", static_cast<int>(std::size(names)));
}

struct Value {
    const char* name;
    std::string before;
    std::string value;
};
std::vector<Value> AttributeValues() {
    return {
        {"IdentifierOfTheAssertion", " ID=\"", "_genuine"},
        {"VersionOfTheAssertion", " Version=\"", "2.0"},
        {"FormatOfTheIssuer", " Format=\"", "urn:oasis:names:tc:SAML:2.0:nameid-format:entity"},
        {"MethodOfTheConfirmation", " Method=\"", "urn:oasis:names:tc:SAML:2.0:cm:holder-of-key"},
        {"StartOfTheConditions", " NotBefore=\"", Long().spec.notBefore},
        {"TypeOfACondition", " xsi:type=\"", "del:DelegationRestrictionType"},
        {"NameOfAnAttribute", " Name=\"", ProfileUri::IsSolution},
        {"SourceOfTheAdvice", " AdviceSource=\"", "urn:advisor"},
        {"InstantOfADelegation", " DelegationInstant=\"", Long().spec.delegates[0].instant},
        {"UriOfTheReference", " URI=\"", "#_genuine"},
        {"SignatureMethod", " Algorithm=\"", "http://www.w3.org/2001/04/xmldsig-more#rsa-sha256"},
        {"NamespaceOfTheSignature", " xmlns:ds=\"", "http://www.w3.org/2000/09/xmldsig#"},
    };
}

TEST(SplitAttributeValue, IsReadWholeOrRefused) {
    const std::string same = Accepted(Long().spec);
    std::vector<Attack> attacks;
    for (const Value& row : AttributeValues()) {
        const std::string half = row.value.substr(0, row.value.size() / 2);
        const std::string rest = row.value.substr(half.size());
        const std::string declarations = kDeclarations + ("<!ENTITY rest '" + rest + "'>");
        const auto add = [&](const char* name, const std::string& value,
                             const std::string& outcome) {
            const std::string token =
                Replaced(Long().token, row.before + row.value + "\"", row.before + value + "\"");
            attacks.push_back(
                {std::string(row.name) + "." + name, WithDtd(declarations, token), outcome});
        };
        add("EmptyEntity", half + "&nothing;" + rest, same);
        add("RestInAnEntity", half + "&rest;", same);
        add("CharacterReferences", CharacterReferences(row.value), same);
        add("CommentInAnEntity", half + "&comment;" + rest, NotWellFormed());
        add("Comment", half + "<!-- -->" + rest, NotWellFormed());
        add("ExternalEntity", half + "&external;" + rest,
            NotParsed("reference to external entity in attribute"));
        add("UndeclaredEntity", half + "&nobody;" + rest, NotParsed("undefined entity"));
    }
    ExpectOutcomes(attacks);
}

}  // namespace
}  // namespace Saml::Attacks
