// The eight shapes of signature wrapping of "On Breaking SAML" (USENIX Security 2012), for tokens
// whose root is the assertion itself. "Original" is what was signed, without its signature.
#include "hostile/attacks/provider.h"
#include "hostile/attacks/refusals.h"
#include "hostile/attacks/stolen_signature.h"

#include <gtest/gtest.h>

#include <iostream>
#include <utility>

namespace Saml::Attacks {
namespace {

using Forge::Replaced;
using Forge::TokenSpec;

/// The signature with `content` as its last child.
std::string Enclosing(const Genuine& genuine, const std::string& content) {
    return Replaced(genuine.signature, "</ds:Signature>", content + "</ds:Signature>");
}
std::string Object(const std::string& content) {
    return "<ds:Object>" + content + "</ds:Object>";
}
/// The evil assertion with the genuine signature and `content` at the end.
std::string EndingWith(const std::string& content, const TokenSpec& evil, const Genuine& genuine) {
    return Replaced(WithSignature(evil, genuine), "</saml:AttributeStatement></saml:Assertion>",
                    "</saml:AttributeStatement>" + content + "</saml:Assertion>");
}
std::string Around(const std::string& signature, TokenSpec evil) {
    evil.signature = signature;
    return Forge::Write(evil);
}

const std::string kUnexpectedInSignature =
    RefusedSignatureSyntax("Unexpected child nodes under 'Signature'");
const std::string kNoSignatureThere =
    RefusedSignatureSyntax("Expected element 'Signature' not found.");

const Shape kShapes[] = {
    // 1: the original is a child of the signature.
    {"Xsw1",
     [](const Shape&, const TokenSpec& evil, const Genuine& genuine) {
         return Around(Enclosing(genuine, genuine.original), evil);
     },
     Met::BeforeCoverage, kUnexpectedInSignature},
    // 2: the signature is detached, the original in front of it.
    {"Xsw2",
     [](const Shape&, const TokenSpec& evil, const Genuine& genuine) {
         return Around(genuine.original + genuine.signature, evil);
     },
     Met::BeforeCoverage, kNoSignatureThere, true},
    // 3: the evil assertion comes first in the document that holds the genuine one.
    {"Xsw3",
     [](const Shape&, const TokenSpec& evil, const Genuine& genuine) {
         return Replaced(genuine.token, "<saml:Issuer ", Forge::Write(evil) + "<saml:Issuer ");
     },
     Met::BeforeCoverage, NotFound("Issuer"), false, false},
    // 4: the genuine token, with its signature, is a child of the evil assertion.
    {"Xsw4.InThePlaceOfTheSignature",
     [](const Shape&, const TokenSpec& evil, const Genuine& genuine) {
         return Around(genuine.token, evil);
     },
     Met::BeforeCoverage, kNoSignatureThere, true},
    {"Xsw4.AtTheEnd",
     [](const Shape&, const TokenSpec& evil, const Genuine& genuine) {
         return Replaced(Forge::Write(evil), "</saml:AttributeStatement></saml:Assertion>",
                         "</saml:AttributeStatement>" + genuine.token + "</saml:Assertion>");
     },
     Met::BeforeCoverage, kNoSignatureThere, true},
    // 5: the signature moves to the evil assertion, the original stands at the end.
    {"Xsw5",
     [](const Shape&, const TokenSpec& evil, const Genuine& genuine) {
         return EndingWith(genuine.original, evil, genuine);
     },
     Met::BehindCoverage, Refused<ParseException>("Unexpected elements under Assertion"), true},
    // 6: the same with the original in an Object of the signature.
    {"Xsw6",
     [](const Shape&, const TokenSpec& evil, const Genuine& genuine) {
         return Around(Enclosing(genuine, Object(genuine.original)), evil);
     },
     Met::BeforeCoverage, kUnexpectedInSignature},
    // 7: the evil assertion is in an element of the genuine token that takes anything: in the
    // advice, which is what an assertion has in place of a response's Extensions.
    {"Xsw7",
     [](const Shape&, const TokenSpec& evil, const Genuine& genuine) {
         return Replaced(genuine.token, "<saml:Advice>", "<saml:Advice>" + Forge::Write(evil));
     },
     Met::BehindCoverage, NotFound("RSAAdvice"), false, false},
    // 8: the evil assertion is in an Object of the genuine token's signature.
    {"Xsw8",
     [](const Shape&, const TokenSpec& evil, const Genuine& genuine) {
         return Replaced(genuine.token, "</ds:Signature>",
                         Object(Forge::Write(evil)) + "</ds:Signature>");
     },
     Met::BeforeCoverage, kUnexpectedInSignature, false, false},
    // Not of the paper: the signature alone is stolen.
    {"WithoutTheOriginal",
     [](const Shape&, const TokenSpec& evil, const Genuine& genuine) {
         return WithSignature(evil, genuine);
     },
     Met::ByNobody},
};

TEST(SignatureWrapping, AroundAnAssertionIsRefused) {
    std::vector<Attack> attacks;
    for (const Shape& shape : kShapes)
        for (Attack& attack : InEveryGuise(shape))
            attacks.push_back(std::move(attack));
    ExpectOutcomes(attacks);
}

/// A response that holds these assertions.
std::string Response(const std::string& content) {
    return "<samlp:Response xmlns:samlp=\"urn:oasis:names:tc:SAML:2.0:protocol\" ID=\"_response\" "
           "Version=\"2.0\">" +
           content + "</samlp:Response>";
}

std::vector<Xml::ElementNode*> AssertionsIn(Xml::Node& top) {
    std::vector<Xml::ElementNode*> assertions;
    for (Xml::Node* child = top.GetFirstChild(); child != nullptr;
         child = child->GetNextSibling()) {
        auto* const element = dynamic_cast<Xml::ElementNode*>(child);
        if (element != nullptr && element->GetLocalName() == "Assertion")
            assertions.push_back(element);
        const std::vector<Xml::ElementNode*> inner = AssertionsIn(*child);
        assertions.insert(assertions.end(), inner.begin(), inner.end());
    }
    return assertions;
}

struct WrappedResponse {
    std::string name;
    std::string text;
    /// Of the assertions in document order, each handed over as an element.
    std::vector<std::string> outcomes;
};

std::vector<WrappedResponse> WrappedResponses(const std::string& evilId) {
    const Genuine& genuine = SignedByIdentifier();
    const TokenSpec evil = AdministratorSpec(evilId);
    const std::string plain = Forge::Write(evil);
    const bool isSame = evilId == "_genuine";
    const std::string accepted = Accepted(genuine.spec);
    const std::string withStolen = isSame ? RefusedAsTampered() : RefusedAsUncovered();
    const std::string inside =
        Replaced(genuine.signature, "</ds:X509Data>",
                 "<ds:X509SubjectName>" + genuine.original + "</ds:X509SubjectName></ds:X509Data>");
    return {
        {"Xsw1.EvilResponseAroundTheGenuine",
         Response(plain + Enclosing(genuine, Object(Response(genuine.token)))),
         {kNoSignatureThere, accepted}},
        {"Xsw2.GenuineResponseBeforeTheSignature",
         Response(plain + Response(genuine.token) + genuine.signature),
         {kNoSignatureThere, accepted}},
        {"Xsw3.EvilBeforeTheGenuine",
         Response(plain + genuine.token),
         {kNoSignatureThere, accepted}},
        {"Xsw3.EvilBehindTheGenuine",
         Response(genuine.token + plain),
         {accepted, kNoSignatureThere}},
        {"Xsw4.GenuineInsideTheEvil",
         Response(Around(genuine.token, evil)),
         {kNoSignatureThere, accepted}},
        {"Xsw5.SignatureInTheEvil",
         Response(WithSignature(evil, genuine) + genuine.original),
         {withStolen, kNoSignatureThere}},
        {"Xsw6.OriginalInAnObjectOfTheStolenSignature",
         Response(Around(Enclosing(genuine, Object(genuine.original)), evil)),
         {kUnexpectedInSignature, kNoSignatureThere}},
        {"Xsw6.OriginalInTheCertificatesOfTheStolenSignature",
         Response(Around(inside, evil)),
         {isSame ? RefusedAsDuplicate() : RefusedAsUncovered(), kNoSignatureThere}},
        {"Xsw7.EvilInExtensions",
         Response("<samlp:Extensions>" + plain + "</samlp:Extensions>" + genuine.token),
         {kNoSignatureThere, accepted}},
        {"Xsw8.EvilInAnObjectOfTheGenuineSignature",
         Response(Replaced(genuine.token, "</ds:Signature>", Object(plain) + "</ds:Signature>")),
         {kUnexpectedInSignature, kNoSignatureThere}},
        {"SignatureOfTheResponse",
         Response(genuine.signature + plain + genuine.original),
         {kNoSignatureThere, kNoSignatureThere}},
    };
}

// By text there is no way in at all: the root must be the assertion. Who takes a response apart and
// hands over an element gets an account of this very element, or a refusal.
class WrappingInAResponse : public testing::TestWithParam<const char*> {};

TEST_P(WrappingInAResponse, GivesWhatWasSignedOrNothing) {
    std::size_t count = 0;
    for (const WrappedResponse& response : WrappedResponses(GetParam())) {
        SCOPED_TRACE(response.name);
        EXPECT_EQ(OutcomeOf(response.text, Provider::TrustInTheRoot()), NotFound("Assertion"));
        const boost::intrusive_ptr<Xml::Document> document = Forge::Parse(response.text);
        const std::vector<Xml::ElementNode*> assertions = AssertionsIn(*document);
        ASSERT_EQ(assertions.size(), response.outcomes.size());
        for (std::size_t i = 0; i != assertions.size(); ++i)
            EXPECT_EQ(OutcomeOf(*assertions[i], Provider::TrustInTheRoot()), response.outcomes[i])
                << "assertion " << i;
        count += 1 + assertions.size();
    }
    std::cout << count << " attacks\n";
    RecordProperty("attacks", static_cast<int>(count));
}

INSTANTIATE_TEST_SUITE_P(SignatureWrapping, WrappingInAResponse,
                         testing::Values("_genuine", "_evil"),
                         [](const auto& row) { return std::string(row.param).substr(1); });

// The element that is handed over is the root in which identifiers are sought: what is signed above
// it or beside it signs nothing in it.
TEST(SignatureWrapping, AroundAnElementThatIsHandedOverIsRefused) {
    const Genuine& genuine = SignedByIdentifier();
    const boost::intrusive_ptr<Xml::Document> document = Forge::Parse(genuine.token);
    Xml::ElementNode* const token = document->GetRootElement();

    const boost::intrusive_ptr<Xml::Document> evil =
        Forge::Parse(Forge::Write(AdministratorSpec("_evil")));
    Xml::ElementNode* const wrapper = evil->GetRootElement();
    wrapper->AppendChild(token);
    EXPECT_EQ(OutcomeOf(*wrapper, Provider::TrustInTheRoot()), kNoSignatureThere);
    EXPECT_EQ(OutcomeOf(*token, Provider::TrustInTheRoot()), Accepted(genuine.spec));

    // The signature moves out to the wrapper; its references stay behind.
    wrapper->InsertAfter(token->GetFirstChildElement("Signature"),
                         wrapper->GetFirstChildElement("Issuer"));
    EXPECT_EQ(OutcomeOf(*wrapper, Provider::TrustInTheRoot()), RefusedAsUncovered());
    EXPECT_EQ(OutcomeOf(*token, Provider::TrustInTheRoot()), kNoSignatureThere);
}

/// A response whose start tag declares the prefixes of the assertion in it, but for that of SAML.
std::string Declaring(const std::string& delegation, const std::string& extension,
                      const std::string& assertion) {
    return Replaced(Response(assertion), " ID=\"_response\"",
                    " xmlns:del=\"" + delegation + "\" xmlns:ext=\"" + extension + "\"");
}

// Exclusive canonicalization does not see a prefix that only the value of xsi:type uses: who
// declares it outside of the assertion can rebind it. No other type is found under its name.
TEST(SignatureWrapping, ByOtherNamespacesAroundAnAssertionIsRefused) {
    const std::string delegation = "urn:oasis:names:tc:SAML:2.0:conditions:delegation";
    const std::string extension = ProfileUri::ExtensionNamespace;
    const std::string declarations =
        " xmlns:del=\"" + delegation + "\" xmlns:ext=\"" + extension + "\"";
    TokenSpec delegated = Provider::CustomerSpec();
    delegated.advice.clear();
    delegated.renewRestriction = false;
    TokenSpec renewable = delegated;
    renewable.delegates.clear();
    renewable.delegateId.reset();
    renewable.renewRestriction = true;
    const std::string unknown = Refused<ParseException>(
        "Unknown or duplicate restriction node under Conditions: Condition");

    const auto outcome = [&](const TokenSpec& spec, const std::string& otherDelegation,
                             const std::string& otherExtension) {
        const std::string bare = Replaced(Forge::Write(spec), declarations, "");
        const boost::intrusive_ptr<Xml::Document> genuine =
            Forge::Parse(Declaring(delegation, extension, bare));
        Xml::ElementNode& assertion = *AssertionsIn(*genuine).front();
        Provider::SignInPlace(assertion, {"#_genuine"});
        const boost::intrusive_ptr<Xml::Document> evil =
            Forge::Parse(Declaring(otherDelegation, otherExtension, ""));
        evil->GetRootElement()->AppendChild(&assertion);
        return OutcomeOf(assertion, Provider::TrustInTheRoot());
    };
    EXPECT_EQ(outcome(delegated, delegation, extension), Accepted(delegated));
    EXPECT_EQ(outcome(delegated, extension, delegation), unknown);
    EXPECT_EQ(outcome(delegated, "urn:other", extension), unknown);
    EXPECT_EQ(outcome(delegated, delegation, "urn:other"), Accepted(delegated));
    EXPECT_EQ(outcome(renewable, delegation, extension), Accepted(renewable));
    EXPECT_EQ(outcome(renewable, extension, delegation), unknown);
    EXPECT_EQ(outcome(renewable, delegation, "urn:other"), unknown);
    EXPECT_EQ(outcome(renewable, "urn:other", extension), Accepted(renewable));
    RecordProperty("attacks", 8);
}

}  // namespace
}  // namespace Saml::Attacks
