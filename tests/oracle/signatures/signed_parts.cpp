#include "oracle/signatures/signed_parts.h"

#include "oracle/canonicalization/libxml2_canonicalizer.h"

#include <openssl/evp.h>

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace SignatureMatrix {
namespace {

constexpr char kSaml[] = "urn:oasis:names:tc:SAML:2.0:assertion";
constexpr char kDsig[] = "http://www.w3.org/2000/09/xmldsig#";

std::size_t First(const LibXml2::ParsedText& text, const char* namespaceUri,
                  const char* localName) {
    const std::vector<std::size_t> numbers = text.ElementsNamed(namespaceUri, localName);
    if (numbers.empty()) throw std::runtime_error(std::string("there is no ") + localName);
    return numbers.front();
}

std::string CanonicalReferent(const LibXml2::ParsedText& text, const Cell& cell) {
    LibXml2::CanonicalPart part;
    part.apex = cell.uri.namesTheAssertion ? First(text, kSaml, "Assertion") : 0;
    part.leftOut = First(text, kDsig, "Signature");
    std::istringstream words(cell.Prefixes());
    part.prefixes.assign(std::istream_iterator<std::string>(words), {});
    return text.CanonicalForm(part);
}

std::string CanonicalElement(const LibXml2::ParsedText& text, const char* localName) {
    LibXml2::CanonicalPart part;
    part.apex = First(text, kDsig, localName);
    return text.CanonicalForm(part);
}

/// RFC 4648 section 4, leaving out white space; what follows a padding character is not looked at,
/// nor are the bits that no byte needs.
std::string FromBase64(const std::string& text) {
    const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string bytes;
    std::uint32_t pending = 0;
    int bits = 0;
    for (const char character : text) {
        if (character == '=') break;
        if (std::string(" \t\r\n").find(character) != std::string::npos) continue;
        const std::size_t value = alphabet.find(character);
        if (value == std::string::npos) throw std::runtime_error("no Base64");
        pending = (pending << 6U | static_cast<std::uint32_t>(value)) & 0xFFFFU;
        bits += 6;
        if (bits < 8) continue;
        bits -= 8;
        bytes += static_cast<char>(pending >> bits & 0xFFU);
    }
    return bytes;
}

/// In a canonical form there is a `<` only where a tag begins.
std::string TextOf(const std::string& canonicalElement) {
    const std::size_t begin = canonicalElement.find('>') + 1;
    return canonicalElement.substr(begin, canonicalElement.find('<', begin) - begin);
}

const unsigned char* Bytes(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

}  // namespace

SignedParts SignedPartsOf(const std::string& xml, const Cell& cell) {
    const LibXml2::ParsedText text(xml);
    return {CanonicalReferent(text, cell), CanonicalElement(text, "SignedInfo"),
            FromBase64(TextOf(CanonicalElement(text, "SignatureValue")))};
}

std::string DigestValueOf(const std::string& xml, const Cell& cell) {
    const std::string input = CanonicalReferent(LibXml2::ParsedText(xml), cell);
    std::string digest(EVP_MAX_MD_SIZE, '\0');
    unsigned length = 0;
    if (EVP_Digest(input.data(), input.size(), reinterpret_cast<unsigned char*>(digest.data()),
                   &length, EVP_get_digestbyname(cell.digest.openSslName), nullptr) != 1)
        throw std::runtime_error("OpenSSL does not digest");
    std::string text(4 * EVP_MAX_MD_SIZE, '\0');
    const int written = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
                                        Bytes(digest), static_cast<int>(length));
    return text.substr(0, static_cast<std::size_t>(written));
}

}  // namespace SignatureMatrix
