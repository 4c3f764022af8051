#include "saml/foundations/checked_cast.h"
#include "saml/security/key_info_readers.h"
#include "saml/security/signature_impl.h"
#include "saml/xml/strict_reading.h"

namespace Saml::Xml::Security {
namespace {

constexpr char kUnexpectedChildren[] = "Unexpected child nodes under 'Signature'";
constexpr char kNullRoot[] = "A signature needs a root element.";

const SkipWsAndCommentsFilter kReadingFilter;

std::string ReadMethod(FilteredNodeCursor& child, std::string_view localName,
                       const NamespaceContext& namespaces) {
    ElementNodeImpl* const method = AsElement(child.Current());
    ExpectSignatureElement(method, localName, namespaces);
    ExpectNoChildren(*method, kReadingFilter);
    std::string algorithm(ReadRequiredAttribute(*method, "Algorithm"));
    child.MoveToNextSibling();
    return algorithm;
}

}  // namespace

SignatureImpl::SignatureImpl(ElementNodeImpl& root, ElementNodeImpl* signatureElement)
    : root_(&root), element_(signatureElement) {
    // The namespaces are looked up within the signature; what surrounds it is collected once.
    const NamespaceContext namespaces(signatureElement != nullptr ? *signatureElement : root);
    ExpectSignatureElement(signatureElement, "Signature", namespaces);
    CheckAttributes(*signatureElement, {}, {"Id"});
    context_ = std::make_shared<SignatureContext>(signatureElement->Prefix());

    FilteredNodeCursor child(signatureElement, kReadingFilter);
    child.MoveToFirstChild();
    ElementNodeImpl* const signedInfo = AsElement(child.Current());
    ExpectSignatureElement(signedInfo, "SignedInfo", namespaces);
    ReadSignedInfo(*signedInfo, namespaces);
    child.MoveToNextSibling();

    ElementNodeImpl* const signatureValue = AsElement(child.Current());
    ExpectSignatureElement(signatureValue, "SignatureValue", namespaces);
    CheckAttributes(*signatureValue, {}, {"Id"});
    signatureValue_ = &ReadTextContent(*signatureValue, kReadingFilter);
    child.MoveToNextSibling();

    ElementNodeImpl* const keyInfo = AsElement(child.Current());
    if (IsSignatureElement(keyInfo, "KeyInfo", namespaces)) {
        keyInfo_ = ReadKeyInfo(*keyInfo, namespaces);
        keyInfoElement_ = keyInfo;
        child.MoveToNextSibling();
    }
    if (child.Current() != nullptr) throw SignatureSyntaxException(kUnexpectedChildren);
}

void SignatureImpl::ReadSignedInfo(ElementNodeImpl& signedInfo,
                                   const NamespaceContext& namespaces) {
    CheckAttributes(signedInfo, {}, {"Id"});
    FilteredNodeCursor child(&signedInfo, kReadingFilter);
    child.MoveToFirstChild();
    canonicalizationMethod_ = ReadMethod(child, "CanonicalizationMethod", namespaces);
    signatureMethod_ = ReadMethod(child, "SignatureMethod", namespaces);
    do {
        // Owned before the list asks for memory, which may not be there.
        const boost::intrusive_ptr<SignatureReferenceImpl> reference(
            new SignatureReferenceImpl(context_, *root_, AsElement(child.Current()), namespaces));
        references_.push_back(reference);
        child.MoveToNextSibling();
    } while (child.Current() != nullptr);
    signedInfo_ = &signedInfo;
}

void CreateSignatureFromDom(ElementNode* root, ElementNode* signatureElement,
                            boost::intrusive_ptr<Signature>& result) {
    if (root == nullptr) throw InvalidArgumentException(kNullRoot);
    ElementNodeImpl* const element =
        signatureElement != nullptr ? CheckedCast<ElementNodeImpl>(signatureElement) : nullptr;
    result.reset(new SignatureImpl(*CheckedCast<ElementNodeImpl>(root), element));
}

}  // namespace Saml::Xml::Security
