#include "saml/security/der_conversion.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <memory>
#include <vector>

namespace Saml::Xml::Security {
namespace {

using Bytes = std::vector<unsigned char>;

/// What a decoder is asked about; it finds nothing.
struct Question {
    const unsigned char* input = nullptr;
    long length = 0;
    int count = 0;

    Question* operator()(const unsigned char** place, long size) {
        if (place != nullptr) input = *place;
        length = size;
        ++count;
        return nullptr;
    }
};

TEST(DecodeDer, AsksAboutAllBytes) {
    const ByteBlob der = std::make_shared<const Bytes>(Bytes{0x30, 0x01, 0x02});
    Question question;
    EXPECT_EQ(DecodeDer(der, question), nullptr);
    EXPECT_EQ(question.count, 1);
    EXPECT_EQ(question.input, der->data());
    EXPECT_EQ(question.length, 3);
}

TEST(DecodeDer, DoesNotAskWithoutBytes) {
    Question question;
    EXPECT_EQ(DecodeDer(nullptr, question), nullptr);
    EXPECT_EQ(DecodeDer(std::make_shared<const Bytes>(), question), nullptr);
    EXPECT_EQ(question.count, 0);
}

#if LONG_MAX < LLONG_MAX
// 2 GiB, where OpenSSL counts with 32 bits; elsewhere no machine has what it cannot count.
TEST(DecodeDer, DoesNotAskAboutMoreBytesThanCanBeCounted) {
    Question question;
    EXPECT_EQ(DecodeDer(std::make_shared<const Bytes>(std::size_t{LONG_MAX} + 1), question),
              nullptr);
    EXPECT_EQ(question.count, 0);
}
#endif

}  // namespace
}  // namespace Saml::Xml::Security
