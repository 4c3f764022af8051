#include "saml/security/signature_impl.h"

namespace Saml::Xml::Security {
namespace {

constexpr char kNoKey[] = "No verification key available.";
constexpr char kNullResolver[] = "A signature cannot be verified without a key resolver.";

}  // namespace

bool SignatureImpl::Verify(KeyInfoResolver* resolver, const std::set<std::string>& requiredURIs) {
    if (resolver == nullptr) throw InvalidArgumentException(kNullResolver);
    // Reference validation, xmldsig-core 3.2.1. It comes first: nobody is asked for a key on
    // behalf of a document that was altered.
    if (!ReferencesHold(requiredURIs)) return false;

    // Signature validation, xmldsig-core 3.2.2.
    const std::list<ByteBlob> keys = CandidateKeys(*resolver);
    if (keys.empty()) throw SignatureVerificationException(kNoKey);
    std::vector<unsigned char> signatureValue;
    if (!DecodeSignatureValue(signatureValue)) return false;
    return AnyKeyVerifies(keys, CanonicalSignedInfo(), signatureValue);
}

// Every reference is checked, also after a mismatch: a reference that cannot be resolved is an
// error even when an earlier digest differs.
bool SignatureImpl::ReferencesHold(const std::set<std::string>& requiredURIs) const {
    IndexedURIResolver resolver(*root_);
    for (const auto& reference : references_)
        resolver.Expect(reference->URI());
    for (const std::string& uri : requiredURIs)
        resolver.Expect(uri);

    DigestMemo memo;
    bool digestsMatch = true;
    std::set<std::string> pending = requiredURIs;
    for (const auto& reference : references_) {
        const boost::intrusive_ptr<ElementNodeImpl> referent = reference->FindReferent(resolver);
        digestsMatch = reference->VerifyDigestOf(*referent, memo) && digestsMatch;
        for (auto uri = pending.begin(); uri != pending.end();) {
            boost::intrusive_ptr<ElementNodeImpl> covered;
            resolver.Resolve(referent.get(), *uri, covered);
            uri = covered ? pending.erase(uri) : std::next(uri);
        }
    }
    return digestsMatch && pending.empty();
}

std::list<ByteBlob> SignatureImpl::CandidateKeys(KeyInfoResolver& resolver) const {
    std::list<ByteBlob> keys;
    resolver.Resolve(keyInfo_.get(), keys);
    return keys;
}

bool SignatureImpl::DecodeSignatureValue(std::vector<unsigned char>& signatureValue) const {
    if (signatureValue_->Text().empty()) return false;
    std::string error;
    signatureValue = Base64::Decode(signatureValue_->Text(), error);
    return error.empty();
}

bool SignatureImpl::AnyKeyVerifies(const std::list<ByteBlob>& keys, const std::string& signedInfo,
                                   const std::vector<unsigned char>& signatureValue) const {
    const auto* const bytes = reinterpret_cast<const unsigned char*>(signedInfo.data());
    for (const ByteBlob& key : keys) {
        try {
            const std::shared_ptr<VerifyAlgorithm> verifier =
                context_->CreateVerifyAlgorithm(signatureMethod_, key);
            if (verifier->Verify(bytes, signedInfo.size(), signatureValue)) return true;
        } catch (const CryptoException& failure) {
            // A bad key ends the search; skipping it would hide a broken resolver.
            throw SignatureVerificationException(failure.what());
        }
    }
    return false;
}

}  // namespace Saml::Xml::Security
