#pragma once

#include "saml/token.h"

#include <set>
#include <string>
#include <vector>

/// All that a token says, but its text, in one form for a token and for a prediction.
namespace Oracle {

struct Account {
    std::string id;
    std::string start;
    std::string end;
    std::string subject;
    bool renewable = false;
    bool delegable = false;
    bool solution = false;
    bool holderOfKey = false;
    std::string firstName;
    std::string lastName;
    std::vector<std::string> groups;
    std::vector<std::string> delegates;
    std::set<std::string> audience;
    std::vector<std::string> advice;
    std::vector<unsigned char> certificate;
};

std::string PrincipalAccount(const std::string& name, const std::string& domain);
std::string AttributeAccount(const Saml::SamlAttribute& attribute);
std::string Told(const Account& account);
Account AccountOf(const Saml::SamlToken& token);

}  // namespace Oracle
