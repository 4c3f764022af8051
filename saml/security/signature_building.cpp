#include "saml/foundations/checked_cast.h"
#include "saml/security/dsig_identifiers.h"
#include "saml/security/key_info_extended.h"
#include "saml/security/signature_impl.h"
#include "saml/security/x509_key_info.h"

namespace Saml::Xml::Security {
namespace {

constexpr char kNullRoot[] = "A signature needs a root element.";
constexpr char kNullContent[] = "Key information needs a content element.";

void AppendMethod(ElementNodeImpl& signedInfo, const SignatureContext& context,
                  std::string_view localName, const std::string& algorithm) {
    const boost::intrusive_ptr<ElementNodeImpl> method = context.CreateElement(localName);
    method->SetAttribute("Algorithm", algorithm);
    signedInfo.AppendNode(*method);
}

void Detach(NodeImpl& child) {
    if (child.Parent() != nullptr) child.Parent()->RemoveChild(&child);
}

}  // namespace

SignatureImpl::SignatureImpl(ElementNodeImpl& root, const std::string& canonicalizationMethod,
                             const std::string& signatureMethod, const std::string& namespacePrefix)
    : context_(std::make_shared<SignatureContext>(namespacePrefix)),
      root_(&root),
      element_(context_->CreateElement("Signature")),
      signatureValue_(new TextNodeImpl),
      signedInfo_(context_->CreateElement("SignedInfo")),
      canonicalizationMethod_(canonicalizationMethod),
      signatureMethod_(signatureMethod) {
    element_->SetAttribute(DeclarationName(namespacePrefix), kSignatureNamespace);
    element_->AppendNode(*signedInfo_);
    AppendMethod(*signedInfo_, *context_, "CanonicalizationMethod", canonicalizationMethod);
    AppendMethod(*signedInfo_, *context_, "SignatureMethod", signatureMethod);
    const boost::intrusive_ptr<ElementNodeImpl> value = context_->CreateElement("SignatureValue");
    value->AppendNode(*signatureValue_);
    element_->AppendNode(*value);
}

void SignatureImpl::AddReference(const std::string& uri, const std::string& digestMethod,
                                 boost::intrusive_ptr<SignatureReference>& out) {
    const boost::intrusive_ptr<SignatureReferenceImpl> reference(
        new SignatureReferenceImpl(context_, *root_, uri, digestMethod));
    references_.push_back(reference);
    signedInfo_->AppendNode(reference->Element());
    out = reference;
}

void SignatureImpl::SetKeyInfo(const std::list<ByteBlob>& certificates) {
    const boost::intrusive_ptr<X509KeyInfo> created(
        new X509KeyInfo(context_->GetNamespacePrefix(), certificates));
    if (keyInfoElement_) Detach(*keyInfoElement_);
    keyInfo_ = created;
    keyInfoElement_ = created->Element();
    element_->AppendNode(*keyInfoElement_);
}

void SignatureImpl::SetKeyInfo(ElementNode* content) {
    if (content == nullptr) throw InvalidArgumentException(kNullContent);
    ElementNodeImpl& added = *CheckedCast<ElementNodeImpl>(content);
    const boost::intrusive_ptr<KeyInfo> created(new KeyInfoExtended(added));
    if (keyInfoElement_) {
        NodeImpl* const replaced = keyInfoElement_->FirstChild();
        keyInfoElement_->AppendNode(added);
        if (replaced != nullptr && replaced != &added) Detach(*replaced);
    } else {
        AppendKeyInfoElement(added);
    }
    keyInfo_ = created;
}

// The element stands in its place before the content is added: content that stands around the
// signature is refused then, and nothing has changed.
void SignatureImpl::AppendKeyInfoElement(ElementNodeImpl& content) {
    const boost::intrusive_ptr<ElementNodeImpl> keyInfoElement = context_->CreateElement("KeyInfo");
    element_->AppendNode(*keyInfoElement);
    try {
        keyInfoElement->AppendNode(content);
    } catch (...) {
        Detach(*keyInfoElement);
        throw;
    }
    keyInfoElement_ = keyInfoElement;
}

void CreateBlankSignature(ElementNode* root, const std::string& canonicalizationMethod,
                          const std::string& signatureMethod, const std::string& namespacePrefix,
                          boost::intrusive_ptr<Signature>& result) {
    if (root == nullptr) throw InvalidArgumentException(kNullRoot);
    result.reset(new SignatureImpl(*CheckedCast<ElementNodeImpl>(root), canonicalizationMethod,
                                   signatureMethod, namespacePrefix));
}

}  // namespace Saml::Xml::Security
