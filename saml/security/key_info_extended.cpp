#include "saml/security/key_info_extended.h"

namespace Saml::Xml::Security {

KeyInfoExtended::KeyInfoExtended(ElementNodeImpl& content) : content_(&content) {}

bool KeyInfoExtended::IsX509() {
    return false;
}

void KeyInfoExtended::GetElement(boost::intrusive_ptr<ElementNode>& out) {
    out = content_;
}

}  // namespace Saml::Xml::Security
