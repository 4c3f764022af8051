#include "gate.h"

#include "explain.h"

#include <algorithm>
#include <ctime>

namespace {

constexpr char kScheme[] = "bearer ";
constexpr std::size_t kSchemeSize = sizeof kScheme - 1;
constexpr std::size_t kMaxIdSize = 256;
constexpr std::size_t kMaxReasonSize = 512;
constexpr std::size_t kMaxFieldSize = 32768;  // as a proxy may be told to take it

std::string TooLarge(std::size_t maxBytes) {
    return "The token is larger than " + std::to_string(maxBytes) + " bytes.";
}

bool IsUnreserved(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_' || c == '~';
}

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string EncodedToken(const std::string& authorization) {
    const bool isBearer = authorization.size() > kSchemeSize &&
                          std::equal(kScheme, kScheme + kSchemeSize, authorization.begin(),
                                     [](char expected, char c) { return expected == Lower(c); });
    if (!isBearer) throw Finding("There is no bearer token in the Authorization field.");
    return authorization.substr(kSchemeSize);
}

std::string Decoded(const std::string& encoded) {
    std::string error;
    const std::vector<unsigned char> bytes = Saml::Base64::Decode(encoded, error);
    if (!error.empty()) throw Finding("The bearer token is not Base64: " + error);
    return std::string(bytes.begin(), bytes.end());
}

std::string GroupsInWords(const Saml::SamlToken& token) {
    std::string all;
    for (const Saml::PrincipalId& group : token.GetGroups())
        all += (all.empty() ? "" : ",") + PercentEncoded(group.Domain) + '\\' +
               PercentEncoded(group.Name);
    return all;
}

// A message may quote the token, whatever its length.
std::string Shortened(std::string reason) {
    if (reason.size() <= kMaxReasonSize) return reason;
    std::size_t end = kMaxReasonSize;
    while ((static_cast<unsigned char>(reason[end]) & 0xC0) == 0x80)  // amid a character in UTF-8
        --end;
    return reason.substr(0, end) + "...";
}

}  // namespace

Gate::Gate(const TrustedCertificates& trusted, const Rules& rules)
    : trusted_(trusted), rules_(rules), presented_(rules.maxRemembered, [] {
          return static_cast<ReplayCache::Seconds>(std::time(nullptr));
      }) {}

std::size_t Gate::MaxAuthorizationSize() const {
    return kSchemeSize + (rules_.maxBytes + 2) / 3 * 4;
}

Verdict Gate::Judge(const std::string& authorization) {
    Verdict verdict;
    try {
        // Before anything is decoded: what is refused for its size costs nothing.
        if (authorization.size() > MaxAuthorizationSize()) throw Finding(TooLarge(rules_.maxBytes));
        const std::string text = Decoded(EncodedToken(authorization));
        if (text.size() > rules_.maxBytes) throw Finding(TooLarge(rules_.maxBytes));
        const TrustedCertificates::Resolver resolver = trusted_.Current();
        const auto token = CreateToken(text, true, *resolver, Saml::DefaultClockTolerance);
        CheckCaller(*token);
        verdict.principal = PercentEncoded(token->GetSubject().Name) + '@' +
                            PercentEncoded(token->GetSubject().Domain);
        verdict.groups = GroupsInWords(*token);
        if (std::max(verdict.principal.size(), verdict.groups.size()) > kMaxFieldSize)
            throw Finding("The caller's name or groups are too long for a header field.");
        if (rules_.once) CheckFirstTime(*token);  // last: only what is admitted is remembered
        verdict.admitted = true;
        return verdict;
    } catch (const Finding& finding) {
        verdict.reason = finding.what();
    } catch (const std::exception& refusal) {
        verdict.reason = Shortened(InWords(refusal));
    }
    return verdict;
}

void Gate::CheckCaller(const Saml::SamlToken& token) const {
    // Whoever asks speaks through a proxy: there is no proof that it holds a key.
    if (token.GetConfirmationType() != Saml::ConfirmationType::Bearer)
        throw Finding("The token's holder would have to prove that it holds a key.");

    std::set<std::string> audience;
    token.GetAudience(audience);
    const bool isMeant =
        audience.empty() || std::any_of(audience.begin(), audience.end(), [&](const auto& service) {
            return rules_.audience.count(service) != 0;
        });
    if (!isMeant) throw Finding("The token is meant for other services.");
}

void Gate::CheckFirstTime(const Saml::SamlToken& token) {
    if (token.GetId().size() > kMaxIdSize)
        throw Finding("The token's identifier is too long to be remembered.");
    const ReplayCache::Seconds until =
        token.GetExpirationTime().timeT() + Saml::DefaultClockTolerance;
    switch (presented_.Present(token.GetId(), until)) {
        case ReplayCache::Presented::First:
            return;
        case ReplayCache::Presented::Again:
            throw Finding("The token was presented before.");
        case ReplayCache::Presented::TooLate:
            throw Finding("The token has expired.");
        case ReplayCache::Presented::Full:
            throw Finding("Too many tokens are remembered to take another one.");
    }
}

std::string PercentEncoded(const std::string& text) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string encoded;
    for (const char c : text) {
        if (IsUnreserved(c)) {
            encoded += c;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        encoded += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
    }
    return encoded;
}
