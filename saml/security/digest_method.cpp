#include "saml/security/digest_method.h"

#include "saml/foundations.h"

#include <string>

namespace Saml::Xml::Security {
namespace {
std::string InvalidAlgorithmId(DigestId id) {
    return "Invalid algorithm id: " + std::to_string(static_cast<std::int32_t>(id));
}
}  // namespace

const EVP_MD& DigestMethod(DigestId id) {
    switch (id) {
        case DigestId::Sha1:
            return *EVP_sha1();
        case DigestId::Sha224:
            return *EVP_sha224();
        case DigestId::Sha256:
            return *EVP_sha256();
        case DigestId::Sha384:
            return *EVP_sha384();
        case DigestId::Sha512:
            return *EVP_sha512();
    }
    throw InvalidArgumentException(InvalidAlgorithmId(id));
}

}  // namespace Saml::Xml::Security
