#pragma once

#include "saml/security/digest_id.h"

#include <stdexcept>
#include <string>

namespace Saml::Xml::Security {

/// The digest that NIST's files call by this name, such as "SHA256".
inline DigestId DigestNamed(const std::string& name) {
    static constexpr struct {
        const char* name;
        DigestId id;
    } kDigests[] = {{"SHA1", DigestId::Sha1},
                    {"SHA224", DigestId::Sha224},
                    {"SHA256", DigestId::Sha256},
                    {"SHA384", DigestId::Sha384},
                    {"SHA512", DigestId::Sha512}};
    for (const auto& digest : kDigests)
        if (name == digest.name) return digest.id;
    throw std::runtime_error("no digest is called " + name);
}

}  // namespace Saml::Xml::Security
