#pragma once

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>

/// The seed of a randomised test: `SAMLTOKEN_TEST_SEED` of the environment, else `usual`. Printed,
/// so that a failure can be repeated.
inline std::uint64_t RandomSeed(std::uint64_t usual) {
    const char* const given = std::getenv("SAMLTOKEN_TEST_SEED");
    const std::uint64_t seed = given != nullptr ? std::stoull(given) : usual;
    std::cout << "SAMLTOKEN_TEST_SEED=" << seed << "\n";
    return seed;
}
