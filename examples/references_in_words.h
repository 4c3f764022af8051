// The references of a signature for people: what was to be digested and what the digest is.
#pragma once

#include "report.h"
#include <saml/token.h>

#include <string>

boost::intrusive_ptr<Saml::Xml::Document> ParseAnew(const std::string& text);
// The signature that is a child of the root. Throws when there is none that can be read.
boost::intrusive_ptr<Saml::Xml::Security::Signature> SignatureOf(Saml::Xml::Document& document);
// Writes the digests that would be right into the document of `signature`.
void UpdateDigests(Saml::Xml::Security::Signature& signature);

// Adds each reference of `signature`, which was read from a document that was parsed from `text`.
// Throws when the digest of one differs, after all were added.
void DescribeReferences(const std::string& text, Saml::Xml::Security::Signature& signature,
                        Step& step);
