#include "saml/security/signature_reference_impl.h"
#include "support/hand_signed.h"
#include "support/signature_texts.h"
#include "support/thrown.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Saml::Xml::Security {
namespace {

using ReferencePtr = boost::intrusive_ptr<SignatureReference>;

constexpr char kEnveloped[] = "http://www.w3.org/2000/09/xmldsig#enveloped-signature";

/// A new reference of a blank signature inside `<root ID='r'><a ID='a'>one</a>...</root>`.
class BuiltReference : public testing::Test {
  protected:
    void SetUp() override {
        CreateBlankSignature(document_->GetRootElement(), Algorithm::ExclusiveC14N,
                             Algorithm::RsaSha256, "", signature_);
        document_->GetRootElement()->AppendChild(signature_->GetElement());
        signature_->AddReference("#a", Algorithm::Sha256, reference_);
    }

    /// The `Algorithm` of each transform, in document order.
    std::vector<std::string> Transforms() {
        ExpectSoundLinks(*reference_->GetElement());
        std::vector<std::string> algorithms;
        Node* const transforms = reference_->GetElement()->GetFirstChildElement("Transforms");
        if (transforms == nullptr) return algorithms;
        EXPECT_EQ(reference_->GetElement()->GetFirstChild(), transforms);
        for (Node* const child : ChildrenOf(*transforms)) {
            std::string algorithm;
            EXPECT_TRUE(dynamic_cast<ElementNode&>(*child).GetAttribute("Algorithm", algorithm));
            algorithms.push_back(algorithm);
        }
        return algorithms;
    }
    std::string DigestValue() {
        Node* const text = ElementNamed(*reference_->GetElement(), "DigestValue").GetFirstChild();
        return dynamic_cast<TextNode&>(*text).GetText();
    }

    Held<Document> document_ = Parsed("<root ID='r'><a ID='a'>one</a></root>");
    boost::intrusive_ptr<Signature> signature_;
    ReferencePtr reference_;
};

using Algorithms = std::vector<std::string>;

TEST_F(BuiltReference, HasNoTransforms) {
    EXPECT_EQ(Outline(*reference_->GetElement()),
              "Reference[URI=#a]{DigestMethod[Algorithm=http://www.w3.org/2001/04/xmlenc#sha256] "
              "DigestValue{\"\"}}");
    EXPECT_FALSE(reference_->IsEnveloped());
    EXPECT_EQ(reference_->GetCanonicalizationMethod(), "");
}

TEST_F(BuiltReference, GetsTransformsAsItsFirstChild) {
    reference_->AddEnvelopedSignatureTransform();
    reference_->SetCanonicalizationMethod(Algorithm::ExclusiveC14N);
    EXPECT_EQ(Outline(*reference_->GetElement()),
              "Reference[URI=#a]{Transforms{"
              "Transform[Algorithm=http://www.w3.org/2000/09/xmldsig#enveloped-signature] "
              "Transform[Algorithm=http://www.w3.org/2001/10/xml-exc-c14n#]} "
              "DigestMethod[Algorithm=http://www.w3.org/2001/04/xmlenc#sha256] DigestValue{\"\"}}");
    EXPECT_TRUE(reference_->IsEnveloped());
    EXPECT_EQ(reference_->GetCanonicalizationMethod(), Algorithm::ExclusiveC14N);
}

TEST_F(BuiltReference, IsEnvelopedBeforeItIsCanonicalizedWhateverTheOrderOfTheCalls) {
    reference_->SetCanonicalizationMethod(Algorithm::ExclusiveC14N);
    EXPECT_EQ(Transforms(), Algorithms{Algorithm::ExclusiveC14N});
    reference_->AddEnvelopedSignatureTransform();
    EXPECT_EQ(Transforms(), (Algorithms{kEnveloped, Algorithm::ExclusiveC14N}));
}

TEST_F(BuiltReference, IsEnvelopedOnce) {
    reference_->AddEnvelopedSignatureTransform();
    reference_->AddEnvelopedSignatureTransform();
    EXPECT_EQ(Transforms(), Algorithms{kEnveloped});
    reference_->SetCanonicalizationMethod("any");
    reference_->AddEnvelopedSignatureTransform();
    EXPECT_EQ(Transforms(), (Algorithms{kEnveloped, "any"}));
}

TEST_F(BuiltReference, ChangesTheCanonicalizationMethodInPlace) {
    reference_->SetCanonicalizationMethod("first");
    reference_->AddEnvelopedSignatureTransform();
    reference_->SetCanonicalizationMethod("second");
    EXPECT_EQ(Transforms(), (Algorithms{kEnveloped, "second"}));
    EXPECT_EQ(reference_->GetCanonicalizationMethod(), "second");
    reference_->SetCanonicalizationMethod("second");
    EXPECT_EQ(Transforms(), (Algorithms{kEnveloped, "second"}));
}

TEST_F(BuiltReference, TakesItsOwnMethodAgain) {
    reference_->SetCanonicalizationMethod("any");
    reference_->SetCanonicalizationMethod(reference_->GetCanonicalizationMethod());
    EXPECT_EQ(Transforms(), Algorithms{"any"});
    EXPECT_EQ(reference_->GetCanonicalizationMethod(), "any");
}

// An empty method is none: the next one finds nothing to overwrite.
TEST_F(BuiltReference, AppendsBehindAnEmptyMethod) {
    reference_->SetCanonicalizationMethod("");
    EXPECT_EQ(Transforms(), Algorithms{""});
    reference_->SetCanonicalizationMethod("any");
    EXPECT_EQ(Transforms(), (Algorithms{"", "any"}));
}

TEST_F(BuiltReference, AppendsAgainWhenTheCallerTookTheTransformAway) {
    reference_->SetCanonicalizationMethod("first");
    ElementNode& transforms = ElementNamed(*reference_->GetElement(), "Transforms");
    transforms.RemoveChild(transforms.GetFirstChild());
    reference_->SetCanonicalizationMethod("second");
    EXPECT_EQ(Transforms(), Algorithms{"second"});
}

TEST_F(BuiltReference, LooksForItsMethodAmongTransformsOnly) {
    reference_->AddEnvelopedSignatureTransform();
    ElementNode& transforms = ElementNamed(*reference_->GetElement(), "Transforms");
    const Held<ElementNode> stranger = NewElement("Stranger");
    stranger->SetAttribute("Algorithm", "first");
    transforms.AppendChild(stranger.get());
    transforms.AppendChild(NewComment("c").get());
    reference_->SetCanonicalizationMethod("first");
    reference_->SetCanonicalizationMethod("second");
    EXPECT_EQ(Outline(transforms),
              std::string("Transforms{Transform[Algorithm=") + kEnveloped +
                  "] Stranger[Algorithm=first] <!--c--> Transform[Algorithm=second]}");
}

TEST_F(BuiltReference, CanBeTransformedAfterReading) {
    const Held<Document> document = Parsed(DocumentText());
    const ReferencePtr read = ReferencesOf(*SignatureOf(*document)).front();
    read->AddEnvelopedSignatureTransform();
    read->SetCanonicalizationMethod("other");
    EXPECT_EQ(Outline(ElementNamed(*document, "Transforms")),
              std::string("ds:Transforms{ds:Transform[Algorithm=") + kEnveloped +
                  "] ds:Transform[Algorithm=other]}");
}

TEST_F(BuiltReference, GetsTransformsAfterReadingWithoutAny) {
    const std::string text = kSignatureText;
    const std::size_t start = text.find("<ds:Transforms>");
    const std::string end = "</ds:Transforms>";
    const std::string transforms = text.substr(start, text.find(end) + end.size() - start);
    const Held<Document> document = Parsed(DocumentText(Replaced(text, transforms, "")));
    const ReferencePtr read = ReferencesOf(*SignatureOf(*document)).front();
    read->SetCanonicalizationMethod("any");
    read->AddEnvelopedSignatureTransform();
    EXPECT_EQ(Outline(*read->GetElement()->GetFirstChild()),
              std::string("ds:Transforms{ds:Transform[Algorithm=") + kEnveloped +
                  "] ds:Transform[Algorithm=any]}");
}

TEST_F(BuiltReference, FindsItsReferent) {
    EXPECT_EQ(reference_->GetReferent(), &ElementNamed(*document_, "a"));
    ReferencePtr whole;
    signature_->AddReference("", Algorithm::Sha256, whole);
    EXPECT_EQ(whole->GetReferent(), document_->GetRootElement());
}

TEST_F(BuiltReference, RefusesAReferentThatIsMissingOrAmbiguous) {
    ElementNamed(*document_, "a").SetAttribute("ID", "other");
    EXPECT_EQ(MessageOf<MissingReferentException>([&] { reference_->GetReferent(); }),
              "The URI could not be resolved: #a");
    ElementNamed(*document_, "a").SetAttribute("ID", "a");
    document_->GetRootElement()->SetAttribute("Id", "a");
    EXPECT_EQ(MessageOf<DuplicateURIException>([&] { reference_->GetReferent(); }),
              "Duplicate URI found: a");
}

TEST_F(BuiltReference, WritesTheDigestOfItsReferent) {
    reference_->SetCanonicalizationMethod(Algorithm::ExclusiveC14N);
    EXPECT_FALSE(reference_->VerifyDigest());
    reference_->UpdateDigest();
    EXPECT_EQ(DigestValue(), HandSigned::DigestValue("sha256", "<a ID=\"a\">one</a>"));
    EXPECT_TRUE(reference_->VerifyDigest());
}

TEST_F(BuiltReference, ReplacesADigestThatIsOutOfDate) {
    reference_->SetCanonicalizationMethod(Algorithm::ExclusiveC14N);
    reference_->UpdateDigest();
    ElementNamed(*document_, "a").AppendChild(NewText(" and two").get());
    EXPECT_FALSE(reference_->VerifyDigest());
    reference_->UpdateDigest();
    EXPECT_TRUE(reference_->VerifyDigest());
    EXPECT_EQ(DigestValue(), HandSigned::DigestValue("sha256", "<a ID=\"a\">one and two</a>"));
}

// The signature is left out with all that is in it, as if it were not there.
TEST_F(BuiltReference, DigestsARootAsIfItsSignatureWereNotThere) {
    ReferencePtr whole;
    signature_->AddReference("", Algorithm::Sha256, whole);
    whole->SetCanonicalizationMethod(Algorithm::ExclusiveC14N);
    whole->AddEnvelopedSignatureTransform();
    whole->UpdateDigest();
    const std::string digest =
        HandSigned::DigestValue("sha256", "<root ID=\"r\"><a ID=\"a\">one</a></root>");
    Node* const text = ElementNamed(*whole->GetElement(), "DigestValue").GetFirstChild();
    EXPECT_EQ(dynamic_cast<TextNode&>(*text).GetText(), digest);

    document_->GetRootElement()->RemoveChild(signature_->GetElement());
    EXPECT_TRUE(whole->VerifyDigest());
}

TEST_F(BuiltReference, ChangesNothingWhenItsDigestCannotBeMade) {
    reference_->SetCanonicalizationMethod(Algorithm::ExclusiveC14N);
    reference_->UpdateDigest();
    const std::string before = Outline(*document_);

    reference_->SetCanonicalizationMethod("any");
    EXPECT_EQ(MessageOf<UnsupportedCanonicalizationException>([&] { reference_->UpdateDigest(); }),
              "The following canonicalization method is unsupported: any");
    reference_->SetCanonicalizationMethod(Algorithm::ExclusiveC14N);
    EXPECT_EQ(Outline(*document_), before);

    document_->GetRootElement()->SetAttribute("Id", "a");
    EXPECT_EQ(MessageOf<DuplicateURIException>([&] { reference_->UpdateDigest(); }),
              "Duplicate URI found: a");
    document_->GetRootElement()->RemoveAttribute("Id");
    EXPECT_EQ(Outline(*document_), before);
}

TEST_F(BuiltReference, NeedsACanonicalizationMethod) {
    reference_->AddEnvelopedSignatureTransform();
    EXPECT_EQ(MessageOf<UnsupportedCanonicalizationException>([&] { reference_->UpdateDigest(); }),
              "The following canonicalization method is unsupported: ");
    EXPECT_EQ(MessageOf<UnsupportedCanonicalizationException>([&] { reference_->VerifyDigest(); }),
              "The following canonicalization method is unsupported: ");
}

// The list is read, never written; it is part of the refusal.
TEST_F(BuiltReference, NamesThePrefixListOfAnUnknownMethod) {
    const Held<Document> document = Parsed(DocumentText(Replaced(
        kSignatureText, R"(<ds:Transform Algorithm="http://www.w3.org/2001/10/xml-exc-c14n#"/>)",
        "<ds:Transform Algorithm='http://www.w3.org/2001/10/xml-exc-c14n#'><c:InclusiveNamespaces "
        "xmlns:c='http://www.w3.org/2001/10/xml-exc-c14n#' PrefixList='p  q'/></ds:Transform>")));
    const ReferencePtr read = ReferencesOf(*SignatureOf(*document)).front();
    read->SetCanonicalizationMethod("any");
    EXPECT_EQ(MessageOf<UnsupportedCanonicalizationException>([&] { read->VerifyDigest(); }),
              "The following canonicalization method is unsupported: any with parameter: p  q");
}

TEST_F(BuiltReference, NeedsAKnownDigestMethod) {
    ReferencePtr unknown;
    signature_->AddReference("#a", "urn:digest", unknown);
    unknown->SetCanonicalizationMethod(Algorithm::ExclusiveC14N);
    EXPECT_EQ(MessageOf<UnsupportedHashAlgorithmException>([&] { unknown->UpdateDigest(); }),
              "The following hash algorithm is unsupported: urn:digest");
    EXPECT_EQ(MessageOf<UnsupportedHashAlgorithmException>([&] { unknown->VerifyDigest(); }),
              "The following hash algorithm is unsupported: urn:digest");
}

// Where there is no signature around a reference yet, there is nothing to leave out.
TEST_F(BuiltReference, IsDigestedOutsideOfASignature) {
    reference_->SetCanonicalizationMethod(Algorithm::ExclusiveC14N);
    reference_->AddEnvelopedSignatureTransform();
    const Held<ElementNode> element(reference_->GetElement());
    Node* const signedInfo = element->GetParent();
    signedInfo->RemoveChild(element.get());
    reference_->UpdateDigest();
    EXPECT_TRUE(reference_->VerifyDigest());
    EXPECT_EQ(DigestValue(), HandSigned::DigestValue("sha256", "<a ID=\"a\">one</a>"));
}

}  // namespace
}  // namespace Saml::Xml::Security
