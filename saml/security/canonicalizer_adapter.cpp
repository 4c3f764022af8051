#include "saml/security/canonicalizer_adapter.h"

#include "saml/foundations/checked_cast.h"
#include "saml/security/c14n_exclusive.h"
#include "saml/security/c14n_inclusive.h"

#include <utility>

namespace Saml::Xml::Security {
namespace {

constexpr char kNullNode[] = "A null pointer was passed where a node is required.";

std::string Unsupported(const std::string& uri) {
    return "The following canonicalization method is unsupported: " + uri;
}

// Callers know the inclusive form by its identifier with a trailing number sign; signatures know
// the exclusive form only.
std::shared_ptr<const CanonicalizerInt> FindCanonicalizer(const std::string& uri) {
    if (uri == Algorithm::ExclusiveC14N) return std::make_shared<C14NCanonicalizerExclusive>();
    if (uri == Algorithm::InclusiveC14N) return std::make_shared<C14NCanonicalizerInclusive>();
    throw UnsupportedCanonicalizationException(Unsupported(uri));
}

}  // namespace

CanonicalizerAdapter::CanonicalizerAdapter(std::shared_ptr<const CanonicalizerInt> canonicalizer)
    : canonicalizer_(std::move(canonicalizer)) {}

void CanonicalizerAdapter::Canonicalize(Node* node, Writer& out) {
    if (node == nullptr) throw InvalidArgumentException(kNullNode);
    const AcceptAllNodesFilter all;
    canonicalizer_->Canonicalize(FilteredNodeCursor(CheckedCast<NodeImpl>(node), all), out);
}

void CreateCanonicalizer(const std::string& uri, boost::intrusive_ptr<Canonicalizer>& result) {
    result.reset(new CanonicalizerAdapter(FindCanonicalizer(uri)));
}

}  // namespace Saml::Xml::Security
