#pragma once

#include "support/bench_tokens.h"

#include <iomanip>
#include <map>
#include <sstream>

namespace Bench {

/// How many groups the tokens have that are compared.
constexpr std::size_t kSmall = 20;
constexpr std::size_t kMiddle = 1000;
constexpr std::size_t kLarge = 20000;
constexpr std::size_t kSizes[] = {kSmall, kMiddle, kLarge};

inline std::map<std::size_t, Token> TokensOfAllSizes() {
    std::map<std::size_t, Token> tokens;
    for (const std::size_t groups : kSizes)
        tokens.emplace(groups, MakeToken(groups));
    return tokens;
}

/// The size of its text, for example "7.0 KB".
inline std::string SizeOf(const Token& token) {
    const double kilobytes = static_cast<double>(token.xml.size()) / 1000;
    std::ostringstream text;
    text << std::fixed << std::setprecision(kilobytes < 10 ? 1 : 0) << kilobytes << " KB";
    return text.str();
}

/// The name of a figure.
inline std::string Named(const std::string& task, const std::string& who, std::size_t groups) {
    return task + ", " + who + ", " + std::to_string(groups);
}

}  // namespace Bench
