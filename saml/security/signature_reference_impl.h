#pragma once

#include "saml/security/signature_context.h"
#include "saml/xml/content_nodes_impl.h"
#include "saml/xml/namespace_lookup.h"

#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace Saml::Xml::Security {

/// Digests that one verification has computed already, by everything that decides their input.
class DigestMemo;

class SignatureReferenceImpl final : public SignatureReference {
  public:
    /// Reads a `Reference` element. URIs are resolved at and below `root`.
    /// \throws SignatureSyntaxException
    SignatureReferenceImpl(std::shared_ptr<const SignatureContext> context, ElementNodeImpl& root,
                           ElementNodeImpl* referenceElement, const NamespaceContext& namespaces);
    /// Builds a new `Reference` element without transforms.
    SignatureReferenceImpl(std::shared_ptr<const SignatureContext> context, ElementNodeImpl& root,
                           const std::string& uri, const std::string& digestMethod);

    ElementNode* GetElement() override { return element_.get(); }
    const std::string& GetURI() override { return uri_; }
    ElementNode* GetReferent() override;
    const std::string& GetDigestMethod() override { return digestMethod_; }
    const std::string& GetCanonicalizationMethod() override { return canonicalizationMethod_; }
    bool IsEnveloped() override { return enveloped_; }
    void AddEnvelopedSignatureTransform() override;
    void SetCanonicalizationMethod(const std::string& algorithm) override;
    bool VerifyDigest() override;
    void UpdateDigest() override;

    ElementNodeImpl& Element() const noexcept { return *element_; }
    const std::string& URI() const noexcept { return uri_; }
    /// `GetReferent` by a resolver of the caller's choice.
    boost::intrusive_ptr<ElementNodeImpl> FindReferent(const URIResolver& resolver) const;
    /// `VerifyDigest` for a referent that is known already; equal work is done once for a memo.
    bool VerifyDigestOf(ElementNodeImpl& referent, DigestMemo& memo) const;

  private:
    using Digest = std::vector<unsigned char>;

    void ReadTransforms(ElementNodeImpl& transforms, const NamespaceContext& namespaces);
    void ReadTransform(ElementNodeImpl* transform, const NamespaceContext& namespaces);
    void ReadPrefixList(ElementNodeImpl& transform, const NamespaceContext& namespaces);
    ElementNodeImpl& RequireTransforms();
    static ElementNodeImpl* FindTransform(const ElementNodeImpl& transforms,
                                          const std::string& algorithm);
    boost::intrusive_ptr<ElementNodeImpl> CreateTransform(const std::string& algorithm) const;

    const NodeImpl* EnclosingSignature() const noexcept;
    std::shared_ptr<const CanonicalizerInt> CreateCanonicalizer() const;
    Digest ComputeDigest(ElementNodeImpl& referent) const;
    bool EqualsDigestValue(const Digest& digest) const;

    std::shared_ptr<const SignatureContext> context_;
    boost::intrusive_ptr<ElementNodeImpl> root_;
    boost::intrusive_ptr<ElementNodeImpl> element_;
    boost::intrusive_ptr<TextNodeImpl> digestValue_;
    std::string uri_;
    std::string digestMethod_;
    std::string canonicalizationMethod_;
    std::string inclusivePrefixList_;
    bool enveloped_ = false;
    boost::intrusive_ptr<ElementNodeImpl> transforms_;  ///< Null without transforms.
};

class DigestMemo {
  public:
    /// Referent, excluded signature, canonicalization method, prefix list, digest method.
    using Key = std::tuple<const NodeImpl*, const NodeImpl*, std::string, std::string, std::string>;

    /// The digest stored for `key`, or that which `compute` gives, stored.
    template <class Compute>
    const std::vector<unsigned char>& Get(const Key& key, Compute compute) {
        const auto known = digests_.find(key);
        return known != digests_.end() ? known->second
                                       : digests_.emplace(key, compute()).first->second;
    }

  private:
    std::map<Key, std::vector<unsigned char>> digests_;
};

}  // namespace Saml::Xml::Security
