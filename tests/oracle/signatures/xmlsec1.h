#pragma once

#include <string>

/// The xmlsec1 command line as signer and verifier. What it says goes with the failure that it
/// causes: each function throws `std::runtime_error` when the program does not do its work.
namespace XmlSec1 {

/// A signature template (xmldsig-core 4) for a token; xmlsec1 fills in values and certificates.
struct TemplateForm {
    std::string prefix = "ds";   ///< Empty: a default declaration.
    bool declaresPrefix = true;  ///< False: an ancestor declares it.
    std::string uri;
    std::string signatureMethod;
    std::string digestMethod;
    std::string prefixList = {};  ///< Of the exclusive canonicalization; empty: none.
    std::string value = {};       ///< Of `DigestValue` and `SignatureValue` until it is signed.
    bool hasKeyInfo = true;
};
std::string Template(const TemplateForm& form);

/// The text with its template filled: signed by the key of a certificate below "intermediate"; both
/// certificates go along. `ID` attributes of assertions are identifiers.
std::string Sign(const std::string& xml, const std::string& signer = "leaf");

/// Whether the signature in `xml` holds, by a certificate below "root".
bool Verifies(const std::string& xml);

/// The same for a text of which nothing is known: one that is not well-formed, or whose signature
/// cannot be read, is refused like one that does not hold.
bool Accepts(const std::string& xml);

}  // namespace XmlSec1
