#pragma once

#include "saml/security.h"
#include "support/test_keys.h"

#include <list>
#include <string>
#include <utility>

/// Signatures made without the library: canonical texts are written by hand, digests and signature
/// values come from the openssl command line.
namespace Saml::Xml::Security::HandSigned {

/// The Base64 text of a digest; `digestName` as openssl calls it ("sha256").
std::string DigestValue(const std::string& digestName, const std::string& bytes);
/// The Base64 text of an RSA signature.
std::string SignatureValue(const std::string& digestName, const TestKeys::Key& key,
                           const std::string& bytes);

/// A `Reference` and what it refers to.
struct ReferenceForm {
    std::string uri;
    std::string canonicalReferent;  ///< The digest input.
    bool enveloped = true;
    std::string prefixList = {};
    const char* digestMethod = Algorithm::Sha256;
    const char* digestName = "sha256";
};

/// The three elements, each in its canonical form, with the prefix `ds`.
std::string Reference(const ReferenceForm& form);
std::string SignedInfo(const std::string& references,
                       const std::string& signatureMethod = Algorithm::RsaSha256,
                       const std::string& canonicalizationMethod = Algorithm::ExclusiveC14N);
std::string SignatureElement(const std::string& signedInfo, const std::string& signatureValue,
                             const std::string& keyInfo = {});

/// The key that signs where a test does not care.
const TestKeys::Key& UsualKey();
/// A `Signature` over these references, by the usual key with SHA-256.
std::string Signed(const std::string& references, const std::string& keyInfo = {});

/// Offers the keys that it was given, and remembers what it was asked.
class PresetResolver final : public KeyInfoResolver {
  public:
    explicit PresetResolver(std::list<ByteBlob> keys) : keys_(std::move(keys)) {}

    void Resolve(KeyInfo* keyInfo, std::list<ByteBlob>& keys) override {
        ++asked;
        wasEmpty = keys.empty();
        lastKeyInfo = keyInfo;
        keys = keys_;
    }

    int asked = 0;
    bool wasEmpty = false;  ///< The list that came with the last question.
    boost::intrusive_ptr<KeyInfo> lastKeyInfo;

  private:
    const std::list<ByteBlob> keys_;
};

}  // namespace Saml::Xml::Security::HandSigned
