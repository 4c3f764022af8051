// What an examination found, step by step, and how it is shown: aligned on a terminal, plain in a
// pipe, as JSON for machines.
#pragma once

#include <iosfwd>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

enum class State { Passed, Failed, NotReached };

struct Step {
    std::string name;
    State state = State::Passed;
    std::string why{};                                         // of a failure
    std::vector<std::pair<std::string, std::string>> facts{};  // a name may occur several times

    void Tell(const std::string& what, const std::string& value) {
        facts.emplace_back(what, value);
    }
};

// A finding of the examination's own, which needs no class in front of it.
struct Finding : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Report {
    bool accepted = false;
    std::string refusal;  // class and message; empty when accepted
    std::vector<Step> steps;
};

// Texts of a token come from outside: none may steer the terminal or feign a line of our own.
std::string Printable(std::string text);
// "Class: message" of an exception, printable.
std::string InWords(const std::exception& reason);

void WriteText(const Report& report, bool inColour, std::ostream& out);
void WriteJson(const Report& report, std::ostream& out);
