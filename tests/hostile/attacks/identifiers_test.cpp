// Identifiers that occur twice, or that only look like the one that was signed.
#include "hostile/attacks/provider.h"
#include "hostile/attacks/refusals.h"
#include "hostile/attacks/stolen_signature.h"

#include <gtest/gtest.h>

namespace Saml::Attacks {
namespace {

using Forge::Replaced;

const std::string& GenuineToken() {
    return SignedByIdentifier().token;
}

struct Spelling {
    const char* name;
    const char* attribute;
};
// Whatever somebody might take for an identifier; a declaration of the prefix "ID" as well.
constexpr Spelling kSpellings[] = {
    {"ID", "ID='_genuine'"},
    {"Id", "Id='_genuine'"},
    {"id", "id='_genuine'"},
    {"WithPrefix", "saml:ID='_genuine'"},
    {"IdWithPrefix", "xsi:Id='_genuine'"},
    {"WithAnUndeclaredPrefix", "nobody:id='_genuine'"},
    {"XmlId", "xml:id='_genuine'"},
    {"Declaration", "xmlns:ID='_genuine'"},
    {"DeclarationOfId", "xmlns:Id='_genuine'"},
    {"DeclarationInSmallLetters", "xmlns:id='_genuine'"},
    {"ByCharacterReference", "ID='&#x5f;genuine'"},
    {"ByEntity", "ID='&identifier;'"},
};

// In each of these places no reader examines attributes.
TEST(ASecondBearerOfTheIdentifier, IsRefusedInEverySpelling) {
    std::vector<Attack> attacks;
    const auto add = [&attacks](const std::string& name, const std::string& token) {
        attacks.push_back(
            {name, WithDtd("<!ENTITY identifier '_genuine'>", token), RefusedAsDuplicate()});
    };
    for (const Spelling& spelling : kSpellings) {
        const std::string with = std::string(" ") + spelling.attribute + ">";
        const std::string name = spelling.name;
        add("AudienceRestriction." + name, Replaced(GenuineToken(), "<saml:AudienceRestriction>",
                                                    "<saml:AudienceRestriction" + with));
        add("Audience." + name,
            Replaced(GenuineToken(), "<saml:Audience>", "<saml:Audience" + with));
        add("AttributeValue." + name, Replaced(GenuineToken(), "<saml:AttributeValue>Mallory",
                                               "<saml:AttributeValue" + with + "Mallory"));
        add("X509SubjectName." + name,
            Replaced(GenuineToken(), "</ds:X509Data>",
                     "<ds:X509SubjectName" + with + "</ds:X509SubjectName></ds:X509Data>"));
    }
    ExpectOutcomes(attacks);
}

constexpr char kSignature[] = "ds:Signature xmlns:ds=\"http://www.w3.org/2000/09/xmldsig#\"";

/// The genuine token with an attribute added in this start tag.
Attack Added(const std::string& startTag, const std::string& attribute,
             const std::string& outcome) {
    return {startTag.substr(0, startTag.find(' ')) + "." + attribute,
            Replaced(GenuineToken(), "<" + startTag, "<" + startTag + " " + attribute), outcome};
}

TEST(ASecondIdentifier, OnAnExaminedElementIsUnexpectedOrADuplicate) {
    const std::string same = Accepted(SignedByIdentifier().spec);
    ExpectOutcomes({
        Added("saml:Assertion", "Id='_genuine'", UnexpectedAttributes("Assertion")),
        Added("saml:Assertion", "id='_evil'", UnexpectedAttributes("Assertion")),
        Added("saml:Assertion", "xml:id='_evil'", UnexpectedAttributes("Assertion")),
        Added("saml:Assertion", "saml:ID='_evil'", UnexpectedAttributes("Assertion")),
        Added("saml:Assertion", "ID='_evil'", NotParsed("duplicate attribute")),
        // A declaration on the assertion itself makes no second bearer of it.
        Added("saml:Assertion", "xmlns:ID='_genuine'", same),
        Added("saml:Assertion", "xmlns:ID='_evil'", same),
        Added("saml:Issuer", "ID='_genuine'", UnexpectedAttributes("Issuer")),
        Added("saml:Issuer", "xmlns:ID='_genuine'", RefusedAsDuplicate()),
        Added("saml:Conditions", "Id='_genuine'", UnexpectedAttributes("Conditions")),
        Added("saml:Conditions", "xmlns:Id='_genuine'", RefusedAsDuplicate()),
        Added("saml:Conditions", "xmlns:Id='_evil'", same),
        Added(kSignature, "Id='_genuine'", RefusedAsDuplicate()),
        Added(kSignature, "Id='_evil'", same),
        Added(kSignature, "ID='_genuine'",
              RefusedSignatureSyntax("Unexpected attributes on element 'Signature'")),
        Added("ds:Reference", "Id='_genuine'", RefusedAsDuplicate()),
        Added("ds:Reference", "Id='_evil'", RefusedAsTampered()),
    });
}

TEST(AnIdentifierByDefault, IsNoWayAround) {
    const Genuine& genuine = SignedByIdentifier();
    const std::string same = Accepted(genuine.spec);
    const std::string bare = Replaced(GenuineToken(), " ID=\"_genuine\"", "");
    const auto added = [](const std::string& attributes, const std::string& outcome) {
        return Attack{attributes, WithDtd("<!ATTLIST " + attributes + ">", GenuineToken()),
                      outcome};
    };
    ExpectOutcomes({
        added("saml:Assertion ID CDATA '_evil'", same),
        added("saml:Assertion ID CDATA #FIXED '_evil'", same),
        added("saml:Assertion ID ID #IMPLIED", same),
        added("saml:Assertion Id CDATA '_genuine'", UnexpectedAttributes("Assertion")),
        added("saml:Assertion xmlns:ID CDATA '_genuine'", same),
        added("saml:Subject ID CDATA '_genuine'", UnexpectedAttributes("Subject")),
        added("saml:Subject xmlns:ID CDATA '_genuine'", RefusedAsDuplicate()),
        added("saml:AudienceRestriction ID CDATA '_genuine'", RefusedAsDuplicate()),
        added("saml:AudienceRestriction ID CDATA '_other'", RefusedAsTampered()),
        added("saml:AttributeValue id CDATA '_genuine'", RefusedAsDuplicate()),
        added("ds:Signature Id CDATA '_genuine'", RefusedAsDuplicate()),
        added("ds:Signature Id CDATA '_other'", same),
        added("ds:Reference Id CDATA '_other'", RefusedAsTampered()),
        added("ds:Reference URI CDATA ''", same),
        {"OnlyByDefault", WithDtd("<!ATTLIST saml:Assertion ID CDATA '_genuine'>", bare), same},
        {"OnlyByAnotherDefault", WithDtd("<!ATTLIST saml:Assertion ID CDATA '_evil'>", bare),
         RefusedAsUncovered()},
        {"DeclaredAndNotThere", WithDtd("<!ATTLIST saml:Assertion ID ID #REQUIRED>", bare),
         Refused<ParseException>("Node 'Assertion is missing required attribute 'ID'")},
        {"UriByDefault",
         WithDtd("<!ATTLIST ds:Reference URI CDATA '#_genuine'>",
                 Replaced(GenuineToken(), " URI=\"#_genuine\"", "")),
         same},
        {"AnotherUriByDefault",
         WithDtd("<!ATTLIST ds:Reference URI CDATA ''>",
                 Replaced(GenuineToken(), " URI=\"#_genuine\"", "")),
         RefusedAsTampered()},
    });
}

/// An evil token with this identifier, as written, around the original, so that the signature
/// itself holds: it would be accepted by whoever took the two identifiers for one.
Attack LookAlike(const std::string& name, const std::string& id, const std::string& outcome) {
    const Genuine& genuine = SignedByIdentifier();
    return {name,
            Replaced(WithSignature(AdministratorSpec(id), genuine), "<ds:X509Data>",
                     "<ds:X509Data>" + genuine.original),
            outcome};
}

TEST(ALookAlikeIdentifier, IsAnother) {
    std::vector<Attack> attacks;
    const std::vector<std::pair<std::string, std::string>> lookAlikes = {
        {"OtherCase", "_Genuine"},
        {"Capitals", "_GENUINE"},
        {"BlankInFront", " _genuine"},
        {"BlankBehind", "_genuine "},
        {"TabBehind", "_genuine&#9;"},
        {"LineFeedBehind", "_genuine&#10;"},
        {"CarriageReturnBehind", "_genuine&#13;"},
        {"LineFeedAsWritten", "_genuine\n"},
        {"PercentEncoded", "%5Fgenuine"},
        {"PercentEncodedNul", "_genuine%00"},
        {"SymbolForNul", "_genuine&#x2400;"},
        {"ZeroWidthSpace", "_genuine&#x200b;"},
        {"ByteOrderMark", "&#xfeff;_genuine"},
        {"SoftHyphen", "_gen&#xad;uine"},
        {"RightToLeft", "&#x202e;eniuneg_"},
        {"CyrillicLetter", "_genuin&#x435;"},
        {"FullWidthLowLine", "&#xff3f;genuine"},
        {"CombiningMark", "_genuine&#x301;"},
        {"NonCharacterOfAnotherPlane", "_genuine&#x1fffe;"},
        {"Shorter", "_genuin"},
        {"Longer", "_genuine_"},
        {"WithItsMark", "#_genuine"},
        {"XPointer", "xpointer(id('_genuine'))"},
        {"Empty", ""},
    };
    for (const auto& [name, id] : lookAlikes)
        attacks.push_back(LookAlike(name, id, RefusedAsUncovered()));
    attacks.push_back(LookAlike("TheSame", "_genuine", RefusedAsDuplicate()));
    ExpectOutcomes(attacks);
    EXPECT_TRUE(SignatureHoldsByItself(attacks.front().token));
}

TEST(ALookAlikeIdentifier, OfCharactersThatXmlDoesNotHaveIsNotParsed) {
    const std::string badByte = NotWellFormed();
    const std::string badNumber = NotParsed("reference to invalid character number");
    ExpectOutcomes({
        LookAlike("Nul", std::string("_genuine\0", 9), badByte),
        LookAlike("NulAndMore", std::string("_genuine\0x", 10), badByte),
        LookAlike("OverlongNul", "_genuine\xc0\x80", badByte),
        LookAlike("ControlCharacter", "_genuine\x01", badByte),
        LookAlike("SurrogateAsBytes", "_genuine\xed\xa0\x80", badByte),
        LookAlike("NonCharacterAsBytes", "_genuine\xef\xbf\xbf", badByte),
        LookAlike("NulByNumber", "_genuine&#0;", badNumber),
        LookAlike("ControlCharacterByNumber", "_genuine&#1;", badNumber),
        LookAlike("SurrogateByNumber", "_genuine&#xd800;", badNumber),
        LookAlike("NonCharacterByNumber", "_genuine&#xffff;", badNumber),
        LookAlike("BeyondUnicode", "_genuine&#x110000;", badNumber),
    });
}

// Letters with marks have two spellings in Unicode; XML knows of no equivalence.
TEST(ALookAlikeIdentifier, IsAnotherWhenComposedOtherwise) {
    for (const auto& [composed, decomposed] :
         {std::pair("_caf\xc3\xa9", "_cafe\xcc\x81"), std::pair("_cafe\xcc\x81", "_caf\xc3\xa9")}) {
        Forge::TokenSpec spec = Provider::CustomerSpec();
        spec.id = composed;
        const std::string token = Provider::Signed(spec);
        const std::string id = std::string("ID=\"") + composed;
        const std::string uri = std::string("URI=\"#") + composed;
        const std::string otherId = std::string("ID=\"") + decomposed;
        const std::string otherUri = std::string("URI=\"#") + decomposed;
        ExpectOutcomes({
            {"Untouched", token, Accepted(spec)},
            {"OtherIdentifier", Replaced(token, id, otherId), RefusedAsUncovered()},
            {"OtherReference", Replaced(token, uri, otherUri), RefusedAsUncovered()},
            {"BothOther", Replaced(Replaced(token, id, otherId), uri, otherUri),
             RefusedAsTampered()},
        });
    }
}

/// The genuine token with its own identifier written otherwise.
Attack Written(const std::string& name, const std::string& value, const std::string& declarations,
               const std::string& outcome) {
    const std::string token = Replaced(GenuineToken(), "ID=\"_genuine\"", "ID=\"" + value + "\"");
    return {name, declarations.empty() ? token : WithDtd(declarations, token), outcome};
}

// The value is what the parser makes of it, for the reader and for the digest.
TEST(TheTokensOwnIdentifier, CountsAsTheParserReadsIt) {
    const std::string same = Accepted(SignedByIdentifier().spec);
    const std::string external = "<!ENTITY e SYSTEM 'file:///etc/hostname'>";
    ExpectOutcomes({
        Written("CharacterReferences", "&#95;gen&#x75;ine", "", same),
        Written("EmptyEntity", "_gen&e;uine", "<!ENTITY e ''>", same),
        Written("Entity", "&e;", "<!ENTITY e '_genuine'>", same),
        Written("NestedEntities", "&e;", "<!ENTITY e '&f;'><!ENTITY f '_genuine'>", same),
        Written("FirstDeclarationCounts", "&e;", "<!ENTITY e '_genuine'><!ENTITY e '_evil'>", same),
        Written("AnotherByEntity", "&e;", "<!ENTITY e '_evil'>", RefusedAsUncovered()),
        Written("ExternalEntity", "_genuine&e;", external,
                NotParsed("reference to external entity in attribute")),
        Written("UndeclaredEntity", "_genuine&e;", "", NotParsed("undefined entity")),
        Written("MarkupByEntity", "&e;", "<!ENTITY e '&#60;x/>'>", NotWellFormed()),
        Written("RecursiveEntity", "&e;", "<!ENTITY e '&e;'>",
                NotParsed("recursive entity reference")),
        Written("BlanksAround", " _genuine ", "", RefusedAsUncovered()),
        Written("BlanksAroundAName", " _genuine ", "<!ATTLIST saml:Assertion ID ID #IMPLIED>",
                same),
        Written("BlanksAroundTokens", "\t_genuine\n",
                "<!ATTLIST saml:Assertion ID NMTOKENS #IMPLIED>", same),
        Written("BlanksInAName", "_gen uine", "<!ATTLIST saml:Assertion ID ID #IMPLIED>",
                RefusedAsUncovered()),
        Written("ReferredTabsAroundAName", "&#9;_genuine",
                "<!ATTLIST saml:Assertion ID ID #IMPLIED>", RefusedAsUncovered()),
    });
}

// "#" alone names an element whose identifier is empty; no token may have that.
TEST(AnEmptyIdentifier, IsNoName) {
    const std::string invalid = Refused<ParseException>("Invalid token ID");
    Forge::TokenSpec empty = Provider::CustomerSpec();
    empty.id = "";
    Forge::TokenSpec mark = empty;
    mark.id = "#";
    const std::string evil = WithSignature(AdministratorSpec(""), SignedByIdentifier());
    ExpectOutcomes({
        {"SignedByTheProvider", Provider::Signed(empty), invalid},
        {"MarkSignedByTheProvider", Provider::Signed(mark), invalid},
        {"Evil", Replaced(evil, "URI=\"#_genuine\"", "URI=\"#\""), invalid},
        {"EvilForTheRoot", WithSignature(AdministratorSpec(""), SignedAsRoot()), invalid},
    });
}

// Identifiers that no reference names are nobody's business.
TEST(OtherIdentifiers, MayOccurTwice) {
    const std::string names =
        "<ds:X509SubjectName ID='_x'/><ds:X509SubjectName ID='_x'/></ds:X509Data>";
    ExpectOutcomes({{"TwiceInTheCertificates", Replaced(GenuineToken(), "</ds:X509Data>", names),
                     Accepted(SignedByIdentifier().spec)}});
}

}  // namespace
}  // namespace Saml::Attacks
