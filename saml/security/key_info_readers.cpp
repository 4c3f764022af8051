#include "saml/security/key_info_readers.h"

#include "saml/security/key_info_extended.h"
#include "saml/security/x509_key_info.h"
#include "saml/xml/filtered_node_cursor.h"

namespace Saml::Xml::Security {
namespace {
constexpr char kUnknownKeyInfo[] = "Unknown KeyInfo type";
const SkipWsAndCommentsFilter kReadingFilter;

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
}  // namespace

const std::array<KeyInfoReader, 2> kKeyInfoReaders = {ReadCertificates, ReadFreeContent};

boost::intrusive_ptr<KeyInfo> ReadKeyInfo(ElementNodeImpl& keyInfo,
                                          const NamespaceContext& namespaces,
                                          const std::array<KeyInfoReader, 2>& readers) {
    boost::intrusive_ptr<KeyInfo> result = readers.front()(keyInfo, namespaces);
    if (!result) throw SignatureSyntaxException(kUnknownKeyInfo);
    return result;
}

}  // namespace Saml::Xml::Security
