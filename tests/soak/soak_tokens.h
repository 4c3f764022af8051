#pragma once

#include "saml/token.h"

#include <string>
#include <vector>

/// The tokens of a long run: accepted and refused ones of several kinds, by both resolvers.
namespace Soak {

using ResolverPtr = boost::intrusive_ptr<Saml::Xml::Security::KeyInfoResolver>;

struct Token {
    const char* name;
    std::string xml;
    ResolverPtr resolver;
    /// "accepted", or what the exception says.
    std::string outcome;
    bool fromDom = false;
};

/// In the order in which they are judged again and again. Valid for a month.
std::vector<Token> CreateTokens();

/// "accepted", or what the exception says.
std::string Judge(const Token& token);

}  // namespace Soak
