#include "oracle/vectors/response_file.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>
#include <utility>

namespace ResponseFile {
namespace {

constexpr char kBlanks[] = " \t\r";

std::string Trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
}

/// Takes "name = value" apart; false when the line has another form.
bool Split(const std::string& line, std::string& name, std::string& value) {
    const std::size_t equals = line.find('=');
    if (equals == std::string::npos) return false;
    name = Trimmed(line.substr(0, equals));
    value = Trimmed(line.substr(equals + 1));
    return !name.empty() && !value.empty();
}

/// Comments; and two exclamation marks, which stand alone between some groups of one file.
bool IsSilent(const std::string& line) {
    return line.empty() || line.front() == '#' || line == "!!";
}

int ValueOf(char digit) {
    static const std::string digits = "0123456789abcdef0123456789ABCDEF";
    const std::size_t place = digits.find(digit);
    if (place == std::string::npos)
        throw std::runtime_error(std::string("no hexadecimal digit: ") + digit);
    return static_cast<int>(place % 16);
}

}  // namespace

Case::Case(std::string place, std::map<std::string, std::string> fields)
    : place_(std::move(place)), fields_(std::move(fields)) {}

const std::string& Case::Text(const std::string& field) const {
    const auto found = fields_.find(field);
    if (found == fields_.end()) throw std::runtime_error(place_ + ": there is no " + field);
    return found->second;
}

std::size_t Case::Number(const std::string& field) const {
    return std::stoul(Text(field));
}

std::vector<unsigned char> Case::Bytes(const std::string& field) const {
    return FromHex(Text(field));
}

std::vector<Case> ReadCases(const std::string& path, const std::string& last,
                            const std::vector<std::string>& shared) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error("cannot read " + path);

    std::vector<Case> cases;
    std::map<std::string, std::string> held;
    std::map<std::string, std::string> own;
    std::size_t number = 0;
    for (std::string line; std::getline(file, line);) {
        const std::string place = path + ":" + std::to_string(++number);
        line = Trimmed(line);
        if (IsSilent(line)) continue;
        const bool isHeading = line.front() == '[' && line.back() == ']';
        if (isHeading) line = line.substr(1, line.size() - 2);
        std::string name;
        std::string value;
        if (!Split(line, name, value)) throw std::runtime_error(place + ": what is " + line);

        if (isHeading || std::find(shared.begin(), shared.end(), name) != shared.end()) {
            held[name] = value;
        } else if (!own.emplace(name, value).second) {
            throw std::runtime_error(place + ": a second " + name);
        }
        if (name != last) continue;
        own.insert(held.begin(), held.end());
        cases.emplace_back(place, std::move(own));
        own.clear();
    }
    if (!own.empty()) throw std::runtime_error(path + " ends within a case");
    return cases;
}

std::vector<unsigned char> FromHex(const std::string& digits) {
    std::vector<unsigned char> bytes;
    for (std::size_t i = 0; i < digits.size();) {
        if (std::string(" \t\r\n").find(digits[i]) != std::string::npos) {
            ++i;
            continue;
        }
        if (i + 1 == digits.size()) throw std::runtime_error("half a byte: " + digits);
        bytes.push_back(
            static_cast<unsigned char>(ValueOf(digits[i]) * 16 + ValueOf(digits[i + 1])));
        i += 2;
    }
    return bytes;
}

std::string PathOf(const std::string& name) {
    return std::string(SAMLTOKEN_CRYPTOGRAPHY_VECTORS) + "/" + name;
}

}  // namespace ResponseFile
