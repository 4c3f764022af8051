#pragma once

#include "oracle/profile/relax_ng_grammar.h"

#include <string>
#include <vector>

/// The examples of docs/interop.md, and the grammar beside it.
namespace InteropPage {

/// docs/assertion.rng.
const LibXml2::RelaxNgGrammar& Grammar();

/// The fenced blocks of XML on the page.
std::vector<std::string> XmlBlocks();

/// The page's assertion with present dates, to be signed by `XmlSec1::Sign`.
std::string BearerTemplate();
/// The same with the page's other confirmation, for the certificate "self-signed".
std::string HolderOfKeyTemplate();

}  // namespace InteropPage
