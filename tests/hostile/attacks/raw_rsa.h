#pragma once

#include <string>

/// RSA without any padding (RFC 8017 section 5), and arithmetic on its numbers, for signatures that
/// no tool makes. Numbers are big-endian texts.
namespace Saml::Attacks::RawRsa {

/// `block` to the power of the private exponent of a test key. Exceeding the modulus, or not of its
/// size, it throws `std::runtime_error`.
std::string Encrypted(const std::string& key, const std::string& block);
/// `signature` to the power of the public exponent, of the size of the modulus.
std::string Decrypted(const std::string& key, const std::string& signature);
std::string Modulus(const std::string& key);

/// Of the size of `left`, or longer where it does not fit.
std::string Sum(const std::string& left, const std::string& right);
std::string Sum(const std::string& left, int right);
std::string Difference(const std::string& left, const std::string& right);
/// The least number whose cube is not less than `number`, of the same size.
std::string RoundedUpCubeRoot(const std::string& number);

}  // namespace Saml::Attacks::RawRsa
