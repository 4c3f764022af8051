#pragma once

#include "saml/token.h"
#include "saml/token/parsed_assertion.h"

#include <set>
#include <string>
#include <vector>

namespace Saml {

/// The token, filled once from an assertion that was validated and whose signature holds.
class SamlTokenImpl final : public SamlToken {
  public:
    /// Names are judged here, so a bad one is reported after everything else that may be wrong.
    /// \param xml  The text that `GetXml` gives.
    /// \throws ParseException, ParseException*  As `PrincipalFromUpn` and `ApplyAttributes`.
    SamlTokenImpl(std::string xml, ParsedAssertion&& assertion);

    const std::string& GetId() const override { return id_; }
    const DateTime& GetStartTime() const override { return startTime_; }
    const DateTime& GetExpirationTime() const override { return expirationTime_; }
    const PrincipalId& GetSubject() const override { return subject_; }
    bool IsRenewable() const override { return isRenewable_; }
    bool IsDelegable() const override { return isDelegable_; }
    bool IsSolution() const override { return isSolution_; }
    ConfirmationType GetConfirmationType() const override { return confirmationType_; }
    void GetPersonName(PersonName& name) const override { name = personName_; }
    std::vector<PrincipalId> GetGroups() const override { return groups_; }
    std::vector<DelegateInfo> GetDelegationChain() const override { return delegationChain_; }
    void GetAudience(std::set<std::string>& audience) const override { audience = audience_; }
    std::vector<Advice> GetAdvice() const override { return advice_; }
    const ByteBlob& GetHolderOfKeyCertificate() const override { return holderOfKeyCertificate_; }
    const std::string& GetXml() const override { return xml_; }

  private:
    std::string xml_;
    std::string id_;
    DateTime startTime_;
    DateTime expirationTime_;
    PrincipalId subject_;
    bool isRenewable_ = false;
    bool isDelegable_ = false;
    bool isSolution_ = false;
    PersonName personName_;
    std::vector<PrincipalId> groups_;
    std::vector<DelegateInfo> delegationChain_;
    std::set<std::string> audience_;
    std::vector<Advice> advice_;
    ConfirmationType confirmationType_;
    ByteBlob holderOfKeyCertificate_;
};

}  // namespace Saml
