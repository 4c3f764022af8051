#include "saml/security/key_info_extended.h"
#include "saml/security/signature_impl.h"
#include "saml/security/x509_key_info.h"
#include "support/foreign_nodes.h"
#include "support/hand_signed.h"
#include "support/signature_texts.h"
#include "support/thrown.h"

#include <gtest/gtest.h>

#include <list>
#include <string>

namespace Saml::Xml::Security {
namespace {

using SignaturePtr = boost::intrusive_ptr<Signature>;
using ReferencePtr = boost::intrusive_ptr<SignatureReference>;

SignaturePtr Blank(ElementNode& root, const std::string& prefix = "ds") {
    SignaturePtr signature;
    CreateBlankSignature(&root, Algorithm::ExclusiveC14N, Algorithm::RsaSha256, prefix, signature);
    return signature;
}

std::string OutlineOf(Signature& signature) {
    ExpectSoundLinks(*signature.GetElement());
    return Outline(*signature.GetElement());
}

TEST(CreateBlankSignature, BuildsAnUnsignedElementThatStandsNowhere) {
    const Held<ElementNode> root = NewElement("root");
    const SignaturePtr signature = Blank(*root);
    ExpectDetached(*signature->GetElement());
    EXPECT_EQ(OutlineOf(*signature),
              "ds:Signature[xmlns:ds=http://www.w3.org/2000/09/xmldsig#]{ds:SignedInfo{"
              "ds:CanonicalizationMethod[Algorithm=http://www.w3.org/2001/10/xml-exc-c14n#] "
              "ds:SignatureMethod[Algorithm=http://www.w3.org/2001/04/xmldsig-more#rsa-sha256]} "
              "ds:SignatureValue{\"\"}}");
    EXPECT_EQ(Outline(*root), "root");
    EXPECT_TRUE(ReferencesOf(*signature).empty());
}

TEST(CreateBlankSignature, DeclaresADefaultNamespaceWithoutAPrefix) {
    const Held<ElementNode> root = NewElement("root");
    EXPECT_EQ(OutlineOf(*Blank(*root, "")),
              "Signature[xmlns=http://www.w3.org/2000/09/xmldsig#]{SignedInfo{"
              "CanonicalizationMethod[Algorithm=http://www.w3.org/2001/10/xml-exc-c14n#] "
              "SignatureMethod[Algorithm=http://www.w3.org/2001/04/xmldsig-more#rsa-sha256]} "
              "SignatureValue{\"\"}}");
}

TEST(CreateBlankSignature, DoesNotJudgeTheMethods) {
    const Held<ElementNode> root = NewElement("root");
    SignaturePtr signature;
    CreateBlankSignature(root.get(), "", "any", "p", signature);
    EXPECT_EQ(signature->GetCanonicalizationMethod(), "");
    EXPECT_EQ(signature->GetSignatureMethod(), "any");
    EXPECT_EQ(OutlineOf(*signature),
              "p:Signature[xmlns:p=http://www.w3.org/2000/09/xmldsig#]{p:SignedInfo{"
              "p:CanonicalizationMethod[Algorithm=] p:SignatureMethod[Algorithm=any]} "
              "p:SignatureValue{\"\"}}");
}

TEST(CreateBlankSignature, RefusesNullAndForeignRoots) {
    const Held<ElementNode> root = NewElement("root");
    SignaturePtr result = Blank(*root);
    const SignaturePtr former = result;
    EXPECT_NE(MessageOf<InvalidArgumentException>(
                  [&] { CreateBlankSignature(nullptr, "c", "s", "p", result); }),
              "");
    const Held<ElementNode> foreign(new ForeignElement);
    const TypeMismatchException expected(typeid(ElementNodeImpl), typeid(ForeignElement));
    EXPECT_EQ(MessageOf<TypeMismatchException>(
                  [&] { CreateBlankSignature(foreign.get(), "c", "s", "p", result); }),
              expected.what());
    EXPECT_EQ(result, former);
}

TEST(CreateBlankSignature, ReplacesTheFormerResult) {
    const Held<ElementNode> root = NewElement("root");
    SignaturePtr result = Blank(*root);
    const SignaturePtr former = result;
    CreateBlankSignature(root.get(), "c", "s", "p", result);
    EXPECT_NE(result, former);
    EXPECT_EQ(former->use_count(), 1u);
}

TEST(CreateBlankSignature, KeepsItsNodesAlive) {
    Held<ElementNode> root = NewElement("root");
    root->SetAttribute("ID", "r");
    const SignaturePtr signature = Blank(*root);
    ReferencePtr reference;
    signature->AddReference("#r", Algorithm::Sha256, reference);
    root.reset();
    EXPECT_EQ(reference->GetReferent()->GetLocalName(), "root");
}

TEST(AddReference, AppendsToSignedInfoInTheOrderOfTheCalls) {
    const Held<ElementNode> root = NewElement("root");
    const SignaturePtr signature = Blank(*root, "");
    ReferencePtr first;
    ReferencePtr second;
    signature->AddReference("", Algorithm::Sha1, first);
    signature->AddReference("#b", "any", second);
    EXPECT_EQ(OutlineOf(*signature),
              "Signature[xmlns=http://www.w3.org/2000/09/xmldsig#]{SignedInfo{"
              "CanonicalizationMethod[Algorithm=http://www.w3.org/2001/10/xml-exc-c14n#] "
              "SignatureMethod[Algorithm=http://www.w3.org/2001/04/xmldsig-more#rsa-sha256] "
              "Reference[URI=]{DigestMethod[Algorithm=http://www.w3.org/2000/09/xmldsig#sha1] "
              "DigestValue{\"\"}} "
              "Reference[URI=#b]{DigestMethod[Algorithm=any] DigestValue{\"\"}}} "
              "SignatureValue{\"\"}}");
    const auto references = ReferencesOf(*signature);
    ASSERT_EQ(references.size(), 2u);
    EXPECT_EQ(references.front(), first);
    EXPECT_EQ(references.back(), second);
    EXPECT_EQ(first->GetURI(), "");
    EXPECT_EQ(first->GetDigestMethod(), "http://www.w3.org/2000/09/xmldsig#sha1");
    EXPECT_EQ(second->GetURI(), "#b");
    EXPECT_EQ(second->GetDigestMethod(), "any");
}

TEST(AddReference, ReplacesWhatOutHeld) {
    const Held<ElementNode> root = NewElement("root");
    const SignaturePtr signature = Blank(*root);
    ReferencePtr reference;
    signature->AddReference("#a", "", reference);
    const ReferencePtr former = reference;
    signature->AddReference("#b", "", reference);
    EXPECT_EQ(reference->GetURI(), "#b");
    EXPECT_EQ(former->use_count(), 2u);  // the signature's own and this one
}

TEST(AddReference, TakesTheUriAndMethodOfAnotherReference) {
    const Held<ElementNode> root = NewElement("root");
    const SignaturePtr signature = Blank(*root);
    ReferencePtr reference;
    signature->AddReference("#a", "m", reference);
    signature->AddReference(reference->GetURI(), reference->GetDigestMethod(), reference);
    EXPECT_EQ(reference->GetURI(), "#a");
    EXPECT_EQ(reference->GetDigestMethod(), "m");
}

TEST(AddReference, GoesOnBehindTheReferencesOfAReadSignature) {
    const Held<Document> document = Parsed(DocumentText());
    const SignaturePtr signature = SignatureOf(*document);
    ReferencePtr added;
    signature->AddReference("#b", Algorithm::Sha256, added);
    const auto references = ReferencesOf(*signature);
    ASSERT_EQ(references.size(), 2u);
    EXPECT_EQ(references.back(), added);
    EXPECT_EQ(added->GetElement()->GetQualifiedName(), "ds:Reference");
    EXPECT_EQ(ElementNamed(*document, "SignedInfo").GetLastChild(), added->GetElement());
}

/// What stands behind `SignatureValue` in a built signature.
class SetKeyInfo : public testing::Test {
  protected:
    std::string KeyInfoOutline() {
        const std::string whole = OutlineOf(*signature_);
        const std::string value = "ds:SignatureValue{\"\"}";
        const std::string rest = whole.substr(whole.find(value) + value.size());
        return rest == "}" ? "" : rest.substr(1, rest.size() - 2);
    }
    /// The key information as a resolver sees it.
    boost::intrusive_ptr<KeyInfo> Seen() {
        const boost::intrusive_ptr<HandSigned::PresetResolver> resolver(
            new HandSigned::PresetResolver({}));
        EXPECT_THROW(signature_->Verify(resolver.get(), {}), SignatureVerificationException);
        return resolver->lastKeyInfo;
    }
    static ByteBlob Certificate(const std::string& bytes) { return TestKeys::ToBlob(bytes); }

    Held<ElementNode> root_ = NewElement("root");
    SignaturePtr signature_ = Blank(*root_);
};

TEST_F(SetKeyInfo, IsNotNeeded) {
    EXPECT_EQ(KeyInfoOutline(), "");
    EXPECT_EQ(Seen(), nullptr);
}

TEST_F(SetKeyInfo, AppendsCertificates) {
    signature_->SetKeyInfo({Certificate("one"), Certificate("two")});
    EXPECT_EQ(KeyInfoOutline(),
              "ds:KeyInfo{ds:X509Data{ds:X509Certificate{\"b25l\"} ds:X509Certificate{\"dHdv\"}}}");
    const auto seen = Seen();
    ASSERT_NE(seen, nullptr);
    EXPECT_TRUE(seen->IsX509());
    Held<ElementNode> element;
    seen->GetElement(element);
    EXPECT_EQ(element.get(), signature_->GetElement()->GetLastChild());
}

TEST_F(SetKeyInfo, TakesNoCertificates) {
    signature_->SetKeyInfo(std::list<ByteBlob>());
    EXPECT_EQ(KeyInfoOutline(), "ds:KeyInfo{ds:X509Data}");
}

TEST_F(SetKeyInfo, TakesANullCertificateAsAnEmptyOne) {
    signature_->SetKeyInfo({ByteBlob(), Certificate("two")});
    EXPECT_EQ(KeyInfoOutline(),
              "ds:KeyInfo{ds:X509Data{ds:X509Certificate{\"\"} ds:X509Certificate{\"dHdv\"}}}");
}

TEST_F(SetKeyInfo, AppendsContentOfTheCallersOwn) {
    const Held<ElementNode> content = NewElement("KeyName", "x");
    signature_->SetKeyInfo(content.get());
    EXPECT_EQ(KeyInfoOutline(), "ds:KeyInfo{x:KeyName}");
    const auto seen = Seen();
    ASSERT_NE(seen, nullptr);
    EXPECT_FALSE(seen->IsX509());
    Held<ElementNode> element;
    seen->GetElement(element);
    EXPECT_EQ(element, content);
}

TEST_F(SetKeyInfo, TakesContentFromWhereItStands) {
    const Held<ElementNode> content = NewElement("c");
    root_->AppendChild(content.get());
    signature_->SetKeyInfo(content.get());
    EXPECT_EQ(KeyInfoOutline(), "ds:KeyInfo{c}");
    EXPECT_EQ(Outline(*root_), "root");
}

TEST_F(SetKeyInfo, ReplacesCertificatesByCertificates) {
    signature_->SetKeyInfo({Certificate("one")});
    const auto former = Seen();
    signature_->SetKeyInfo({Certificate("two")});
    EXPECT_EQ(KeyInfoOutline(), "ds:KeyInfo{ds:X509Data{ds:X509Certificate{\"dHdv\"}}}");
    EXPECT_EQ(former->use_count(), 1u);
    Held<ElementNode> element;
    former->GetElement(element);
    ExpectDetached(*element);
}

TEST_F(SetKeyInfo, ReplacesContentByContentInTheSameElement) {
    const Held<ElementNode> former = NewElement("former");
    signature_->SetKeyInfo(former.get());
    Node* const keyInfo = signature_->GetElement()->GetLastChild();
    const Held<ElementNode> latter = NewElement("latter");
    signature_->SetKeyInfo(latter.get());
    EXPECT_EQ(KeyInfoOutline(), "ds:KeyInfo{latter}");
    EXPECT_EQ(signature_->GetElement()->GetLastChild(), keyInfo);
    ExpectDetached(*former);
    Held<ElementNode> element;
    Seen()->GetElement(element);
    EXPECT_EQ(element, latter);
}

TEST_F(SetKeyInfo, ReplacesCertificatesByContentInTheSameElement) {
    signature_->SetKeyInfo({Certificate("one")});
    Node* const keyInfo = signature_->GetElement()->GetLastChild();
    signature_->SetKeyInfo(NewElement("c").get());
    EXPECT_EQ(KeyInfoOutline(), "ds:KeyInfo{c}");
    EXPECT_EQ(signature_->GetElement()->GetLastChild(), keyInfo);
    EXPECT_FALSE(Seen()->IsX509());
}

TEST_F(SetKeyInfo, ReplacesContentByCertificates) {
    const Held<ElementNode> content = NewElement("c");
    signature_->SetKeyInfo(content.get());
    signature_->SetKeyInfo({Certificate("one")});
    EXPECT_EQ(KeyInfoOutline(), "ds:KeyInfo{ds:X509Data{ds:X509Certificate{\"b25l\"}}}");
    EXPECT_TRUE(Seen()->IsX509());
    EXPECT_EQ(signature_->GetElement()->GetLastChild()->GetFirstChild()->GetNextSibling(), nullptr);
}

TEST_F(SetKeyInfo, TakesThePresentContentAgain) {
    const Held<ElementNode> content = NewElement("c");
    signature_->SetKeyInfo(content.get());
    signature_->SetKeyInfo(content.get());
    EXPECT_EQ(KeyInfoOutline(), "ds:KeyInfo{c}");
}

TEST_F(SetKeyInfo, TakesAPartOfThePresentContent) {
    const Held<ElementNode> content = NewElement("c");
    const Held<ElementNode> part = NewElement("part");
    content->AppendChild(part.get());
    signature_->SetKeyInfo(content.get());
    signature_->SetKeyInfo(part.get());
    EXPECT_EQ(KeyInfoOutline(), "ds:KeyInfo{part}");
    EXPECT_EQ(Outline(*content), "c");
}

TEST_F(SetKeyInfo, IsLastWhateverCameBehindTheFormer) {
    signature_->SetKeyInfo({Certificate("one")});
    signature_->GetElement()->AppendChild(NewElement("Object", "ds").get());
    signature_->SetKeyInfo({Certificate("two")});
    EXPECT_EQ(KeyInfoOutline(), "ds:Object ds:KeyInfo{ds:X509Data{ds:X509Certificate{\"dHdv\"}}}");
}

TEST_F(SetKeyInfo, ReplacesAFormerThatTheCallerRemoved) {
    signature_->SetKeyInfo({Certificate("one")});
    signature_->GetElement()->RemoveChild(signature_->GetElement()->GetLastChild());
    signature_->SetKeyInfo({Certificate("two")});
    EXPECT_EQ(KeyInfoOutline(), "ds:KeyInfo{ds:X509Data{ds:X509Certificate{\"dHdv\"}}}");
}

TEST_F(SetKeyInfo, RefusesNullAndForeignContent) {
    const Held<ElementNode> foreign(new ForeignElement);
    const TypeMismatchException expected(typeid(ElementNodeImpl), typeid(ForeignElement));
    const auto expectRefused = [&] {
        const std::string before = KeyInfoOutline();
        const auto seenBefore = Seen();
        EXPECT_NE(MessageOf<InvalidArgumentException>(
                      [&] { signature_->SetKeyInfo(static_cast<ElementNode*>(nullptr)); }),
                  "");
        EXPECT_EQ(MessageOf<TypeMismatchException>([&] { signature_->SetKeyInfo(foreign.get()); }),
                  expected.what());
        EXPECT_EQ(KeyInfoOutline(), before);
        EXPECT_EQ(Seen(), seenBefore);
    };
    expectRefused();
    signature_->SetKeyInfo({Certificate("one")});
    expectRefused();
    signature_->SetKeyInfo(NewElement("c").get());
    expectRefused();
}

/// `root{middle{ds:Signature}}`: none of the three can become content of the third.
class ContentAroundTheSignature : public testing::TestWithParam<const char*> {
  protected:
    void SetUp() override {
        root_->AppendChild(middle_.get());
        middle_->AppendChild(signature_->GetElement());
    }
    void ExpectRefused(ElementNode& content) {
        const std::string before = Outline(*root_);
        EXPECT_NE(MessageOf<InvalidArgumentException>([&] { signature_->SetKeyInfo(&content); }),
                  "");
        EXPECT_EQ(Outline(*root_), before);
        EXPECT_EQ(signature_->GetElement()->GetParent(), middle_.get());
        ExpectDetached(*root_);
        ExpectSoundLinks(*root_);
    }

    const Held<ElementNode> root_ = NewElement("root");
    const Held<ElementNode> middle_ = NewElement("middle");
    const SignaturePtr signature_ = Blank(*root_);
};

TEST_P(ContentAroundTheSignature, IsRefusedWhereThereIsNoKeyInfoYet) {
    ExpectRefused(ElementNamed(*root_, GetParam()));
}

TEST_P(ContentAroundTheSignature, IsRefusedInAKeyInfo) {
    signature_->SetKeyInfo(NewElement("c").get());
    ExpectRefused(ElementNamed(*root_, GetParam()));
}

INSTANTIATE_TEST_SUITE_P(SetKeyInfo, ContentAroundTheSignature,
                         testing::Values("root", "middle", "Signature"),
                         [](const auto& row) { return std::string(row.param); });

TEST_F(SetKeyInfo, RefusesTheKeyInfoElementAsItsOwnContent) {
    signature_->SetKeyInfo(NewElement("c").get());
    ElementNode& keyInfo = ElementNamed(*signature_->GetElement(), "KeyInfo");
    EXPECT_NE(MessageOf<InvalidArgumentException>([&] { signature_->SetKeyInfo(&keyInfo); }), "");
    EXPECT_EQ(KeyInfoOutline(), "ds:KeyInfo{c}");
}

TEST(SetKeyInfoOfAReadSignature, ReplacesItsKeyInfo) {
    const Held<Document> document = Parsed(DocumentText());
    const SignaturePtr signature = SignatureOf(*document);
    ElementNode& former = ElementNamed(*document, "KeyInfo");
    signature->SetKeyInfo(NewElement("c").get());
    EXPECT_EQ(&ElementNamed(*document, "KeyInfo"), &former);
    EXPECT_EQ(Outline(former), "ds:KeyInfo{c}");

    signature->SetKeyInfo({TestKeys::ToBlob("one")});
    EXPECT_EQ(Outline(*signature->GetElement()->GetLastChild()),
              "ds:KeyInfo{ds:X509Data{ds:X509Certificate{\"b25l\"}}}");
    EXPECT_EQ(signature->GetElement()->GetLastChild()->GetPreviousSibling(),
              &ElementNamed(*document, "SignatureValue"));
}

TEST(SetKeyInfoOfAReadSignature, AddsAKeyInfoWhereThereIsNone) {
    const std::string text = kSignatureText;
    const std::size_t start = text.find("<ds:KeyInfo>");
    const std::string without = text.substr(0, start) + "</ds:Signature>";
    const Held<Document> document = Parsed(DocumentText(without));
    const SignaturePtr signature = SignatureOf(*document);
    signature->SetKeyInfo({TestKeys::ToBlob("one")});
    EXPECT_EQ(Outline(*signature->GetElement()->GetLastChild()),
              "ds:KeyInfo{ds:X509Data{ds:X509Certificate{\"b25l\"}}}");
}

}  // namespace
}  // namespace Saml::Xml::Security
