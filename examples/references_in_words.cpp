#include "references_in_words.h"

#include <openssl/evp.h>

#include <list>
#include <vector>

namespace {

using namespace Saml::Xml;
using Security::SignatureReference;
using References = std::vector<boost::intrusive_ptr<SignatureReference>>;

// Each costs another parse of the text, and a hostile one may have thousands.
constexpr std::size_t kMeasured = 16;

References ReferencesOf(Security::Signature& signature) {
    std::list<boost::intrusive_ptr<SignatureReference>> references;
    signature.GetReferences(references);
    return References(references.begin(), references.end());
}

std::string NameOf(SignatureReference& reference) {
    return reference.GetURI().empty() ? "the whole" : reference.GetURI();
}

std::string DigestIn(SignatureReference& reference) {
    std::string value;
    EvaluateSimplePath(reference.GetElement(), "Reference/DigestValue", value);
    return value;
}

// Of a method such as "http://www.w3.org/2001/04/xmlenc#sha256"; empty when OpenSSL knows none.
std::string DigestOf(const std::string& bytes, const std::string& method) {
    const EVP_MD* const hash = EVP_get_digestbyname(method.substr(method.find('#') + 1).c_str());
    if (hash == nullptr) return {};
    std::vector<unsigned char> digest(EVP_MAX_MD_SIZE);
    unsigned size = 0;
    EVP_Digest(bytes.data(), bytes.size(), digest.data(), &size, hash, nullptr);
    digest.resize(size);
    return Saml::Base64::Encode(digest);
}

// What the reference `index` of a document like this one digests. Changes the document.
std::string CanonicalBytes(Document& document, std::size_t index) {
    const auto signature = SignatureOf(document);
    const auto reference = ReferencesOf(*signature).at(index);
    const boost::intrusive_ptr<ElementNode> referent(reference->GetReferent());
    if (reference->IsEnveloped())
        signature->GetElement()->GetParent()->RemoveChild(signature->GetElement());
    boost::intrusive_ptr<Security::Canonicalizer> canonicalizer;
    Security::CreateCanonicalizer(reference->GetCanonicalizationMethod(), canonicalizer);
    Saml::StringWriter out;
    canonicalizer->Canonicalize(referent.get(), out);
    return out.data;
}

}  // namespace

boost::intrusive_ptr<Document> ParseAnew(const std::string& text) {
    const boost::intrusive_ptr<XMLHandler> handler(CreateXMLDocumentHandler(0, 0, 0));
    const boost::intrusive_ptr<XMLParser> parser(CreateXMLParser(handler.get()));
    boost::intrusive_ptr<Node> document;
    parser->Parse(text, document);
    return boost::intrusive_ptr<Document>(&dynamic_cast<Document&>(*document));
}

boost::intrusive_ptr<Security::Signature> SignatureOf(Document& document) {
    ElementNode* const root = document.GetRootElement();
    ElementNode* const element =
        root->GetFirstChildElement(ExpandedName{"http://www.w3.org/2000/09/xmldsig#", "Signature"});
    if (element == nullptr) throw Finding("The root has no ds:Signature.");
    boost::intrusive_ptr<Security::Signature> signature;
    Security::CreateSignatureFromDom(root, element, signature);
    return signature;
}

void UpdateDigests(Security::Signature& signature) {
    for (const auto& reference : ReferencesOf(signature))
        reference->UpdateDigest();
}

void DescribeReferences(const std::string& text, Security::Signature& signature, Step& step) {
    const auto right = ParseAnew(text);
    const auto rightSignature = SignatureOf(*right);
    const References rightReferences = ReferencesOf(*rightSignature);
    const References references = ReferencesOf(signature);

    std::string different;
    for (std::size_t i = 0; i < references.size(); ++i) {
        SignatureReference& reference = *references[i];
        step.Tell("reference", NameOf(reference));
        step.Tell("digest method", reference.GetDigestMethod());
        step.Tell("expected", DigestIn(reference));
        rightReferences[i]->UpdateDigest();
        const std::string computed = DigestIn(*rightReferences[i]);
        step.Tell("computed", computed);

        const std::string bytes = i < kMeasured ? CanonicalBytes(*ParseAnew(text), i) : "";
        // A prefix list, which nobody else can give a canonicalizer, may make other bytes.
        const bool isTheSame = DigestOf(bytes, reference.GetDigestMethod()) == computed;
        step.Tell("canonical bytes", isTheSame ? std::to_string(bytes.size()) : "not known");
        if (!reference.VerifyDigest()) different = NameOf(reference);
    }
    if (!different.empty()) throw Finding("The digest of " + different + " differs.");
}
