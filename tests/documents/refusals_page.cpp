#include "documents/refusals_page.h"

#include <algorithm>
#include <fstream>
#include <set>
#include <stdexcept>

namespace Documents {
namespace {

const std::string kSyntax = "Signature syntax error: ";
const std::string kVerification = "Signature verification error. ";
const std::string kCrypto = "Crypto Exception: ";

/// What becomes of a message on its way to the caller.
struct Form {
    std::string className;  ///< "" for any.
    std::string prefix;
};

// Of the exceptions of signature verification all are converted that derive from this root.
const std::set<std::string> kVerificationClasses = {
    "XmlSecurityException",
    "UnsupportedCanonicalizationException",
    "UnsupportedHashAlgorithmException",
    "UnsupportedSignAlgorithmException",
    "SignatureVerificationException",
    "MissingReferentException",
    "DuplicateURIException",
};

/// The forms in which the roads of verifying and of signing let it out: one of them must be on the
/// page.
std::vector<Form> FormsOf(const std::string& thrown) {
    if (thrown.empty())  // a table or another file throws it: as whatever class
        return {{"", ""}, {"", kSyntax}, {"", kVerification}, {"", kCrypto}};
    if (thrown == "CryptoException")
        return {{thrown, kCrypto},
                {"InvalidSignatureException", kVerification + kCrypto},
                {"SignatureGenerationException", kCrypto}};
    if (thrown == "SignatureSyntaxException") return {{"ParseException", kSyntax}};
    if (kVerificationClasses.count(thrown) == 1)
        return {{"InvalidSignatureException", kVerification}};
    return {{thrown, ""}};
}

bool Says(std::string_view message, const SourceText& text, const SourceTexts& sources) {
    if (sources.TellBy(text, message)) return true;
    // A message that fills a gap of its own accord: one row may stand for several.
    const auto anything = [](std::string_view) { return true; };
    return text.pattern.size() == 1 && Reads(text.pattern.front(), PatternOf(message), anything);
}

std::size_t CountBackticks(const std::string& text, std::size_t place) {
    return std::min(text.find_first_not_of('`', place), text.size()) - place;
}

/// Where the code span that opens at `place` is over.
std::size_t EndOfCode(const std::string& text, std::size_t place) {
    const std::size_t width = CountBackticks(text, place);
    std::size_t at = text.find('`', place + width);
    while (at != std::string::npos && CountBackticks(text, at) != width)
        at = text.find('`', at + CountBackticks(text, at));
    if (at == std::string::npos) throw std::invalid_argument("an open code span: " + text);
    return at + width;
}

std::size_t ColumnOf(const std::vector<std::string>& headings, const std::string& name) {
    return static_cast<std::size_t>(std::find(headings.begin(), headings.end(), name) -
                                    headings.begin());
}

}  // namespace

std::vector<std::string> CodeSpans(const std::string& markdown) {
    std::vector<std::string> spans;
    for (std::size_t at = markdown.find('`'); at != std::string::npos;) {
        const std::size_t end = EndOfCode(markdown, at);
        const std::size_t width = CountBackticks(markdown, at);
        spans.push_back(markdown.substr(at + width, end - at - 2 * width));
        at = markdown.find('`', end);
    }
    return spans;
}

std::vector<std::string> Cells(const std::string& line) {
    std::vector<std::string> cells;
    if (line.empty() || line.front() != '|') return cells;
    for (std::size_t start = 1, at = 1; at < line.size();) {
        if (line[at] == '`') {
            at = EndOfCode(line, at);
        } else if (line[at] == '|') {
            const std::size_t first = std::min(line.find_first_not_of(' ', start), at);
            const std::size_t last = line.find_last_not_of(' ', at - 1) + 1;
            cells.push_back(line.substr(first, std::max(first, last) - first));
            start = ++at;
        } else {
            ++at;
        }
    }
    return cells;
}

RefusalsPage::RefusalsPage(const std::string& path) {
    std::ifstream page(path, std::ios::binary);
    std::vector<std::string> headings;
    std::size_t number = 0;
    for (std::string line; std::getline(page, line);) {
        ++number;
        const std::vector<std::string> cells = Cells(line);
        if (cells.empty()) headings.clear();
        if (cells.empty() || cells.front().compare(0, 3, "---") == 0) continue;
        if (headings.empty()) {
            headings = cells;
        } else if (headings.front() == "what you see") {
            for (const std::string& beginning : CodeSpans(cells.front()))
                beginnings_.push_back(beginning);
        } else if (headings.front() == "message") {
            const auto classes = CodeSpans(cells.at(ColumnOf(headings, "class")));
            for (const std::string& message : CodeSpans(cells.front()))
                refusals_.push_back({number, message, classes.empty() ? "" : classes.front()});
        }
    }
}

bool RefusalsPage::Has(const SourceText& text, const SourceTexts& sources) const {
    if (text.classes.empty()) return HasThrown(text, "", sources);
    return std::all_of(text.classes.begin(), text.classes.end(),
                       [&](const std::string& thrown) { return HasThrown(text, thrown, sources); });
}

bool RefusalsPage::HasThrown(const SourceText& text, const std::string& thrown,
                             const SourceTexts& sources) const {
    const std::vector<Form> forms = FormsOf(thrown);
    return std::any_of(refusals_.begin(), refusals_.end(), [&](const Refusal& refusal) {
        return std::any_of(forms.begin(), forms.end(), [&](const Form& form) {
            const std::string_view message = refusal.message;
            return (form.className.empty() || form.className == refusal.className) &&
                   message.substr(0, form.prefix.size()) == form.prefix &&
                   Says(message.substr(form.prefix.size()), text, sources);
        });
    });
}

const Refusal* RefusalsPage::Find(std::string_view className, std::string_view message) const {
    const auto anything = [](std::string_view) { return true; };
    const auto found =
        std::find_if(refusals_.begin(), refusals_.end(), [&](const Refusal& refusal) {
            return refusal.className == className &&
                   Reads(message, PatternOf(refusal.message), anything);
        });
    return found != refusals_.end() ? &*found : nullptr;
}

}  // namespace Documents
