#pragma once

#include "saml/security.h"
#include "saml/security/c14n_canonicalizer.h"

#include <memory>

namespace Saml::Xml::Security {

/// The exported canonicalizer: the library's own, over whole subtrees.
class CanonicalizerAdapter final : public Canonicalizer {
  public:
    explicit CanonicalizerAdapter(std::shared_ptr<const CanonicalizerInt> canonicalizer);

    void Canonicalize(Node* node, Writer& out) override;

  private:
    const std::shared_ptr<const CanonicalizerInt> canonicalizer_;
};

}  // namespace Saml::Xml::Security
