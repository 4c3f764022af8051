#pragma once

#include "oracle/signatures/signature_matrix.h"
#include "saml/token.h"

#include <memory>
#include <string>

/// Tokens that make the choices of the matrix, and how they are read.
namespace SignatureMatrix {

using ResolverHandle = boost::intrusive_ptr<Saml::Xml::Security::KeyInfoResolver>;

ResolverHandle ChainBelowRoot();
ResolverHandle SetOf(const std::string& certificate);

/// Written and signed by xmlsec1, with comments, and characters that have several spellings.
std::string SignedByXmlSec1(const Cell& cell);
/// Signed by the library: where the form allows it with a signature that it builds from nothing,
/// else with one that was there, as a template.
std::string SignedByUs(const Cell& cell);

/// The assertion of a document in this style.
Saml::Xml::ElementNode* AssertionOf(Saml::Xml::Document& document, const Style& style);

/// By the function that fits the style: from the text, or from the element inside its ancestor.
/// \throws What the library throws.
std::shared_ptr<const Saml::SamlToken> TokenFrom(const std::string& xml, const Style& style,
                                                 const ResolverHandle& resolver);

/// The token says what every token of this kind was made to say.
void ExpectWhatWasSaid(const Saml::SamlToken& token, const Kind& kind);

}  // namespace SignatureMatrix
