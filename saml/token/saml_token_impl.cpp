#include "saml/token/saml_token_impl.h"

#include "saml/token/principal_rules.h"
#include "saml/token/token_attributes.h"

#include <utility>

namespace Saml {
namespace {

PrincipalId PrincipalFromName(const NameRecord& name) {
    return PrincipalFromUpn(name.format, name.value);
}

bool IsAboveZero(const std::optional<std::uint64_t>& count) {
    return count && *count > 0;
}

std::vector<DelegateInfo> DelegationChain(const std::vector<ParsedDelegate>& delegates) {
    std::vector<DelegateInfo> chain;
    chain.reserve(delegates.size());
    for (const ParsedDelegate& delegate : delegates)
        chain.push_back({PrincipalFromName(delegate.nameId), delegate.instant});
    return chain;
}

}  // namespace

SamlToken::SamlToken() = default;
SamlToken::~SamlToken() = default;

SamlTokenImpl::SamlTokenImpl(std::string xml, ParsedAssertion&& assertion)
    : xml_(std::move(xml)),
      id_(std::move(assertion.id)),
      startTime_(assertion.conditions.notBefore),
      expirationTime_(assertion.conditions.notOnOrAfter),
      subject_(PrincipalFromName(assertion.subject.nameId)),
      confirmationType_(assertion.subject.confirmation.method),
      holderOfKeyCertificate_(std::move(assertion.subject.confirmation.certificate)) {
    ParsedConditions& conditions = assertion.conditions;
    isRenewable_ = conditions.renewal && IsAboveZero(conditions.renewal->count);
    isDelegable_ = IsAboveZero(conditions.proxyCount);
    if (assertion.advice) advice_ = std::move(*assertion.advice);
    if (assertion.attributes) {
        TokenAttributes attributes = ApplyAttributes(std::move(*assertion.attributes));
        isSolution_ = attributes.isSolution;
        personName_ = std::move(attributes.personName);
        groups_ = std::move(attributes.groups);
    }
    if (conditions.delegation) delegationChain_ = DelegationChain(*conditions.delegation);
    if (conditions.audience) audience_ = std::move(*conditions.audience);
}

}  // namespace Saml
