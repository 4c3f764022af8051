// Whether a caller may pass, by the token in the Authorization field of its request.
#pragma once

#include "replay_cache.h"
#include "trusted_certificates.h"

#include <cstddef>
#include <set>
#include <string>

struct Verdict {
    bool admitted = false;
    std::string principal{};  // name@domain, and
    std::string groups{};     // domain\name,...: no other character of a part needs escaping
    std::string reason{};     // of a refusal: one printable line
};

// What the gate asks of a token beyond what the library checks.
struct Rules {
    std::size_t maxBytes = 65536;        // of the assertion's text
    std::set<std::string> audience{};    // what the services behind the gate are called
    bool once = false;                   // whether a token is good for one request
    std::size_t maxRemembered = 100000;  // of those tokens
};

class Gate {
  public:
    Gate(const TrustedCertificates& trusted, const Rules& rules);

    // `authorization` is the field's value: Bearer and the Base64 of the assertion's text.
    // Threads: any number at once.
    Verdict Judge(const std::string& authorization);

    // How long a field may be that is worth reading.
    std::size_t MaxAuthorizationSize() const;

  private:
    void CheckCaller(const Saml::SamlToken& token) const;
    void CheckFirstTime(const Saml::SamlToken& token);

    const TrustedCertificates& trusted_;
    const Rules rules_;
    ReplayCache presented_;
};

// Percent-encodes all but the unreserved characters of RFC 3986, so that what separates the parts
// of a field occurs in none of them.
std::string PercentEncoded(const std::string& text);
