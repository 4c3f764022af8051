#include "saml/security/signature_impl.h"

namespace Saml::Xml::Security {

void SignatureImpl::GetReferences(std::list<boost::intrusive_ptr<SignatureReference>>& out) {
    std::list<boost::intrusive_ptr<SignatureReference>> copy(references_.begin(),
                                                             references_.end());
    out.swap(copy);
}

// Signed content is canonicalized whole: no filter hides anything of SignedInfo.
std::string SignatureImpl::CanonicalSignedInfo() const {
    const AcceptAllNodesFilter all;
    StringWriter canonical;
    context_->CreateCanonicalizer(canonicalizationMethod_)
        ->Canonicalize(FilteredNodeCursor(signedInfo_.get(), all), canonical);
    return std::move(canonical.data);
}

}  // namespace Saml::Xml::Security
