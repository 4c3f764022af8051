#pragma once

#include <string>

/// The outcomes that many attacks share, each a class and its whole message.
namespace Saml::Attacks {

/// By the parser, for one of expat's reasons.
std::string NotParsed(const std::string& reason);
std::string NotWellFormed();

/// By the readers of the assertion.
std::string NotFound(const std::string& element);
std::string NotOnlyText(const std::string& element);
std::string NotEmpty(const std::string& element);
std::string UnexpectedAttributes(const std::string& element);

/// By the reader of the signature, for this reason.
std::string RefusedSignatureSyntax(const std::string& reason);
/// While the signature is verified, for this reason.
std::string RefusedVerification(const std::string& reason);

/// `token` below a document type declaration with these declarations.
std::string WithDtd(const std::string& declarations, const std::string& token);

}  // namespace Saml::Attacks
