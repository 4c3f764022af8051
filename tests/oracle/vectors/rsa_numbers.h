#pragma once

#include "saml/foundations.h"

#include <vector>

/// RSA keys in DER (RFC 8017 appendix A.1), written from the numbers that test vectors give: bytes,
/// the most significant first, with any number of zeros in front.
namespace Saml::RsaNumbers {

using Number = std::vector<unsigned char>;

ByteBlob PublicKeyDer(const Number& modulus, const Number& exponent);

struct PrivateKey {
    Number modulus;
    Number publicExponent;
    Number privateExponent;
    Number prime1;
    Number prime2;
    Number exponent1;
    Number exponent2;
    Number coefficient;
};
ByteBlob PrivateKeyDer(const PrivateKey& key);

/// The whole key; the primes come out of the exponents (NIST SP 800-56B appendix C).
/// \throws std::runtime_error  The numbers are those of no key.
PrivateKey Completed(const Number& modulus, const Number& publicExponent,
                     const Number& privateExponent);

}  // namespace Saml::RsaNumbers
