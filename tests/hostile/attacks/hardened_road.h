#pragma once

#include "hostile/attacks/attack.h"

#include <string>

/// The road for services that want limits: the text is parsed with them, and without entity
/// declarations, before the assertion is handed over.
namespace Saml::Attacks {

/// The limits that the examples recommend.
constexpr long long kRecommendedSize = 1 << 20;
constexpr long long kRecommendedNodes = 10000;
constexpr long long kRecommendedDepth = 64;

/// What comes of `token` on this road.
std::string OutcomeWithinLimits(const std::string& token, const Resolver& trust,
                                std::int64_t tolerance = DefaultClockTolerance);

/// The outcome when the parse was stopped.
std::string Stopped();

}  // namespace Saml::Attacks
