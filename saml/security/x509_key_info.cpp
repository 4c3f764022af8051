#include "saml/security/x509_key_info.h"

#include "saml/xml/content_nodes_impl.h"
#include "saml/xml/strict_reading.h"

#include <memory>
#include <vector>

namespace Saml::Xml::Security {
namespace {

constexpr char kMalformedBase64[] = "Malformed base64 data";
constexpr char kExtraElements[] = "Unexpected extra element(s) after <X509Data>";

const SkipWsAndCommentsFilter kReadingFilter;

ByteBlob ReadCertificate(ElementNodeImpl& certificate) {
    CheckAttributes(certificate, {});
    std::string error;
    std::vector<unsigned char> bytes =
        Base64::Decode(ReadTextContent(certificate, kReadingFilter).Text(), error);
    if (!error.empty()) throw SignatureSyntaxException(kMalformedBase64);
    return std::make_shared<const std::vector<unsigned char>>(std::move(bytes));
}

boost::intrusive_ptr<ElementNodeImpl> CreateElement(const std::string& prefix,
                                                    std::string_view localName) {
    return boost::intrusive_ptr<ElementNodeImpl>(new ElementNodeImpl(prefix, localName));
}

}  // namespace

// An Id attribute, which xmldsig-core allows here, is refused like any other.
X509KeyInfo::X509KeyInfo(ElementNodeImpl& keyInfoElement, const NamespaceContext& namespaces)
    : element_(&keyInfoElement) {
    ExpectSignatureElement(&keyInfoElement, "KeyInfo", namespaces);
    CheckAttributes(keyInfoElement, {});
    FilteredNodeCursor child(&keyInfoElement, kReadingFilter);
    child.MoveToFirstChild();
    if (child.Current() == nullptr) return;

    ElementNodeImpl* const x509Data = AsElement(child.Current());
    ExpectSignatureElement(x509Data, "X509Data", namespaces);
    ReadX509Data(*x509Data, namespaces);
    child.MoveToNextSibling();
    if (child.Current() != nullptr) throw SignatureSyntaxException(kExtraElements);
}

// Issuer, serial and subject are for people; only certificates can be checked.
void X509KeyInfo::ReadX509Data(ElementNodeImpl& x509Data, const NamespaceContext& namespaces) {
    CheckAttributes(x509Data, {});
    FilteredNodeCursor child(&x509Data, kReadingFilter);
    for (child.MoveToFirstChild(); child.Current() != nullptr; child.MoveToNextSibling()) {
        ElementNodeImpl* const certificate = AsElement(child.Current());
        if (IsSignatureElement(certificate, "X509Certificate", namespaces))
            certificates_.push_back(ReadCertificate(*certificate));
    }
}

X509KeyInfo::X509KeyInfo(const std::string& prefix, const std::list<ByteBlob>& certificates)
    : element_(CreateElement(prefix, "KeyInfo")), certificates_(certificates) {
    const boost::intrusive_ptr<ElementNodeImpl> x509Data = CreateElement(prefix, "X509Data");
    element_->AppendNode(*x509Data);
    for (ByteBlob& certificate : certificates_) {
        if (!certificate) certificate = std::make_shared<const std::vector<unsigned char>>();
        const boost::intrusive_ptr<TextNodeImpl> text(
            new TextNodeImpl(Base64::Encode(*certificate)));
        const boost::intrusive_ptr<ElementNodeImpl> element =
            CreateElement(prefix, "X509Certificate");
        element->AppendNode(*text);
        x509Data->AppendNode(*element);
    }
}

bool X509KeyInfo::IsX509() {
    return true;
}

void X509KeyInfo::GetElement(boost::intrusive_ptr<ElementNode>& out) {
    out = element_;
}

}  // namespace Saml::Xml::Security
