#include "saml/security/signature_reference_impl.h"

namespace Saml::Xml::Security {
namespace {

std::string Unresolved(const std::string& uri) {
    return "The URI could not be resolved: " + uri;
}

}  // namespace

ElementNode* SignatureReferenceImpl::GetReferent() {
    return FindReferent(*context_->GetURIResolver()).get();
}

boost::intrusive_ptr<ElementNodeImpl> SignatureReferenceImpl::FindReferent(
    const URIResolver& resolver) const {
    boost::intrusive_ptr<ElementNodeImpl> referent;
    resolver.Resolve(root_.get(), uri_, referent);
    if (!referent) throw MissingReferentException(Unresolved(uri_));
    return referent;
}

bool SignatureReferenceImpl::VerifyDigest() {
    const boost::intrusive_ptr<ElementNodeImpl> referent =
        FindReferent(*context_->GetURIResolver());
    return EqualsDigestValue(ComputeDigest(*referent));
}

bool SignatureReferenceImpl::VerifyDigestOf(ElementNodeImpl& referent, DigestMemo& memo) const {
    const DigestMemo::Key key(&referent, enveloped_ ? EnclosingSignature() : nullptr,
                              canonicalizationMethod_, inclusivePrefixList_, digestMethod_);
    return EqualsDigestValue(memo.Get(key, [&] { return ComputeDigest(referent); }));
}

void SignatureReferenceImpl::UpdateDigest() {
    const boost::intrusive_ptr<ElementNodeImpl> referent =
        FindReferent(*context_->GetURIResolver());
    digestValue_->SetText(Base64::Encode(ComputeDigest(*referent)));
}

// Reference -> SignedInfo -> Signature; null while the reference stands outside a signature.
const NodeImpl* SignatureReferenceImpl::EnclosingSignature() const noexcept {
    const NodeImpl* const signedInfo = element_->Parent();
    return signedInfo != nullptr ? signedInfo->Parent() : nullptr;
}

std::shared_ptr<const CanonicalizerInt> SignatureReferenceImpl::CreateCanonicalizer() const {
    return inclusivePrefixList_.empty()
               ? context_->CreateCanonicalizer(canonicalizationMethod_)
               : context_->CreateCanonicalizer(canonicalizationMethod_, inclusivePrefixList_);
}

SignatureReferenceImpl::Digest SignatureReferenceImpl::ComputeDigest(
    ElementNodeImpl& referent) const {
    const ExcludeNodeFilter filter(enveloped_ ? EnclosingSignature() : nullptr);
    const FilteredNodeCursor apex(&referent, filter);
    const std::shared_ptr<const CanonicalizerInt> canonicalizer = CreateCanonicalizer();
    return context_->CreateHashAlgorithm(digestMethod_)->DigestOf([&](Writer& out) {
        canonicalizer->Canonicalize(apex, out);
    });
}

bool SignatureReferenceImpl::EqualsDigestValue(const Digest& digest) const {
    std::string error;
    const Digest expected = Base64::Decode(digestValue_->Text(), error);
    return error.empty() && expected == digest;
}

}  // namespace Saml::Xml::Security
