#include "saml/token/signature_coverage.h"

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <algorithm>
#include <list>

namespace Saml {
namespace {
constexpr char kNotCovered[] = "Token's signature must cover the entire token";
}

void RequireWholeAssertionCovered(Xml::Security::Signature& signature,
                                  const std::string& assertionId) {
    const std::string wholeAssertion = "#" + assertionId;
    std::list<boost::intrusive_ptr<Xml::Security::SignatureReference>> references;
    signature.GetReferences(references);
    const bool covered =
        std::any_of(references.begin(), references.end(), [&](const auto& reference) {
            const std::string& uri = reference->GetURI();
            return uri.empty() || uri == wholeAssertion;
        });
    if (!covered) throw ParseException(kNotCovered);
}

}  // namespace Saml
