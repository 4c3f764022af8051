#include "saml/security.h"
#include "support/hand_signed.h"
#include "support/resolving.h"
#include "support/signature_texts.h"
#include "support/test_keys.h"
#include "support/token_forge.h"
#include "threads/many_threads.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Saml::Threads {
namespace {

using namespace Xml;
using namespace Xml::Security;

std::string SignedText() {
    Forge::TokenSpec spec;
    spec.attributes = {{"name", {"one", "two &amp; three"}}};
    return Forge::Sign(Forge::Write(spec), {TestKeys::KeyNamed("leaf").privateKey, Ders({"leaf"})});
}

std::string Navigated(Document& document) {
    ElementNode* const root = document.GetRootElement();
    const std::string assertion = "urn:oasis:names:tc:SAML:2.0:assertion";
    ElementNode* const subject = root->GetFirstChildElement(ExpandedName{assertion, "Subject"});
    std::string told = Outline(document) + subject->GetExpandedName().namespaceUri;
    told += subject->GetNextSiblingElement("Conditions")->GetQualifiedName();
    for (ElementNode* child = GetFirstChildElement(root); child != nullptr;
         child = GetNextSiblingElement(child))
        told += " " + child->GetLocalName();
    std::string value;
    root->GetAttribute(ExpandedName{"", "ID"}, value);
    GetNamespace(subject, value);
    return told + value;
}

std::string QueriedByPath(Document& document) {
    std::string name;
    std::vector<std::string> values;
    EvaluateSimplePath(&document, "Assertion/Subject/NameID", name);
    EvaluateMultiPath(&document, "Assertion/AttributeStatement/Attribute/AttributeValue", values);
    return name + values.at(0) + values.at(1);
}

std::string Serialized(Document& document) {
    StringWriter out;
    document.GetRootElement()->Write(out);
    document.GetRootElement()->WriteFormatted(out);
    return out.data;
}

std::string Verified(Document& document, KeyInfoResolver& resolver) {
    const boost::intrusive_ptr<Signature> signature = SignatureOf(document);
    std::string id;
    document.GetRootElement()->GetAttribute("ID", id);
    return signature->Verify(&resolver, {"#" + id}) ? "holds" : "does not hold";
}

TEST(SharedDocument, IsReadByManyThreads) {
    const Held<Document> document = Parsed(SignedText());
    boost::intrusive_ptr<KeyInfoResolver> resolver;
    CreateTrustSetKeyResolver(Ders({"leaf"}), resolver);
    boost::intrusive_ptr<Canonicalizer> inclusive;
    CreateCanonicalizer(Algorithm::InclusiveC14N, inclusive);
    boost::intrusive_ptr<Canonicalizer> exclusive;
    CreateCanonicalizer(Algorithm::ExclusiveC14N, exclusive);
    const std::string before = Outline(*document);
    ASSERT_EQ(Verified(*document, *resolver), "holds");

    ExpectSameOnManyThreads(400, 6, [&](int kind) {
        const Held<ElementNode> root(document->GetRootElement());
        StringWriter out;
        switch (kind) {
            case 0:
                return Navigated(*document);
            case 1:
                return QueriedByPath(*document);
            case 2:
                return Serialized(*document);
            case 3:
                return Verified(*document, *resolver);
            case 4:
                inclusive->Canonicalize(root.get(), out);
                return out.data;
            default:
                exclusive->Canonicalize(root.get(), out);
                return out.data;
        }
    });
    EXPECT_EQ(Outline(*document), before);
    ExpectSoundLinks(*document);
}

TEST(ParserOfEachThread, BuildsTheSameDocuments) {
    const std::string text = SignedText();
    ExpectSameOnManyThreads(100, 2, [&](int kind) {
        return kind == 0 ? Outline(*Parsed(text)) : Outline(*Parsed(text + "more"));
    });
}

TEST(SignatureOfEachThread, IsTheSame) {
    const ByteBlob& key = TestKeys::KeyNamed("leaf").privateKey;
    const std::list<ByteBlob> certificates = Ders({"leaf"});
    const std::string bare = Forge::Write({});
    ExpectSameOnManyThreads(20, 1, [&](int) { return Forge::Sign(bare, {key, certificates}); });
}

}  // namespace
}  // namespace Saml::Threads
