#include "support/signature_oracle.h"

#include "oracle/canonicalization/greater_than_signs.h"
#include "oracle/profile/plain_values.h"
#include "saml/security/openssl_handles.h"
#include "support/canonical_differences.h"
#include "support/documents.h"
#include "support/laws.h"
#include "support/quiet_libxml2.h"
#include "support/signing_key.h"

#include <algorithm>

namespace Fuzz {
namespace {

using namespace Saml::Xml;
using namespace Saml::Xml::Security;

using Bytes = std::vector<unsigned char>;

/// The number at the end of an algorithm's name says which digest it uses.
const EVP_MD* DigestNamed(const std::string& uri) {
    const std::string end = uri.substr(uri.find_last_not_of("0123456789") + 1);
    if (end == "1") return EVP_sha1();
    if (end == "256") return EVP_sha256();
    if (end == "384") return EVP_sha384();
    return EVP_sha512();
}

Bytes DigestOf(const std::string& text, const EVP_MD* method) {
    Bytes digest(EVP_MAX_MD_SIZE);
    unsigned int size = 0;
    EVP_Digest(text.data(), text.size(), digest.data(), &size, method, nullptr);
    digest.resize(size);
    return digest;
}

KeyHandle PublicKey() {
    const Saml::ByteBlob der = Certificate();
    const unsigned char* input = der->data();
    const CertificateHandle certificate(d2i_X509(nullptr, &input, static_cast<long>(der->size())));
    return KeyHandle(X509_get_pubkey(certificate.get()));
}

bool IsSignedBy(EVP_PKEY& key, const std::string& text, const Bytes& value, const EVP_MD* method) {
    const DigestContextHandle context(EVP_MD_CTX_new());
    return EVP_DigestVerifyInit(context.get(), nullptr, method, nullptr, &key) == 1 &&
           EVP_DigestVerify(context.get(), value.data(), value.size(),
                            reinterpret_cast<const unsigned char*>(text.data()), text.size()) == 1;
}

/// The decoded text of the first child element with this name.
Bytes BytesIn(ElementNode& parent, const char* name) {
    std::string text;
    for (Node* const child : ChildrenOf(*parent.GetFirstChildElement(name)))
        if (child->GetType() == NodeType::Text) text += dynamic_cast<TextNode&>(*child).GetText();
    return Oracle::FromBase64(text).value_or(Bytes());
}

/// The signed parts of one document as libxml2 canonicalizes them.
class TheirForms {
  public:
    TheirForms(const std::string& text, Document& document)
        : elements_(ElementsOf(document)), text_(ReadByLibXml2(text)) {}

    bool AreKnown() const { return text_ != nullptr; }

    std::string Of(ElementNode& apex, ElementNode* leftOut = nullptr) const {
        LibXml2::CanonicalPart part;
        part.apex = NumberOf(apex);
        if (leftOut != nullptr) part.leftOut = NumberOf(*leftOut);
        return LibXml2::WithGreaterThanSignsEscaped(text_->CanonicalForm(part));
    }

  private:
    std::size_t NumberOf(ElementNode& element) const {
        return static_cast<std::size_t>(std::find(elements_.begin(), elements_.end(), &element) -
                                        elements_.begin());
    }

    std::vector<ElementNode*> elements_;
    std::unique_ptr<LibXml2::ParsedText> text_;
};

bool HasPrefixLists(Document& document) {
    const std::vector<ElementNode*> elements = ElementsOf(document);
    return std::any_of(elements.begin(), elements.end(), [](ElementNode* element) {
        return element->GetLocalName() == "InclusiveNamespaces";
    });
}

void RequireThatOthersAgree(const TheirForms& forms, Signature& signature) {
    ElementNode& element = *signature.GetElement();
    Require(
        IsSignedBy(*PublicKey(), forms.Of(*element.GetFirstChildElement("SignedInfo")),
                   BytesIn(element, "SignatureValue"), DigestNamed(signature.GetSignatureMethod())),
        "OpenSSL verifies what libxml2 canonicalizes of SignedInfo");
    std::list<boost::intrusive_ptr<SignatureReference>> references;
    signature.GetReferences(references);
    for (const auto& reference : references) {
        ElementNode* const leftOut = reference->IsEnveloped() ? &element : nullptr;
        Require(DigestOf(forms.Of(*reference->GetReferent(), leftOut),
                         DigestNamed(reference->GetDigestMethod())) ==
                    BytesIn(*reference->GetElement(), "DigestValue"),
                "the digest is OpenSSL's of what libxml2 canonicalizes");
    }
}

}  // namespace

void RequireThatOthersVerify(const std::string& text, Document& document, Signature& signature) {
    if (!NamesSurvive(text) || IsCanonicalizedAnotherWay(document)) return;
    if (HasPrefixLists(document) || Mentions(text, "<!ENTITY")) return;
    const TheirForms forms(text, document);
    if (!forms.AreKnown()) return;
    try {
        RequireThatOthersAgree(forms, signature);
    } catch (const std::runtime_error&) {  // libxml2 refuses URIs of namespaces that are relative
    }
}

boost::intrusive_ptr<Signature> FirstSignature(Document& document) {
    boost::intrusive_ptr<Signature> signature;
    for (ElementNode* const element : ElementsOf(document)) {
        if (element->GetLocalName() != "Signature") continue;
        try {
            CreateSignatureFromDom(document.GetRootElement(), element, signature);
        } catch (const SignatureSyntaxException&) {
        }
        break;
    }
    return signature;
}

}  // namespace Fuzz
