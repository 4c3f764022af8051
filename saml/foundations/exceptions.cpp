#include "saml/foundations.h"
#include "saml/foundations/platform.h"

namespace Saml {
namespace {

std::string TypeMismatch(const std::type_info& expected, const std::type_info& found) {
    return "Type Mismatch: expected: " + ReadableTypeName(expected) +
           ", found: " + ReadableTypeName(found);
}

std::string CryptoFailure(const std::string& detail) {
    return "Crypto Exception: " + detail;
}

}  // namespace

// Every destructor is defined here and not in the header: this ties a class's type information to
// the library, and callers catch the very class that the library throws.

Exception::Exception(const std::string& message) : message_(message) {}
Exception::~Exception() = default;

const char* Exception::what() const noexcept {
    return message_.c_str();
}

SsoException::~SsoException() = default;
InvalidTokenException::~InvalidTokenException() = default;
InvalidSignatureException::~InvalidSignatureException() = default;
ParseException::~ParseException() = default;

TypeMismatchException::TypeMismatchException(const std::type_info& expected,
                                             const std::type_info& found)
    : Exception(TypeMismatch(expected, found)) {}
TypeMismatchException::~TypeMismatchException() = default;

InvalidArgumentException::~InvalidArgumentException() = default;
InternalErrorException::~InternalErrorException() = default;

namespace Xml {

XMLParseException::XMLParseException(const std::string& message, std::uint32_t stoppedAt)
    : Exception(message), line(stoppedAt) {}
XMLParseException::~XMLParseException() = default;

ParsingAbortedException::ParsingAbortedException() : Exception(std::string()) {}
ParsingAbortedException::~ParsingAbortedException() = default;

namespace Security {

CryptoException::CryptoException(const std::string& detail) : Exception(CryptoFailure(detail)) {}
CryptoException::~CryptoException() = default;

XmlSecurityException::~XmlSecurityException() = default;
UnsupportedCanonicalizationException::~UnsupportedCanonicalizationException() = default;
UnsupportedHashAlgorithmException::~UnsupportedHashAlgorithmException() = default;
UnsupportedSignAlgorithmException::~UnsupportedSignAlgorithmException() = default;
SignatureSyntaxException::~SignatureSyntaxException() = default;
SignatureGenerationException::~SignatureGenerationException() = default;
SignatureVerificationException::~SignatureVerificationException() = default;
MissingReferentException::~MissingReferentException() = default;
DuplicateURIException::~DuplicateURIException() = default;

}  // namespace Security
}  // namespace Xml
}  // namespace Saml
