// Walks the road of a token and tells of every step whether it holds, also behind the one at which
// the library stops.
#pragma once

#include "report.h"
#include <saml/token.h>

#include <string>

// Parses a text with the limits of the hardened road.
boost::intrusive_ptr<Saml::Xml::Document> ParseWithinLimits(const std::string& text);
// The library's verdict, with or without those limits.
// Throws what the library throws, its thrown pointer as an exception like all others.
std::shared_ptr<const Saml::SamlToken> CreateToken(const std::string& text, bool strictLimits,
                                                   Saml::Xml::Security::KeyInfoResolver& resolver,
                                                   std::int64_t tolerance);
// Adds what an accepted token says to `step`.
void Describe(const Saml::SamlToken& token, Step& step);

Report Explain(const std::string& text, bool strictLimits,
               Saml::Xml::Security::KeyInfoResolver& resolver);
