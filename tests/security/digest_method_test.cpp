#include "saml/security/digest_method.h"

#include "saml/foundations.h"
#include "support/thrown.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace Saml::Xml::Security {
namespace {

TEST(DigestMethod, HasTheDigestThatTheNumberStandsFor) {
    EXPECT_EQ(&DigestMethod(static_cast<DigestId>(0)), EVP_sha1());
    EXPECT_EQ(&DigestMethod(static_cast<DigestId>(1)), EVP_sha224());
    EXPECT_EQ(&DigestMethod(static_cast<DigestId>(2)), EVP_sha256());
    EXPECT_EQ(&DigestMethod(static_cast<DigestId>(3)), EVP_sha384());
    EXPECT_EQ(&DigestMethod(static_cast<DigestId>(4)), EVP_sha512());
}

TEST(DigestMethod, RefusesEveryOtherNumber) {
    struct Row {
        std::int32_t id;
        const char* message;
    };
    for (const Row& row :
         {Row{5, "Invalid algorithm id: 5"}, Row{-1, "Invalid algorithm id: -1"},
          Row{std::numeric_limits<std::int32_t>::max(), "Invalid algorithm id: 2147483647"},
          Row{std::numeric_limits<std::int32_t>::min(), "Invalid algorithm id: -2147483648"}})
        EXPECT_EQ(MessageOf<InvalidArgumentException>(
                      [&row] { DigestMethod(static_cast<DigestId>(row.id)); }),
                  row.message);
}

}  // namespace
}  // namespace Saml::Xml::Security
