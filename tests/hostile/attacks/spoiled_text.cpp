#include "hostile/attacks/spoiled_text.h"

#include "saml/foundations.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <stdexcept>

namespace Saml::Attacks {
namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

}  // namespace

Extent ContentOf(const std::string& text, const std::string& name, std::size_t from) {
    const std::string tag = "<" + name + ">";
    const std::size_t begin = text.find(tag, from);
    const std::size_t end = text.find("</" + name + ">", begin);
    if (end == std::string::npos) throw std::runtime_error("no " + name);
    return {begin + tag.size(), end};
}

std::string WithBitFlipped(const std::string& text, std::size_t place, unsigned bit) {
    std::string flipped = text;
    flipped[place] = static_cast<char>(static_cast<unsigned char>(text[place]) ^ (1U << bit));
    return flipped;
}

bool IsBase64Letter(char character) {
    return kAlphabet.find(character) != std::string_view::npos;
}

bool DecodesAsBefore(const std::string& text, Extent base64, const std::string& spoiled) {
    const std::size_t behind = text.size() - base64.end;
    if (spoiled.size() < base64.begin + behind ||
        spoiled.compare(0, base64.begin, text, 0, base64.begin) != 0 ||
        spoiled.compare(spoiled.size() - behind, behind, text, base64.end, behind) != 0)
        return false;
    const std::string now = spoiled.substr(base64.begin, spoiled.size() - base64.begin - behind);
    std::string error;
    return Base64::Decode(now, error) ==
           Base64::Decode(text.substr(base64.begin, base64.end - base64.begin), error);
}

bool IsUnusedBase64(const std::string& text, Extent base64, std::size_t place,
                    const std::string& flipped) {
    const std::size_t padding = text[base64.end - 1] == '=' ? 1 : 0;
    if (text[base64.end - 2] == '=') throw std::runtime_error("two padding characters");
    if (!base64.Holds(place)) return false;
    const char now = flipped[place];
    if (std::string_view("\t\n\r ").find(now) != std::string_view::npos)
        return DecodesAsBefore(text, base64, flipped);
    if (place != base64.end - padding - 1 || !IsBase64Letter(now)) return false;
    const std::size_t unusedBits = 2 * padding;
    return kAlphabet.find(now) >> unusedBits == kAlphabet.find(text[place]) >> unusedBits;
}

std::size_t Tally::Of(const std::string& outcome) const {
    const auto found = counts_.find(outcome);
    return found != counts_.end() ? found->second : 0;
}

void Tally::Report() const {
    for (const auto& [outcome, count] : counts_) {
        std::cout << count << " " << outcome << "\n";
        testing::Test::RecordProperty(outcome, static_cast<int>(count));
    }
}

std::string ClassOf(const std::string& outcome) {
    return outcome.substr(0, std::min(outcome.find(": "), outcome.find('\n')));
}

}  // namespace Saml::Attacks
