#include "support/forged_certificate.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace Saml::TestKeys {
namespace {
constexpr unsigned char kBoolean = 0x01;
constexpr unsigned char kInteger = 0x02;
constexpr unsigned char kBitString = 0x03;
constexpr unsigned char kOctetString = 0x04;
constexpr unsigned char kNull = 0x05;
constexpr unsigned char kObjectIdentifier = 0x06;
constexpr unsigned char kUtf8String = 0x0c;
constexpr unsigned char kUtcTime = 0x17;
constexpr unsigned char kSequence = 0x30;
constexpr unsigned char kSet = 0x31;
constexpr unsigned char kVersion = 0xa0;
constexpr unsigned char kExtensions = 0xa3;

constexpr char kRsaEncryption[] = "\x2a\x86\x48\x86\xf7\x0d\x01\x01\x01";
constexpr char kSha256WithRsa[] = "\x2a\x86\x48\x86\xf7\x0d\x01\x01\x0b";
constexpr char kCommonName[] = "\x55\x04\x03";
constexpr char kBasicConstraints[] = "\x55\x1d\x13";

std::string Byte(int value) {
    return std::string(1, static_cast<char>(value));
}

std::string Algorithm(const char* identifier) {
    return DerValue(kSequence, DerValue(kObjectIdentifier, identifier) + DerValue(kNull, ""));
}

std::string Name(const std::string& commonName) {
    return DerValue(kSequence,
                    DerValue(kSet, DerValue(kSequence, DerValue(kObjectIdentifier, kCommonName) +
                                                           DerValue(kUtf8String, commonName))));
}

std::string Bits(const std::string& bytes) {
    return DerValue(kBitString, Byte(0) + bytes);
}

std::string AuthorityExtension() {
    const std::string constraints = DerValue(kSequence, DerValue(kBoolean, "\xff"));
    return DerValue(kSequence, DerValue(kObjectIdentifier, kBasicConstraints) +
                                   DerValue(kBoolean, "\xff") +
                                   DerValue(kOctetString, constraints));
}
}  // namespace

std::string DerValue(unsigned char tag, const std::string& content) {
    std::string length;
    if (content.size() < 0x80) {
        length = Byte(static_cast<int>(content.size()));
    } else {
        for (std::size_t rest = content.size(); rest != 0; rest >>= 8U)
            length.insert(length.begin(), static_cast<char>(rest & 0xffU));
        length.insert(0, Byte(0x80 + static_cast<int>(length.size())));
    }
    return Byte(tag) + length + content;
}

ByteBlob ForgedCertificate::Der() const {
    const std::string serialBytes = Byte(0) + Byte(serial >> 16) + Byte(serial >> 8) + Byte(serial);
    const std::string significant = serialBytes.substr(serial < 0x80 ? 3 : serial < 0x8000 ? 2 : 0);
    std::string content = DerValue(kVersion, DerValue(kInteger, Byte(2)));
    content += DerValue(kInteger, significant);
    content += Algorithm(kSha256WithRsa);
    content += Name(issuer);
    content += DerValue(kSequence, DerValue(kUtcTime, notBefore) + DerValue(kUtcTime, notAfter));
    content += Name(subject);
    content += DerValue(kSequence, Algorithm(kRsaEncryption) + Bits(keyBits));
    if (isAuthority) content += DerValue(kExtensions, DerValue(kSequence, AuthorityExtension()));

    const std::string der =
        DerValue(kSequence, DerValue(kSequence, content) + Algorithm(kSha256WithRsa) +
                                Bits(std::string(128, '\0')));
    return std::make_shared<const std::vector<unsigned char>>(der.begin(), der.end());
}

}  // namespace Saml::TestKeys
