#include "oracle/profile/plain_values.h"
#include "saml/foundations.h"
#include "support/laws.h"

#include <openssl/evp.h>

// Any bytes survive encoding, in the text that OpenSSL writes; any text decodes as a model says
// that takes one character after the other.

namespace {

using Bytes = std::vector<unsigned char>;

std::string EncodedByOpenSsl(const Bytes& bytes) {
    Bytes text((bytes.size() + 2) / 3 * 4 + 1);
    EVP_EncodeBlock(text.data(), bytes.data(), static_cast<int>(bytes.size()));
    return reinterpret_cast<const char*>(text.data());
}

bool IsOneOf(const std::string& text, std::initializer_list<const char*> texts) {
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

}  // namespace

void Fuzz::CheckLaws(std::string_view input) {
    const Bytes bytes(input.begin(), input.end());
    const std::string encoded = Saml::Base64::Encode(bytes);
    Require(encoded == EncodedByOpenSsl(bytes), "bytes are encoded as OpenSSL encodes them");
    std::string error;
    Require(Saml::Base64::Decode(encoded, error) == bytes && error.empty(),
            "what is encoded is decoded to itself");

    const auto expected = Oracle::FromBase64(std::string(input));
    const Bytes decoded = Saml::Base64::Decode(std::string(input), error);
    Require(error.empty() == expected.has_value(),
            "a text is refused exactly where the model does");
    Require(decoded == expected.value_or(Bytes()), "a text decodes to the bytes of the model");
    Require(IsOneOf(error, {"", "Truncated Base64!", "Invalid Padding in Base 64!",
                            "Non-Valid Character in Base 64!"}),
            "a refusal has one of the three texts");
}
