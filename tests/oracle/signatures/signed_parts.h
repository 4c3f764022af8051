#pragma once

#include "oracle/signatures/signature_matrix.h"

#include <string>

/// What the signature of a token is about, as libxml2 sees it.
namespace SignatureMatrix {

struct SignedParts {
    std::string referent;        ///< Canonical, without the signature: the digest input.
    std::string signedInfo;      ///< Canonical: the input of the signature method.
    std::string signatureValue;  ///< Decoded.

    bool operator==(const SignedParts& other) const {
        return referent == other.referent && signedInfo == other.signedInfo &&
               signatureValue == other.signatureValue;
    }
};

/// The referent and the prefix list are those of the cell, whatever `xml` says about them: what it
/// says stands in `signedInfo`.
/// \throws std::runtime_error  The text is not well-formed, a part is missing or no Base64.
SignedParts SignedPartsOf(const std::string& xml, const Cell& cell);

/// The Base64 text of the digest of the referent, by libxml2 and OpenSSL alone.
std::string DigestValueOf(const std::string& xml, const Cell& cell);

}  // namespace SignatureMatrix
