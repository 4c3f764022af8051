#pragma once

#include "saml/token/parsed_assertion.h"
#include "saml/xml/element_node_impl.h"

namespace Saml {

/// Reads an `Assertion` (SAML core 2.3.3) of this library's narrow profile: a fixed order of
/// children and fixed lists of attributes. The signature is read, too, and must cover the whole
/// assertion; whether it holds is not asked here, nor is any other value judged.
///
/// \param assertion  Borrowed; the result's signature keeps it alive. Not to be changed before the
///                   values of the result's attributes are taken, which stand in it.
/// \throws ParseException  The first violation that is met.
/// What `CreateSignatureFromDom` throws besides a `SignatureSyntaxException` passes unchanged.
ParsedAssertion ReadAssertion(Xml::ElementNodeImpl& assertion);

}  // namespace Saml
