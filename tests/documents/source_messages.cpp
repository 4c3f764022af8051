#include "documents/source_messages.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <stdexcept>

namespace Documents {
namespace {

namespace fs = std::filesystem;

/// A source file without its comments and includes, and with a quoted number in the place of each
/// string literal.
class Skeleton {
  public:
    explicit Skeleton(const std::string& source) : source_(source) {
        while (at_ < source_.size()) {
            if (Stands("//") || Stands("#include"))
                at_ = source_.find('\n', at_);
            else if (Stands("/*"))
                at_ = source_.find("*/", at_) + 2;
            else if (source_[at_] == '"')
                TakeLiteral();
            else if (source_[at_] == '\'')
                SkipCharacter();
            else
                code += source_[at_++];
        }
    }

    std::string code;
    std::vector<std::string> literals;

  private:
    bool Stands(const std::string& text) const {
        return source_.compare(at_, text.size(), text) == 0;
    }

    void TakeLiteral() {
        if (!code.empty() && code.back() == 'R')
            throw std::invalid_argument("a raw string literal");
        std::string literal;
        for (++at_; source_.at(at_) != '"'; ++at_)
            literal += source_[at_] == '\\' ? Escaped(source_.at(++at_)) : source_[at_];
        ++at_;
        const std::size_t last = code.find_last_not_of(" \n");
        if (last != std::string::npos && code[last] == '"') {
            literals.back() += literal;
        } else {
            code += '"' + std::to_string(literals.size()) + '"';
            literals.push_back(literal);
        }
    }

    void SkipCharacter() {
        for (++at_; source_.at(at_) != '\''; ++at_)
            if (source_[at_] == '\\') ++at_;
        ++at_;
    }

    // Numbers of characters stand in no message: their digits may stay.
    static char Escaped(char letter) {
        const std::string letters = "nrtvf";
        const std::size_t place = letters.find(letter);
        return place == std::string::npos ? letter : "\n\r\t\v\f"[place];
    }

    const std::string& source_;
    std::size_t at_ = 0;
};

/// By the name of a constant or function, or by the quoted number of a literal: what is thrown with
/// it.
std::map<std::string, std::set<std::string>> ThrownClasses(const std::string& code) {
    static const std::regex kThrow(R"rx(\bthrow\s+(new\s+)?(?:\w+::)*(\w+)\(\s*("?\w+"?))rx");
    std::map<std::string, std::set<std::string>> classes;
    for (std::sregex_iterator found(code.begin(), code.end(), kThrow), end; found != end; ++found)
        classes[(*found)[3]].insert((*found)[2].str() + ((*found)[1].matched ? "*" : ""));
    return classes;
}

bool IsScope(const std::string& code, std::size_t place) {
    return code.compare(place, 2, "::") == 0 ||
           (place > 0 && code.compare(place - 1, 2, "::") == 0);
}

/// Where the expression that begins at `start` ends.
std::size_t EndOfExpression(const std::string& code, std::size_t start) {
    std::size_t end = code.find_first_of(";{},?:", start);
    while (end != std::string::npos && IsScope(code, end))
        end = code.find_first_of(";{},?:", end + 1);
    return std::min(end, code.size());
}

/// The name of the constant or of the function whose text begins at `start`.
std::string NameOf(const std::string& code, std::size_t start, const std::string& expression) {
    static const std::regex kConstant(R"rx((\w+)\s*(?:\[\s*\])?\s*=\s*")rx");
    static const std::regex kFunction(R"rx((\w+)\()rx");
    std::smatch found;
    if (std::regex_search(expression, found, kConstant)) return found[1];
    if (start == 0 || code[start - 1] != '{') return {};
    const std::size_t before = start < 2 ? std::string::npos : code.find_last_of(";{}", start - 2);
    const std::size_t heading = before == std::string::npos ? 0 : before + 1;
    const std::string head = code.substr(heading, start - heading);
    return std::regex_search(head, found, kFunction) ? found[1].str() : std::string();
}

/// The literals of `expression` and the gaps around them.
Pattern PatternIn(const std::string& expression, const std::vector<std::string>& literals) {
    static const std::regex kLiteral(R"rx("(\d+)")rx");
    Pattern pattern;
    std::smatch found;
    std::string rest = expression;
    while (std::regex_search(rest, found, kLiteral)) {
        const bool isFirst = pattern.empty();
        if (isFirst && found.prefix().str().find('+') != std::string::npos) pattern.emplace_back();
        pattern.push_back(literals.at(std::stoul(found[1])));
        rest = found.suffix();
    }
    if (rest.find('+') != std::string::npos) pattern.emplace_back();
    return pattern;
}

bool IsForPeople(const std::string& text) {
    const bool hasLetter = std::any_of(text.begin(), text.end(),
                                       [](unsigned char byte) { return std::isalpha(byte) != 0; });
    return hasLetter && (text.find(' ') != std::string::npos || text.back() == '.');
}

}  // namespace

bool SourceText::IsMessage() const {
    return !classes.empty() || std::any_of(pattern.begin(), pattern.end(), IsForPeople);
}

std::vector<SourceText> ReadTexts(const std::string& source) {
    const Skeleton skeleton(source);
    const std::string& code = skeleton.code;
    const auto thrown = ThrownClasses(code);
    std::vector<SourceText> texts;
    for (std::size_t start = 0; start < code.size();) {
        const std::size_t end = EndOfExpression(code, start);
        const std::string expression = code.substr(start, end - start);
        const std::size_t quote = expression.find('"');
        if (quote != std::string::npos) {
            SourceText text{{}, PatternIn(expression, skeleton.literals), {}};
            const std::string itself =
                expression.substr(quote, expression.find('"', quote + 1) + 1 - quote);
            for (const std::string& name : {NameOf(code, start, expression), itself})
                if (const auto classes = thrown.find(name); classes != thrown.end())
                    text.classes.insert(classes->second.begin(), classes->second.end());
            texts.push_back(text);
        }
        start = end + 1;
    }
    return texts;
}

SourceTexts::SourceTexts(const std::string& folder) {
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        const std::string kind = entry.path().extension().string();
        if (kind != ".h" && kind != ".cpp") continue;
        ++fileCount_;
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string source{std::istreambuf_iterator<char>(file),
                                 std::istreambuf_iterator<char>()};
        for (SourceText& text : ReadTexts(source)) {
            text.file = fs::relative(entry.path(), folder).generic_string();
            texts_.push_back(std::move(text));
        }
    }
}

bool SourceTexts::TellBy(const SourceText& text, std::string_view message) const {
    const auto fills = [this](std::string_view gap) { return IsPlaceholder(gap) || Tell(gap); };
    return Reads(message, text.pattern, fills);
}

// What fills a gap is shorter than the message, since no pattern is all gaps: this comes to an end.
bool SourceTexts::Tell(std::string_view message) const {
    return !message.empty() &&
           std::any_of(texts_.begin(), texts_.end(),
                       [&](const SourceText& text) { return TellBy(text, message); });
}

}  // namespace Documents
