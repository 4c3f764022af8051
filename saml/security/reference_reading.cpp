#include "saml/security/dsig_identifiers.h"
#include "saml/security/signature_reference_impl.h"
#include "saml/xml/strict_reading.h"

#include <utility>

namespace Saml::Xml::Security {
namespace {

constexpr char kUnexpectedChildren[] = "Unexpected child nodes under 'Reference'";
std::string UnsupportedTransform(std::string_view algorithm) {
    return "Unsupported transformation algorithm: " + std::string(algorithm);
}
std::string NoPrefixList(const ElementNodeImpl& element) {
    return "Element '" + element.LocalName() + "' must have at least one attribute: 'PrefixList'";
}

const SkipWsAndCommentsFilter kReadingFilter;

}  // namespace

SignatureReferenceImpl::SignatureReferenceImpl(std::shared_ptr<const SignatureContext> context,
                                               ElementNodeImpl& root,
                                               ElementNodeImpl* referenceElement,
                                               const NamespaceContext& namespaces)
    : context_(std::move(context)), root_(&root), element_(referenceElement) {
    ExpectSignatureElement(referenceElement, "Reference", namespaces);
    CheckAttributes(*referenceElement, {}, {"URI", "Id"});
    uri_ = referenceElement->FindAttribute("URI").value_or("");

    FilteredNodeCursor child(referenceElement, kReadingFilter);
    child.MoveToFirstChild();
    if (IsSignatureElement(AsElement(child.Current()), "Transforms", namespaces)) {
        ReadTransforms(*AsElement(child.Current()), namespaces);
        child.MoveToNextSibling();
    }

    ElementNodeImpl* const digestMethod = AsElement(child.Current());
    ExpectSignatureElement(digestMethod, "DigestMethod", namespaces);
    ExpectNoChildren(*digestMethod, kReadingFilter);
    digestMethod_ = ReadRequiredAttribute(*digestMethod, "Algorithm");
    child.MoveToNextSibling();

    ElementNodeImpl* const digestValue = AsElement(child.Current());
    ExpectSignatureElement(digestValue, "DigestValue", namespaces);
    CheckAttributes(*digestValue, {});
    digestValue_ = &ReadTextContent(*digestValue, kReadingFilter);
    child.MoveToNextSibling();

    if (child.Current() != nullptr) throw SignatureSyntaxException(kUnexpectedChildren);
}

void SignatureReferenceImpl::ReadTransforms(ElementNodeImpl& transforms,
                                            const NamespaceContext& namespaces) {
    CheckAttributes(transforms, {});
    FilteredNodeCursor child(&transforms, kReadingFilter);
    for (child.MoveToFirstChild(); child.Current() != nullptr; child.MoveToNextSibling())
        ReadTransform(AsElement(child.Current()), namespaces);
    transforms_ = &transforms;
}

void SignatureReferenceImpl::ReadTransform(ElementNodeImpl* transform,
                                           const NamespaceContext& namespaces) {
    ExpectSignatureElement(transform, "Transform", namespaces);
    const std::string_view algorithm = ReadRequiredAttribute(*transform, "Algorithm");
    if (algorithm == kEnvelopedSignatureTransform) {
        enveloped_ = true;
    } else if (algorithm == Algorithm::ExclusiveC14N) {
        canonicalizationMethod_ = algorithm;
        ReadPrefixList(*transform, namespaces);
    } else {
        throw SignatureSyntaxException(UnsupportedTransform(algorithm));
    }
}

// Only the first child can be the parameter; whatever else a transform holds is ignored.
void SignatureReferenceImpl::ReadPrefixList(ElementNodeImpl& transform,
                                            const NamespaceContext& namespaces) {
    FilteredNodeCursor child(&transform, kReadingFilter);
    child.MoveToFirstChild();
    const ElementNodeImpl* const parameter = AsElement(child.Current());
    if (!IsElement(parameter, "InclusiveNamespaces", kExclusiveC14NNamespace, namespaces)) return;
    const FoundText prefixList = parameter->FindAttribute("PrefixList");
    if (!prefixList) throw SignatureSyntaxException(NoPrefixList(*parameter));
    inclusivePrefixList_ = *prefixList;
}

}  // namespace Saml::Xml::Security
