#pragma once

#include <gtest/gtest.h>

#include <string>

/// What the system's policy does not let OpenSSL do, as some distributions and FIPS providers have
/// it. Asked once, of the libcrypto of this program and of the openssl command, never of the
/// library under test. Each function says who refuses, and nothing where nobody does.
namespace Saml::SystemPolicy {

/// To sign and to verify with SHA-1.
const std::string& AgainstSha1();
/// To make, and to sign with, RSA keys of 512 bits.
const std::string& AgainstShortKeys();

}  // namespace Saml::SystemPolicy

/// These leave the test out, and say why, where a policy is against what it needs.
#define SKIP_WHERE_SHA1_SIGNATURES_ARE_REFUSED()               \
    if (!::Saml::SystemPolicy::AgainstSha1().empty())          \
    GTEST_SKIP() << "signatures with SHA-1 are refused here: " \
                 << ::Saml::SystemPolicy::AgainstSha1()
#define SKIP_WHERE_SHORT_KEYS_ARE_REFUSED()                   \
    if (!::Saml::SystemPolicy::AgainstShortKeys().empty())    \
    GTEST_SKIP() << "RSA keys of 512 bits are refused here: " \
                 << ::Saml::SystemPolicy::AgainstShortKeys()
