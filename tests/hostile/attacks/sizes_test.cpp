// Tokens of hostile size and shape as a whole, on a small stack: nothing recurses, nothing is
// quadratic. Many of them are genuine, since a forgery is refused before all of it has been read.
#include "hostile/attacks/hand_made_signature.h"
#include "hostile/attacks/refusals.h"
#include "support/big_documents.h"
#include "support/small_stack.h"

#include <gtest/gtest.h>

#include <set>

namespace Saml::Attacks {
namespace {

using namespace BigDocuments;
using Xml::Security::Algorithm::ExclusiveC14N;

constexpr std::size_t kLevels = 1000000;
constexpr std::size_t kSiblings = 2000000;
constexpr std::size_t kAttributes = 100000;
constexpr std::size_t kNamespaces = 10000;
constexpr std::size_t kTextSize = 100000000;

constexpr char kSaysNothing[] = "urn:nobody-reads-this";

/// One outcome. The texts are too long to be shown.
void ExpectOutcome(const std::string& token, const std::string& expected,
                   const Resolver& trust = Provider::TrustInTheRoot()) {
    const std::string outcome = OutcomeByText(token, trust);
    EXPECT_TRUE(outcome == expected) << outcome.substr(0, 2000);
    std::cout << token.size() << " bytes\n";
}

/// With this between the certificates, where neither a signature nor a reader looks.
std::string WithUnsigned(const std::string& content, const Forge::TokenSpec& spec) {
    HandMadeSignature signature;
    signature.keyInfo = KeyInfo(X509Data(X509Certificates({"leaf", "intermediate"}) + content));
    return TokenWith(signature, spec);
}

/// With this as an unknown parameter of a transform, which is signed and not read.
std::string WithSigned(const std::string& content, const Forge::TokenSpec& spec) {
    HandMadeSignature signature;
    signature.transforms = Transforms(EnvelopedTransform() + Transform(ExclusiveC14N, content));
    return TokenWith(signature, spec);
}

/// With this as the value of an attribute.
Forge::TokenSpec WithValues(const std::vector<std::string>& values) {
    Forge::TokenSpec spec = Provider::CustomerSpec();
    spec.attributes.push_back({kSaysNothing, values});
    return spec;
}

TEST(DeepTokens, AreAcceptedWhereNobodyLooks) {
    OnSmallStack([] {
        const Forge::TokenSpec customer = Provider::CustomerSpec();
        ExpectOutcome(WithUnsigned(NestedElements(kLevels), customer), Accepted(customer));
    });
}

TEST(DeepTokens, AreAcceptedWhereAllOfItIsSigned) {
    OnSmallStack([] {
        const Forge::TokenSpec customer = Provider::CustomerSpec();
        ExpectOutcome(WithSigned(NestedElements(kLevels), customer), Accepted(customer));
    });
}

TEST(DeepTokens, AreRefusedWhereATextIsExpected) {
    OnSmallStack([] {
        Forge::TokenSpec spec = WithValues({NestedElements(kLevels)});
        ExpectOutcome(TokenWith({}, spec),
                      Refused<ParseException>("Element 'AttributeValue' must only have textual "
                                              "content (but has extra children or is empty)."));
        spec = Provider::CustomerSpec();
        spec.subject.value = NestedElements(kLevels);
        ExpectOutcome(TokenWith({}, spec),
                      Refused<ParseException>("Element 'NameID' must only have textual content "
                                              "(but has extra children or is empty)."));
    });
}

TEST(DeepTokens, AreRefusedWhenTheirSignatureIsFarDown) {
    OnSmallStack([] {
        const std::string genuine = TokenWith({}, Provider::CustomerSpec());
        ExpectOutcome(Repeated("<a>", kLevels) + genuine + Repeated("</a>", kLevels),
                      Refused<ParseException>("Expected element 'Assertion' not found."));
        // One in the other, each the customer's.
        const std::string begin = genuine.substr(0, genuine.find("<saml:Issuer"));
        ExpectOutcome(
            Repeated(begin, kLevels / 100) + genuine + Repeated("</saml:Assertion>", kLevels / 100),
            Refused<ParseException>("Expected element 'Issuer' not found."));
    });
}

TEST(WideTokens, AreAcceptedWhereNobodyLooks) {
    OnSmallStack([] {
        const Forge::TokenSpec customer = Provider::CustomerSpec();
        ExpectOutcome(WithUnsigned(Repeated("<a/>", kSiblings), customer), Accepted(customer));
    });
}

TEST(WideTokens, AreAcceptedWhereAllOfItIsSigned) {
    OnSmallStack([] {
        const Forge::TokenSpec customer = Provider::CustomerSpec();
        ExpectOutcome(WithSigned(Repeated("<a/>", kSiblings), customer), Accepted(customer));
    });
}

TEST(WideTokens, AreAcceptedWithAllTheirValues) {
    OnSmallStack([] {
        constexpr std::size_t kValues = 300000;
        Forge::TokenSpec customer = Provider::CustomerSpec();
        customer.attributes[0].values.clear();
        for (std::size_t i = 0; i != kValues; ++i) {
            customer.audience.push_back("urn:audience:" + Padded(i));
            customer.attributes[0].values.push_back("corp\\" + Padded(i));
        }
        ExpectOutcome(TokenWith({}, customer), Accepted(customer));
    });
}

TEST(WideTokens, AreRefusedForTheLastOfTheirElements) {
    OnSmallStack([] {
        Forge::TokenSpec spec = WithValues(std::vector<std::string>(kLevels / 2, "v"));
        spec.attributes.back().values.push_back("v<x/>");
        ExpectOutcome(TokenWith({}, spec),
                      Refused<ParseException>("Element 'AttributeValue' must only have textual "
                                              "content (but has extra children or is empty)."));
    });
}

/// The customer's assertion with these attributes on the element that may have any.
std::string WithAudienceAttributes(const Forge::TokenSpec& spec, const std::string& attributes) {
    return Forge::Replaced(Forge::Write(spec), "<saml:AudienceRestriction>",
                           "<saml:AudienceRestriction" + attributes + ">");
}

TEST(ManyAttributesOfTokens, AreSignedWhereTheyAreNotExamined) {
    OnSmallStack([] {
        const Forge::TokenSpec customer = Provider::CustomerSpec();
        const std::string token =
            TokenWith({}, WithAudienceAttributes(customer, AttributeList(kAttributes)));
        ExpectOutcome(token, Accepted(customer));
        ExpectOutcome(Forge::Replaced(token, " a00099999=\"v99999\"", ""), RefusedAsTampered());
    });
}

TEST(ManyAttributesOfTokens, AreRefusedWhereTheyAre) {
    OnSmallStack([] {
        const std::string genuine = TokenWith({}, Provider::CustomerSpec());
        const auto on = [&](const std::string& tag) {
            return Forge::Replaced(
                genuine, tag,
                tag.substr(0, tag.size() - 1) + AttributeList(kAttributes) + tag.back());
        };
        ExpectOutcome(on("<ds:X509Data>"),
                      RefusedSignatureSyntax("Unexpected attributes on element 'X509Data'"));
        ExpectOutcome(on("<saml:Subject>"),
                      Refused<ParseException>("Unexpected attributes on element 'Subject'"));
        ExpectOutcome(on("<saml:Assertion "),
                      Refused<ParseException>("Unexpected attributes on element 'Assertion'"));
    });
}

/// The assertion with these declarations on its root.
std::string Declaring(const std::string& declarations, const std::string& assertion) {
    return Forge::Replaced(assertion, "<saml:Assertion ", "<saml:Assertion" + declarations + " ");
}

TEST(ManyNamespacesOfTokens, ServeAsManyElements) {
    OnSmallStack([] {
        const Forge::TokenSpec customer = Provider::CustomerSpec();
        HandMadeSignature signature;
        signature.transforms = Transforms(EnvelopedTransform() +
                                          Transform(ExclusiveC14N, PrefixedElements(kNamespaces)));
        ExpectOutcome(
            TokenWith(signature, Declaring(DeclarationList(kNamespaces), Forge::Write(customer))),
            Accepted(customer));
    });
}

TEST(ManyNamespacesOfTokens, ServeAsManyAttributes) {
    OnSmallStack([] {
        const Forge::TokenSpec customer = Provider::CustomerSpec();
        std::string attributes;
        for (std::size_t i = 0; i != kNamespaces; ++i)
            attributes += " p" + Padded(i) + ":a=\"\"";
        ExpectOutcome(TokenWith({}, Declaring(DeclarationList(kNamespaces),
                                              WithAudienceAttributes(customer, attributes))),
                      Accepted(customer));
    });
}

TEST(ManyNamespacesOfTokens, MayBeListedAllAsPrefixes) {
    OnSmallStack([] {
        const Forge::TokenSpec customer = Provider::CustomerSpec();
        std::string prefixes;
        for (std::size_t i = 0; i != kNamespaces; ++i)
            prefixes += " p" + Padded(i);
        HandMadeSignature signature;
        signature.transforms = Transforms(
            EnvelopedTransform() +
            Transform(ExclusiveC14N,
                      "<c:InclusiveNamespaces xmlns:c=\"http://www.w3.org/2001/10/xml-exc-c14n#\" "
                      "PrefixList=\"" +
                          prefixes + "\"/>"));
        // Nobody declares them: the list changes nothing.
        ExpectOutcome(TokenWith(signature, customer), Accepted(customer));
        // They are declared, and the signer has not listed them.
        ExpectOutcome(
            TokenWith(signature, Declaring(DeclarationList(kNamespaces), Forge::Write(customer))),
            RefusedAsTampered());
    });
}

TEST(HugeTextsOfTokens, AreAcceptedAsValues) {
    OnSmallStack([] {
        Forge::TokenSpec customer = Provider::CustomerSpec();
        customer.attributes[1].values = {std::string(kTextSize, 'x')};  // the given name
        const std::string token = TokenWith({}, customer);
        const auto created = CreateSamlToken(token, Provider::TrustInTheRoot().get());
        PersonName name;
        created->GetPersonName(name);
        EXPECT_TRUE(name.FirstName == customer.attributes[1].values[0]);
        EXPECT_EQ(name.LastName, "Doe");
        EXPECT_EQ(created->GetSubject().Name, "mallory");
        EXPECT_TRUE(created->GetXml() == token);
    });
}

TEST(HugeTextsOfTokens, AreAcceptedWhereNobodyLooks) {
    OnSmallStack([] {
        const Forge::TokenSpec customer = Provider::CustomerSpec();
        ExpectOutcome(WithUnsigned(std::string(kTextSize, 'x'), customer), Accepted(customer));
        ExpectOutcome("<!--" + std::string(kTextSize, 'x') + "-->" + TokenWith({}, customer),
                      Accepted(customer));
    });
}

TEST(HugeTextsOfTokens, AreRefusedAsDatesAndCounts) {
    OnSmallStack([] {
        const std::string huge(kTextSize / 10, '1');
        Forge::TokenSpec spec = Provider::CustomerSpec();
        spec.notBefore = huge;
        ExpectOutcome(TokenWith({}, spec),
                      Refused<ParseException>("Conditions/@NotBefore is not a date"));
        spec = Provider::CustomerSpec();
        spec.proxyCount = huge;
        ExpectOutcome(
            TokenWith({}, spec),
            Refused<ParseException>("ProxyRestriction/@Count is not a non-negative integer."));
    });
}

TEST(HugeTextsOfTokens, AreRefusedAsNames) {
    OnSmallStack([] {
        const std::string huge(kTextSize / 10, 'x');
        Forge::TokenSpec spec = Provider::CustomerSpec();
        spec.subject.value = huge;
        ExpectOutcome(TokenWith({}, spec),
                      Refused<ParseException>("Failed to parse the UPN NameID: `" + huge +
                                              "'; name or domain part is missing."));
    });
}

}  // namespace
}  // namespace Saml::Attacks
