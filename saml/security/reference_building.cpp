#include "saml/security/dsig_identifiers.h"
#include "saml/security/signature_reference_impl.h"

#include <utility>

namespace Saml::Xml::Security {
namespace {

void PrependNode(ElementNodeImpl& parent, ElementNodeImpl& child) {
    if (parent.FirstChild() != nullptr)
        parent.InsertBefore(&child, parent.FirstChild());
    else
        parent.AppendNode(child);
}

}  // namespace

SignatureReferenceImpl::SignatureReferenceImpl(std::shared_ptr<const SignatureContext> context,
                                               ElementNodeImpl& root, const std::string& uri,
                                               const std::string& digestMethod)
    : context_(std::move(context)),
      root_(&root),
      element_(context_->CreateElement("Reference")),
      digestValue_(new TextNodeImpl),
      uri_(uri),
      digestMethod_(digestMethod) {
    element_->SetAttribute("URI", uri);
    const boost::intrusive_ptr<ElementNodeImpl> method = context_->CreateElement("DigestMethod");
    method->SetAttribute("Algorithm", digestMethod);
    element_->AppendNode(*method);
    const boost::intrusive_ptr<ElementNodeImpl> value = context_->CreateElement("DigestValue");
    value->AppendNode(*digestValue_);
    element_->AppendNode(*value);
}

// It comes before the canonicalization, whatever the order of the calls: a signature cannot be left
// out of bytes.
void SignatureReferenceImpl::AddEnvelopedSignatureTransform() {
    if (enveloped_) return;
    const boost::intrusive_ptr<ElementNodeImpl> transform =
        CreateTransform(kEnvelopedSignatureTransform);
    PrependNode(RequireTransforms(), *transform);
    enveloped_ = true;
}

void SignatureReferenceImpl::SetCanonicalizationMethod(const std::string& algorithm) {
    std::string method = algorithm;
    ElementNodeImpl& transforms = RequireTransforms();
    ElementNodeImpl* present = nullptr;
    if (!canonicalizationMethod_.empty())
        present = FindTransform(transforms, canonicalizationMethod_);
    if (present != nullptr)
        present->SetAttribute("Algorithm", algorithm);
    else
        transforms.AppendNode(*CreateTransform(algorithm));
    canonicalizationMethod_.swap(method);
}

ElementNodeImpl* SignatureReferenceImpl::FindTransform(const ElementNodeImpl& transforms,
                                                       const std::string& algorithm) {
    for (NodeImpl* node = transforms.FirstChild(); node != nullptr; node = node->NextSibling()) {
        ElementNodeImpl* const element = AsElement(node);
        if (element == nullptr || element->LocalName() != "Transform") continue;
        if (element->FindAttribute("Algorithm") == algorithm) return element;
    }
    return nullptr;
}

ElementNodeImpl& SignatureReferenceImpl::RequireTransforms() {
    if (!transforms_) {
        const boost::intrusive_ptr<ElementNodeImpl> created = context_->CreateElement("Transforms");
        PrependNode(*element_, *created);
        transforms_ = created;
    }
    return *transforms_;
}

boost::intrusive_ptr<ElementNodeImpl> SignatureReferenceImpl::CreateTransform(
    const std::string& algorithm) const {
    boost::intrusive_ptr<ElementNodeImpl> transform = context_->CreateElement("Transform");
    transform->SetAttribute("Algorithm", algorithm);
    return transform;
}

}  // namespace Saml::Xml::Security
