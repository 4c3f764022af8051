#include "documents/message_pattern.h"

#include <regex>

namespace Documents {
namespace {

const std::regex kPlaceholder("<[a-z][^<>]*>");

bool BeginsWith(std::string_view text, std::string_view beginning) {
    return text.substr(0, beginning.size()) == beginning;
}

/// How far a text was read: to where, and by how many pieces of the pattern.
struct Reading {
    std::size_t pieces;
    std::size_t at;
};

}  // namespace

bool Reads(std::string_view text, const Pattern& pattern, const Gap& fills) {
    if (!BeginsWith(text, pattern.front())) return false;
    std::vector<Reading> open{{1, pattern.front().size()}};
    while (!open.empty()) {
        const Reading reading = open.back();
        open.pop_back();
        if (reading.pieces == pattern.size()) {
            if (reading.at == text.size()) return true;
            continue;
        }
        const std::string& piece = pattern[reading.pieces];
        const bool isLast = reading.pieces + 1 == pattern.size();
        for (std::size_t gapEnd = text.find(piece, reading.at); gapEnd != std::string_view::npos;
             gapEnd = text.find(piece, gapEnd + 1)) {
            const std::size_t end = gapEnd + piece.size();
            if (isLast && end != text.size()) continue;
            if (fills(text.substr(reading.at, gapEnd - reading.at)))
                open.push_back({reading.pieces + 1, end});
        }
    }
    return false;
}

bool IsPlaceholder(std::string_view text) {
    return std::regex_match(text.begin(), text.end(), kPlaceholder);
}

Pattern PatternOf(std::string_view message) {
    Pattern pattern(1);
    std::match_results<std::string_view::const_iterator> found;
    while (std::regex_search(message.begin(), message.end(), found, kPlaceholder)) {
        pattern.back() = std::string(found.prefix().first, found.prefix().second);
        pattern.emplace_back();
        message.remove_prefix(static_cast<std::size_t>(found.suffix().first - message.begin()));
    }
    pattern.back() = std::string(message);
    return pattern;
}

std::string Written(const Pattern& pattern) {
    std::string text = pattern.front();
    for (std::size_t i = 1; i < pattern.size(); ++i)
        text += "<>" + pattern[i];
    return text;
}

}  // namespace Documents
