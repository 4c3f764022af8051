#include <gtest/gtest.h>
#include <openssl/crypto.h>

#include <iostream>

namespace {

/// Major and minor version, which tell how a libcrypto behaves.
constexpr unsigned long SeriesOf(unsigned long version) {
    return version >> 20;
}

TEST(Libcrypto, IsOfTheVersionThatTheTestsAreBuiltFor) {
    std::cout << "loaded: " << OpenSSL_version(OPENSSL_VERSION) << '\n';
    EXPECT_EQ(SeriesOf(OpenSSL_version_num()), SeriesOf(OPENSSL_VERSION_NUMBER));
}

}  // namespace
