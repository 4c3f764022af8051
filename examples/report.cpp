#include "report.h"

#include <boost/core/demangle.hpp>

#include <algorithm>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <ostream>
#include <typeinfo>

namespace {

struct Look {
    const char* word;
    const char* colour;
};

Look LookOf(State state) {
    switch (state) {
        case State::Passed:
            return {"ok", "\x1b[32m"};
        case State::Failed:
            return {"FAILED", "\x1b[1;31m"};
        case State::NotReached:
            return {"-", "\x1b[2m"};
    }
    return {"", ""};
}

std::string Padded(const std::string& text, std::size_t width) {
    return text + std::string(width > text.size() ? width - text.size() : 0, ' ');
}

constexpr std::size_t kStateWidth = 8;

}  // namespace

std::string Printable(std::string text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte < 0x20 || byte == 0x7f) text[i] = '?';
        if (byte >= 0x80 && byte < 0xa0 && i > 0 && text[i - 1] == '\xC2')
            text[i - 1] = text[i] = '?';  // U+0080 to U+009F in UTF-8
    }
    return text;
}

std::string InWords(const std::exception& reason) {
    return boost::core::demangle(typeid(reason).name()) + ": " + Printable(reason.what());
}

void WriteText(const Report& report, bool inColour, std::ostream& out) {
    std::size_t width = 0;
    for (const Step& step : report.steps)
        for (const auto& [what, value] : step.facts)
            width = std::max(width, what.size() + 2);

    for (const Step& step : report.steps) {
        const Look look = LookOf(step.state);
        out << (inColour ? look.colour : "") << Padded(look.word, kStateWidth)
            << (inColour ? "\x1b[0m" : "") << step.name << '\n';
        if (!step.why.empty()) out << Padded("", kStateWidth) << step.why << '\n';
        for (const auto& [what, value] : step.facts)
            out << Padded("", kStateWidth) << Padded(what, width) << Printable(value) << '\n';
    }
    out << (report.accepted ? "accepted\n" : "refused\n");
}

void WriteJson(const Report& report, std::ostream& out) {
    using nlohmann::ordered_json;
    constexpr const char* kStates[] = {"passed", "failed", "not reached"};
    ordered_json steps = ordered_json::array();
    for (const Step& step : report.steps) {
        ordered_json facts = ordered_json::object();  // each a list, however often it occurs
        for (const auto& [what, value] : step.facts)
            facts[what].push_back(value);
        ordered_json entry{{"name", step.name}, {"state", kStates[static_cast<int>(step.state)]}};
        if (!step.why.empty()) entry["why"] = step.why;
        entry["facts"] = std::move(facts);
        steps.push_back(std::move(entry));
    }
    ordered_json whole{{"accepted", report.accepted}};
    if (!report.accepted) whole["refusal"] = report.refusal;
    whole["steps"] = std::move(steps);
    out << whole.dump(2, ' ', true, ordered_json::error_handler_t::replace) << '\n';
}
