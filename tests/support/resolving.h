#pragma once

#include "saml/security.h"
#include "support/test_keys.h"

#include <list>
#include <string>
#include <vector>

/// Asking resolvers, in terms of the names of test certificates and test keys.
namespace Saml::Xml::Security {

using Keys = std::vector<std::vector<unsigned char>>;

/// DER of the certificates with these names; "!garbage", "!empty" and "!null" are what they say.
inline std::list<ByteBlob> Ders(const std::vector<const char*>& names) {
    std::list<ByteBlob> ders;
    for (const std::string name : names) {
        if (name == "!garbage")
            ders.push_back(TestKeys::ToBlob("garbage"));
        else if (name == "!empty")
            ders.push_back(TestKeys::ToBlob(""));
        else if (name == "!null")
            ders.push_back(nullptr);
        else
            ders.push_back(TestKeys::CertificateNamed(name).der);
    }
    return ders;
}

/// What `resolver` offers; it is handed a list that holds something already.
inline Keys KeysOf(KeyInfoResolver& resolver, KeyInfo* keyInfo) {
    std::list<ByteBlob> keys{TestKeys::ToBlob("stale"), nullptr};
    resolver.Resolve(keyInfo, keys);
    Keys contents;
    for (const ByteBlob& key : keys)
        contents.push_back(*key);
    return contents;
}

/// The public key with this name alone; none for null.
inline Keys ExpectedKeys(const char* keyName) {
    return keyName == nullptr ? Keys{} : Keys{*TestKeys::KeyNamed(keyName).publicKey};
}

/// Key information that holds no certificates.
class OtherKeyInfo final : public KeyInfo {
  public:
    bool IsX509() override { return false; }
    void GetElement(boost::intrusive_ptr<ElementNode>& out) override { out = nullptr; }
};

}  // namespace Saml::Xml::Security
