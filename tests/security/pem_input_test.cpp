#include "saml/security/pem_input.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>

namespace Saml::Xml::Security {
namespace {

TEST(PemInput, GivesTheWholeTextZerosIncluded) {
    const std::string text("a\0b\n", 4);
    const BufferHandle input = OpenPem(text);
    char read[8] = {};
    ASSERT_EQ(BIO_read(input.get(), read, sizeof read), 4);
    EXPECT_EQ(std::string(read, 4), text);
}

TEST(PemInput, GivesNothingOfAnEmptyText) {
    const BufferHandle input = OpenPem(std::string());
    char read[8] = {};
    EXPECT_LE(BIO_read(input.get(), read, sizeof read), 0);
}

TEST(PemInput, RefusesATextLongerThanOpensslCanCount) {
    // Only the length is looked at.
    const std::string_view tooLong("x", std::size_t{std::numeric_limits<int>::max()} + 1);
    EXPECT_EQ(OpenPem(tooLong), nullptr);
}

TEST(PassPhraseCallback, RefusesInsteadOfGivingAnEmptyPassPhrase) {
    char buffer[8] = "before";
    EXPECT_LT(RefusePassPhrase(buffer, sizeof buffer, 0, nullptr), 0);
    EXPECT_STREQ(buffer, "before");
}

}  // namespace
}  // namespace Saml::Xml::Security
