#pragma once

#include "saml/security/signature_context.h"
#include "saml/security/signature_reference_impl.h"

#include <list>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace Saml::Xml::Security {

class SignatureImpl final : public Signature {
  public:
    /// Reads a `Signature` element, which may be null: then it is not found.
    /// \throws SignatureSyntaxException
    SignatureImpl(ElementNodeImpl& root, ElementNodeImpl* signatureElement);
    /// Builds a new `Signature` element, which stands nowhere.
    SignatureImpl(ElementNodeImpl& root, const std::string& canonicalizationMethod,
                  const std::string& signatureMethod, const std::string& namespacePrefix);

    ElementNode* GetElement() override { return element_.get(); }
    const std::string& GetCanonicalizationMethod() override { return canonicalizationMethod_; }
    const std::string& GetSignatureMethod() override { return signatureMethod_; }
    void GetReferences(std::list<boost::intrusive_ptr<SignatureReference>>& out) override;
    bool Verify(KeyInfoResolver* resolver, const std::set<std::string>& requiredURIs) override;
    void Sign(ByteBlob privateKey) override;
    void AddReference(const std::string& uri, const std::string& digestMethod,
                      boost::intrusive_ptr<SignatureReference>& out) override;
    void SetKeyInfo(const std::list<ByteBlob>& certificates) override;
    void SetKeyInfo(ElementNode* content) override;

  private:
    void ReadSignedInfo(ElementNodeImpl& signedInfo, const NamespaceContext& namespaces);

    void AppendKeyInfoElement(ElementNodeImpl& content);

    bool ReferencesHold(const std::set<std::string>& requiredURIs) const;
    std::list<ByteBlob> CandidateKeys(KeyInfoResolver& resolver) const;
    bool DecodeSignatureValue(std::vector<unsigned char>& signatureValue) const;
    std::string CanonicalSignedInfo() const;
    bool AnyKeyVerifies(const std::list<ByteBlob>& keys, const std::string& signedInfo,
                        const std::vector<unsigned char>& signatureValue) const;

    std::shared_ptr<SignatureContext> context_;
    boost::intrusive_ptr<ElementNodeImpl> root_;
    boost::intrusive_ptr<ElementNodeImpl> element_;
    boost::intrusive_ptr<TextNodeImpl> signatureValue_;
    boost::intrusive_ptr<ElementNodeImpl> signedInfo_;
    boost::intrusive_ptr<KeyInfo> keyInfo_;                 ///< Null without key information.
    boost::intrusive_ptr<ElementNodeImpl> keyInfoElement_;  ///< Set together with `keyInfo_`.
    std::string canonicalizationMethod_;
    std::string signatureMethod_;
    std::list<boost::intrusive_ptr<SignatureReferenceImpl>> references_;
};

}  // namespace Saml::Xml::Security
