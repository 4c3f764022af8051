#pragma once

#include "saml/foundations.h"

#include <cstddef>
#include <optional>
#include <string>

/// Certificates as a certificate hierarchy's description wants them, sound or not, made with
/// OpenSSL's programming interface: a thousand of them take seconds.
namespace Chains {

enum class Validity { Current, Expired, NotYetValid };
/// The extension `basicConstraints`.
enum class Constraints { Absent, Authority, NoAuthority };
/// The extension `keyUsage`: absent, with `keyCertSign`, or with `digitalSignature` only.
enum class Usage { Absent, CertSign, Signature };

/// Keys are told by their place in a pool of RSA keys that lasts until the program ends.
constexpr std::size_t kPoolSize = 10;
/// DER, PKCS #1 RSAPublicKey.
Saml::ByteBlob PublicKeyOfPool(std::size_t key);

/// What a certificate says (RFC 5280 section 4), and who really signed it.
struct Description {
    std::string subject;  ///< Common name.
    std::string issuer;   ///< Common name.
    std::size_t key = 0;
    std::size_t signingKey = 0;
    Validity validity = Validity::Current;
    bool isVersion1 = false;  ///< Then it has none of the extensions below.
    Constraints constraints = Constraints::Absent;
    std::optional<int> pathLength = {};
    Usage usage = Usage::Absent;
    bool identifiesKey = false;                        ///< Has a `subjectKeyIdentifier`.
    std::optional<std::size_t> identifiedIssuer = {};  ///< Key in `authorityKeyIdentifier`.
    bool hasUnknownCriticalExtension = false;
};

struct Certificate {
    Saml::ByteBlob der;
    std::string pem;
};
/// Each has a serial number of its own.
/// \throws std::runtime_error when OpenSSL cannot.
Certificate Issue(const Description& description);

/// One line about it, for the message of a failing comparison.
std::string Summary(const Description& description);

}  // namespace Chains
