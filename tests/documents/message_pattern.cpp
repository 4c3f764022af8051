#include "documents/message_pattern.h"

#include <regex>

namespace Documents {
namespace {

const std::regex kPlaceholder("<[a-z][^<>]*>");

bool BeginsWith(std::string_view text, std::string_view beginning) {
    return text.substr(0, beginning.size()) == beginning;
}

/// The same from the text at `place` of the pattern on.
bool ReadsFrom(std::string_view text, const Pattern& pattern, std::size_t place, const Gap& fills) {
    if (!BeginsWith(text, pattern[place])) return false;
    text.remove_prefix(pattern[place].size());
    if (place + 1 == pattern.size()) return text.empty();
    for (std::size_t end = 0; end <= text.size(); ++end)
        if (ReadsFrom(text.substr(end), pattern, place + 1, fills) && fills(text.substr(0, end)))
            return true;
    return false;
}

}  // namespace

bool Reads(std::string_view text, const Pattern& pattern, const Gap& fills) {
    return ReadsFrom(text, pattern, 0, fills);
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
