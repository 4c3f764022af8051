#include "saml/security/signature_impl.h"
#include "saml/security/x509_key_info.h"
#include "support/big_documents.h"
#include "support/signature_texts.h"
#include "support/small_stack.h"
#include "support/thrown.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <list>
#include <set>
#include <string>

namespace Saml::Xml::Security {
namespace {

using namespace BigDocuments;

constexpr std::size_t kLevels = 1000000;
constexpr std::size_t kReferences = 100000;

/// The digest of `<x ID="x"></x>`, by the openssl command line.
constexpr char kTinyElement[] = "<x ID=\"x\"/>";
constexpr char kDigestOfTheTinyElement[] = "DoKIFd+q5T+hGs9e0gC1kx9M14oPBIY9X80RAxGK7is=";

/// What may stand between the tags of `Transforms`.
std::string ExclusiveTransform(const std::string& content = {}) {
    return "<ds:Transform Algorithm=\"http://www.w3.org/2001/10/xml-exc-c14n#\">" + content +
           "</ds:Transform>";
}

std::string ReferenceText(const std::string& uri, const std::string& transforms,
                          const std::string& digestValue) {
    return "<ds:Reference URI=\"" + uri + "\"><ds:Transforms>" + transforms +
           "</ds:Transforms><ds:DigestMethod "
           "Algorithm=\"http://www.w3.org/2001/04/xmlenc#sha256\"/><ds:DigestValue>" +
           digestValue + "</ds:DigestValue></ds:Reference>";
}

std::string ToTheTinyElement(const std::string& transforms = ExclusiveTransform()) {
    return ReferenceText("#x", transforms, kDigestOfTheTinyElement);
}

std::string SignatureText(const std::string& references, const std::string& keyInfo = {}) {
    return "<ds:Signature xmlns:ds=\"http://www.w3.org/2000/09/xmldsig#\"><ds:SignedInfo>"
           "<ds:CanonicalizationMethod Algorithm=\"http://www.w3.org/2001/10/xml-exc-c14n#\"/>"
           "<ds:SignatureMethod Algorithm=\"http://www.w3.org/2001/04/xmldsig-more#rsa-sha256\"/>" +
           references + "</ds:SignedInfo><ds:SignatureValue>AAAA</ds:SignatureValue>" + keyInfo +
           "</ds:Signature>";
}

std::string Below(std::size_t levels, const std::string& content) {
    return Repeated("<a>", levels) + content + Repeated("</a>", levels);
}

/// Counts the certificates that it is shown and trusts nobody.
class CountingResolver final : public KeyInfoResolver {
  public:
    void Resolve(KeyInfo* keyInfo, std::list<ByteBlob>&) override {
        ++asked;
        if (keyInfo != nullptr)
            certificates += dynamic_cast<X509KeyInfo&>(*keyInfo).Certificates().size();
    }
    std::size_t asked = 0;
    std::size_t certificates = 0;
};

boost::intrusive_ptr<Signature> Read(Document& document) {
    return SignatureOf(document);
}

/// All references hold: the resolver is asked.
void ExpectReferencesHold(const std::string& text, const std::set<std::string>& required = {}) {
    const Held<Document> document = Parsed(text);
    const boost::intrusive_ptr<CountingResolver> resolver(new CountingResolver);
    const boost::intrusive_ptr<Signature> signature = Read(*document);
    EXPECT_EQ(MessageOf<SignatureVerificationException>(
                  [&] { signature->Verify(resolver.get(), required); }),
              "No verification key available.");
    EXPECT_EQ(resolver->asked, 1u);
}

void ExpectReferencesFail(const std::string& text, const std::set<std::string>& required = {}) {
    const Held<Document> document = Parsed(text);
    const boost::intrusive_ptr<CountingResolver> resolver(new CountingResolver);
    EXPECT_FALSE(Read(*document)->Verify(resolver.get(), required));
    EXPECT_EQ(resolver->asked, 0u);
}

boost::intrusive_ptr<ElementNodeImpl> Found(Document& document, const std::string& uri) {
    boost::intrusive_ptr<ElementNodeImpl> found;
    UniqueURIResolver().Resolve(&dynamic_cast<NodeImpl&>(*document.GetRootElement()), uri, found);
    return found;
}

TEST(IdentifierSearch, InDeepTrees) {
    OnSmallStack([] {
        const Held<Document> document = Parsed(Below(kLevels, kTinyElement));
        EXPECT_EQ(Found(*document, "#x")->LocalName(), "x");
        EXPECT_EQ(Found(*document, "#y"), nullptr);
    });
}

TEST(IdentifierSearch, InWideTrees) {
    OnSmallStack([] {
        constexpr std::size_t kSiblings = 2000000;
        const Held<Document> document =
            Parsed("<r>" + Repeated("<a ID=\"a\"/>", kSiblings) + kTinyElement + "</r>");
        EXPECT_EQ(Found(*document, "#x")->LocalName(), "x");
        EXPECT_EQ(MessageOf<DuplicateURIException>([&] { Found(*document, "#a"); }),
                  "Duplicate URI found: a");
    });
}

TEST(IdentifierSearch, FindsADuplicateAtTheVeryEnd) {
    OnSmallStack([] {
        const Held<Document> document = Parsed("<r>" + std::string(kTinyElement) +
                                               NestedElements(kLevels) + kTinyElement + "</r>");
        EXPECT_EQ(MessageOf<DuplicateURIException>([&] { Found(*document, "#x"); }),
                  "Duplicate URI found: x");
    });
}

TEST(IdentifierSearch, AmongManyAttributes) {
    OnSmallStack([] {
        std::string attributes;
        for (std::size_t i = 0; i != 100000; ++i)
            attributes += " p" + Padded(i) + ":ID=\"" + std::to_string(i) + "\"";
        const Held<Document> document = Parsed("<r><x" + attributes + "/><y/></r>");
        EXPECT_EQ(Found(*document, "#99999")->LocalName(), "x");
        EXPECT_EQ(Found(*document, "#100000"), nullptr);
    });
}

TEST(IdentifierSearch, OfALongIdentifier) {
    OnSmallStack([] {
        const std::string identifier(10000000, 'i');
        const Held<Document> document = Parsed("<r><x ID=\"" + identifier + "\"/></r>");
        EXPECT_EQ(Found(*document, "#" + identifier)->LocalName(), "x");
        EXPECT_EQ(Found(*document, "#" + identifier + "i"), nullptr);
    });
}

TEST(ManyReferences, AreReadInTheirOrder) {
    OnSmallStack([] {
        std::string references;
        for (std::size_t i = 0; i != kReferences; ++i)
            references += ReferenceText("#" + std::to_string(i), ExclusiveTransform(), "AAAA");
        const Held<Document> document = Parsed("<r>" + SignatureText(references) + "</r>");
        std::size_t read = 0;
        for (const auto& reference : ReferencesOf(*Read(*document)))
            ASSERT_EQ(reference->GetURI(), "#" + std::to_string(read++));
        EXPECT_EQ(read, kReferences);
    });
}

TEST(ManyReferences, ToOneTinyElement) {
    OnSmallStack([] {
        const std::string references = Repeated(ToTheTinyElement(), kReferences);
        ExpectReferencesHold("<r>" + std::string(kTinyElement) + SignatureText(references) + "</r>",
                             {"#x"});
        ExpectReferencesFail("<r>" + std::string(kTinyElement) + SignatureText(references) + "</r>",
                             {"#x", "#nowhere"});
    });
}

TEST(ManyReferences, ToOneTinyElementInABigDocument) {
    OnSmallStack([] {
        const std::string references = Repeated(ToTheTinyElement(), kReferences);
        ExpectReferencesHold("<r>" + NestedElements(kLevels) + Repeated("<a/>", kLevels) +
                             kTinyElement + SignatureText(references) + "</r>");
    });
}

TEST(ManyReferences, ToOneTinyElementFarDown) {
    OnSmallStack([] {
        const std::string references = Repeated(ToTheTinyElement(), kReferences);
        ExpectReferencesHold("<r>" + Below(kLevels, kTinyElement) + SignatureText(references) +
                             "</r>");
    });
}

TEST(ManyReferences, ToOneTinyElementWithManyPrefixLists) {
    OnSmallStack([] {
        std::string references;
        for (std::size_t i = 0; i != kReferences; ++i)
            references += ToTheTinyElement(
                ExclusiveTransform("<c:InclusiveNamespaces "
                                   "xmlns:c=\"http://www.w3.org/2001/10/xml-exc-c14n#\" "
                                   "PrefixList=\"p" +
                                   std::to_string(i) + "\"/>"));
        ExpectReferencesHold("<r>" + std::string(kTinyElement) + SignatureText(references) +
                             "</r>");
    });
}

TEST(ManyReferences, WithWrongDigests) {
    OnSmallStack([] {
        const std::string references =
            Repeated(ReferenceText("#x", ExclusiveTransform(), "AAAA"), kReferences);
        ExpectReferencesFail("<r>" + std::string(kTinyElement) + SignatureText(references) +
                             "</r>");
    });
}

TEST(ManyReferences, EachToAnElementOfItsOwn) {
    OnSmallStack([] {
        std::string elements;
        std::string references;
        for (std::size_t i = 0; i != kReferences; ++i) {
            elements += "<x ID=\"" + std::to_string(i) + "\"/>";
            references += ReferenceText("#" + std::to_string(i), ExclusiveTransform(), "AAAA");
        }
        ExpectReferencesFail("<r>" + elements + SignatureText(references) + "</r>",
                             {"#0", "#99999"});
    });
}

TEST(ManyReferences, ToElementsThatAreThereTwice) {
    OnSmallStack([] {
        const std::string references = Repeated(ToTheTinyElement(), kReferences);
        const Held<Document> document = Parsed("<r>" + Repeated(kTinyElement, kReferences) +
                                               SignatureText(references) + "</r>");
        const boost::intrusive_ptr<CountingResolver> resolver(new CountingResolver);
        EXPECT_EQ(
            MessageOf<DuplicateURIException>([&] { Read(*document)->Verify(resolver.get(), {}); }),
            "Duplicate URI found: x");
    });
}

TEST(ManyReferences, AndManyRequiredURIsAtTheLastMoment) {
    OnSmallStack([] {
        constexpr std::size_t kRequired = 100000;
        std::string elements;
        std::set<std::string> required;
        for (std::size_t i = 0; i != kRequired; ++i) {
            elements += "<y ID=\"" + std::to_string(i) + "\"/>";
            required.insert("#" + std::to_string(i));
        }
        ExpectReferencesFail("<r>" + elements +
                                 SignatureText(ReferenceText("", ExclusiveTransform(), "AAAA")) +
                                 "</r>",
                             required);
    });
}

TEST(SignatureReading, OfManyTransforms) {
    OnSmallStack([] {
        const Held<Document> document = Parsed(
            "<r>" + std::string(kTinyElement) +
            SignatureText(ToTheTinyElement(Repeated(ExclusiveTransform(), 1000000))) + "</r>");
        const auto references = ReferencesOf(*Read(*document));
        ASSERT_EQ(references.size(), 1u);
        EXPECT_TRUE(references.front()->VerifyDigest());
    });
}

TEST(SignatureReading, OfALongPrefixList) {
    OnSmallStack([] {
        std::string words;
        for (std::size_t i = 0; i != 1000000; ++i)
            words += " p" + std::to_string(i);
        const std::string transform = ExclusiveTransform(
            "<c:InclusiveNamespaces xmlns:c=\"http://www.w3.org/2001/10/xml-exc-c14n#\" "
            "PrefixList=\"" +
            words + "\"/>");
        ExpectReferencesHold("<r>" + std::string(kTinyElement) +
                             SignatureText(ToTheTinyElement(transform)) + "</r>");
    });
}

TEST(SignatureReading, OfManyCertificates) {
    OnSmallStack([] {
        constexpr std::size_t kCertificates = 100000;
        const std::string certificates =
            Repeated("<ds:X509Certificate>Y2VydGlmaWNhdGU=</ds:X509Certificate>", kCertificates);
        const Held<Document> document =
            Parsed("<r>" + std::string(kTinyElement) +
                   SignatureText(ToTheTinyElement(), "<ds:KeyInfo><ds:X509Data>" + certificates +
                                                         "</ds:X509Data></ds:KeyInfo>") +
                   "</r>");
        const boost::intrusive_ptr<CountingResolver> resolver(new CountingResolver);
        EXPECT_THROW(Read(*document)->Verify(resolver.get(), {}), SignatureVerificationException);
        EXPECT_EQ(resolver->certificates, kCertificates);
    });
}

/// A signature below so many ancestors that each look at all of them for each of its own elements
/// would take hours.
std::string FarDown(const std::string& signature) {
    return "<r>" + std::string(kTinyElement) + Below(kLevels, signature) + "</r>";
}

TEST(SignatureFarDown, OfManyReferences) {
    OnSmallStack([] {
        const std::string references = Repeated(ToTheTinyElement(), kReferences);
        ExpectReferencesHold(FarDown(SignatureText(references)));
    });
}

TEST(SignatureFarDown, WithItsNamespaceDeclaredAtTheTop) {
    OnSmallStack([] {
        const std::string declaration = " xmlns:ds=\"http://www.w3.org/2000/09/xmldsig#\"";
        const std::string references = Repeated(ToTheTinyElement(), kReferences);
        ExpectReferencesHold(Replaced(Replaced(FarDown(SignatureText(references)), declaration, ""),
                                      "<r>", "<r" + declaration + ">"));
    });
}

TEST(SignatureFarDown, WithManyChildrenOfAnUnboundPrefix) {
    OnSmallStack([] {
        const std::string strangers = Repeated("<u:X509Certificate>?</u:X509Certificate>", 100000);
        const Held<Document> document = Parsed(
            FarDown(SignatureText(ToTheTinyElement(), "<ds:KeyInfo><ds:X509Data>" + strangers +
                                                          "</ds:X509Data></ds:KeyInfo>")));
        const boost::intrusive_ptr<CountingResolver> resolver(new CountingResolver);
        EXPECT_THROW(Read(*document)->Verify(resolver.get(), {}), SignatureVerificationException);
        EXPECT_EQ(resolver->asked, 1u);
        EXPECT_EQ(resolver->certificates, 0u);
    });
}

TEST(SignatureFarDown, WithParametersOfAnUnboundPrefix) {
    OnSmallStack([] {
        const std::string transform = ExclusiveTransform("<u:InclusiveNamespaces/>");
        const std::string references = Repeated(ToTheTinyElement(transform), kReferences);
        ExpectReferencesHold(FarDown(SignatureText(references)));
    });
}

TEST(SignatureFarDown, ThatIsRefusedForAnUnboundPrefix) {
    OnSmallStack([] {
        const Held<Document> document = Parsed(FarDown("<u:Signature/>"));
        EXPECT_EQ(MessageOf<SignatureSyntaxException>([&] { Read(*document); }),
                  "Element 'Signature has unexpected namespace: ''");
    });
}

TEST(SignatureReading, OfRefusedContentOfAnySize) {
    OnSmallStack([] {
        const auto refusalOf = [](const std::string& signature) {
            const Held<Document> document = Parsed("<r>" + signature + "</r>");
            return MessageOf<SignatureSyntaxException>([&] { Read(*document); });
        };
        const std::string good = SignatureText(ToTheTinyElement());
        EXPECT_EQ(refusalOf(Replaced(good, "</ds:Signature>",
                                     NestedElements(kLevels) + "</ds:Signature>")),
                  "Unexpected child nodes under 'Signature'");
        EXPECT_EQ(refusalOf(Replaced(good, "<ds:SignedInfo>",
                                     "<ds:SignedInfo" + AttributeList(100000) + ">")),
                  "Unexpected attributes on element 'SignedInfo'");
        EXPECT_EQ(refusalOf(Replaced(good, "AAAA", "AAAA" + Repeated("<!-- c -->", 1000000) + "x")),
                  "Element 'SignatureValue' must only have textual content (but has extra children "
                  "or is empty).");
    });
}

TEST(SignatureReading, OfManyBlanksCommentsAndDeclarations) {
    OnSmallStack([] {
        const std::string text =
            Replaced(Replaced(SignatureText(ToTheTinyElement()), "<ds:SignatureValue>",
                              Repeated(" <!-- c -->", 1000000) + "<ds:SignatureValue>"),
                     "<ds:SignedInfo>", "<ds:SignedInfo" + DeclarationList(100000) + ">");
        ExpectReferencesHold("<r>" + std::string(kTinyElement) + text + "</r>");
    });
}

}  // namespace
}  // namespace Saml::Xml::Security
