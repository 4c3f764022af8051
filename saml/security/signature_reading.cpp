#include "saml/foundations/checked_cast.h"
#include "saml/security/key_info_extended.h"
#include "saml/security/signature_impl.h"
#include "saml/security/x509_key_info.h"
#include "saml/xml/strict_reading.h"

namespace Saml::Xml::Security {
namespace {

constexpr char kUnexpectedChildren[] = "Unexpected child nodes under 'Signature'";
constexpr char kUnknownKeyInfo[] = "Unknown KeyInfo type";
constexpr char kNullRoot[] = "A signature needs a root element.";

const SkipWsAndCommentsFilter kReadingFilter;

std::string ReadMethod(FilteredNodeCursor& child, std::string_view localName,
                       const NamespaceContext& namespaces) {
    ElementNodeImpl* const method = AsElement(child.Current());
    ExpectSignatureElement(method, localName, namespaces);
    ExpectNoChildren(*method, kReadingFilter);
    const std::string& algorithm = ReadRequiredAttribute(*method, "Algorithm");
    child.MoveToNextSibling();
    return algorithm;
}

boost::intrusive_ptr<KeyInfo> ReadCertificates(ElementNodeImpl& keyInfo,
                                               const NamespaceContext& namespaces) {
    return boost::intrusive_ptr<KeyInfo>(new X509KeyInfo(keyInfo, namespaces));
}

boost::intrusive_ptr<KeyInfo> ReadFreeContent(ElementNodeImpl& keyInfo, const NamespaceContext&) {
    FilteredNodeCursor child(&keyInfo, kReadingFilter);
    child.MoveToFirstChild();
    ElementNodeImpl* const content = AsElement(child.Current());
    return boost::intrusive_ptr<KeyInfo>(content != nullptr ? new KeyInfoExtended(*content)
                                                            : nullptr);
}

using KeyInfoReader = boost::intrusive_ptr<KeyInfo> (*)(ElementNodeImpl&, const NamespaceContext&);

// Only the first reader is ever asked: callers rely on every KeyInfo that is read being
// certificates or a refusal, never content that a resolver would have to be trusted with.
constexpr KeyInfoReader kKeyInfoReaders[] = {ReadCertificates, ReadFreeContent};

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
        ReadKeyInfo(*keyInfo, namespaces);
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
        references_.emplace_back(
            new SignatureReferenceImpl(context_, *root_, AsElement(child.Current()), namespaces));
        child.MoveToNextSibling();
    } while (child.Current() != nullptr);
    signedInfo_ = &signedInfo;
}

void SignatureImpl::ReadKeyInfo(ElementNodeImpl& keyInfo, const NamespaceContext& namespaces) {
    const KeyInfoReader read = kKeyInfoReaders[0];
    keyInfo_ = read(keyInfo, namespaces);
    if (!keyInfo_) throw SignatureSyntaxException(kUnknownKeyInfo);
    keyInfoElement_ = &keyInfo;
}

void CreateSignatureFromDom(ElementNode* root, ElementNode* signatureElement,
                            boost::intrusive_ptr<Signature>& result) {
    if (root == nullptr) throw InvalidArgumentException(kNullRoot);
    ElementNodeImpl* const element =
        signatureElement != nullptr ? CheckedCast<ElementNodeImpl>(signatureElement) : nullptr;
    result.reset(new SignatureImpl(*CheckedCast<ElementNodeImpl>(root), element));
}

}  // namespace Saml::Xml::Security
