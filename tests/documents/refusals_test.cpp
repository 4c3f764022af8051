#include "documents/refusals_page.h"
#include "documents/source_messages.h"

#include <expat.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <regex>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace Documents {
namespace {

const SourceTexts& Sources() {
    static const SourceTexts kSources(LIBRARY_SOURCES);
    return kSources;
}
const RefusalsPage& Page() {
    static const RefusalsPage kPage(REFUSALS_PAGE);
    return kPage;
}

/// What the expat that is linked may say.
std::set<std::string> ExpatsMessages() {
    std::set<std::string> messages;
    for (int code = 1; code < 100; ++code)
        if (const char* const text = XML_ErrorString(static_cast<XML_Error>(code)))
            messages.insert(text);
    return messages;
}

/// The exceptions that the library declares; also what the page calls a thrown pointer and nothing.
std::set<std::string> ExceptionNames() {
    static const std::regex kDeclaration(R"(class SAMLTOKEN_API (\w+Exception) :)");
    std::set<std::string> names{"", "ParseException*"};
    std::ifstream header(LIBRARY_SOURCES "/foundations.h");
    std::smatch found;
    for (std::string line; std::getline(header, line);)
        if (std::regex_search(line, found, kDeclaration)) names.insert(found[1]);
    return names;
}

TEST(RefusalsPage, HasEveryMessageOfTheSources) {
    int messages = 0;
    for (const SourceText& text : Sources().All()) {
        if (!text.IsMessage()) continue;
        ++messages;
        EXPECT_TRUE(Page().Has(text, Sources()))
            << "saml/" << text.file << " says, and the page does not: " << Written(text.pattern)
            << "\nthrown as: " << testing::PrintToString(text.classes);
    }
    std::cout << messages << " messages in " << Sources().FileCount() << " files\n";
    RecordProperty("messages", messages);
    EXPECT_GT(messages, 0);
}

TEST(RefusalsPage, TellsNothingThatTheSourcesDoNotSay) {
    const std::set<std::string> expats = ExpatsMessages();
    for (const Refusal& refusal : Page().Refusals()) {
        const bool isExpats =
            refusal.className == "XMLParseException" && expats.count(refusal.message) == 1;
        EXPECT_TRUE(isExpats || Sources().Tell(refusal.message))
            << REFUSALS_PAGE << ":" << refusal.line << ": nobody says: " << refusal.message;
    }
    std::cout << Page().Refusals().size() << " messages on the page\n";
    RecordProperty("messages", static_cast<int>(Page().Refusals().size()));
    EXPECT_FALSE(Page().Refusals().empty());
}

TEST(RefusalsPage, NamesClassesThatThereAre) {
    const std::set<std::string> names = ExceptionNames();
    for (const Refusal& refusal : Page().Refusals())
        EXPECT_EQ(names.count(refusal.className), 1u)
            << REFUSALS_PAGE << ":" << refusal.line << ": " << refusal.className;
}

TEST(RefusalsPage, TellsEachMessageOfAClassOnce) {
    std::set<std::string> told;
    for (const Refusal& refusal : Page().Refusals())
        EXPECT_TRUE(told.insert(refusal.className + ": " + refusal.message).second)
            << REFUSALS_PAGE << ":" << refusal.line << ": again: " << refusal.message;
}

TEST(RefusalsPage, BeginsWithWhatPeopleSee) {
    EXPECT_FALSE(Page().Beginnings().empty());
    for (const std::string& beginning : Page().Beginnings())
        EXPECT_TRUE(std::any_of(Page().Refusals().begin(), Page().Refusals().end(),
                                [&](const Refusal& refusal) {
                                    return refusal.message.compare(0, beginning.size(),
                                                                   beginning) == 0;
                                }))
            << beginning;
}

// --- The reader of sources

struct SourceCase {
    const char* name;
    std::string source;
    std::vector<std::string> texts;  ///< With the classes that are thrown with them.
};

class SourceReading : public testing::TestWithParam<SourceCase> {};

TEST_P(SourceReading, FindsTheTextsAndTheirGaps) {
    std::vector<std::string> texts;
    for (const SourceText& text : ReadTexts(GetParam().source)) {
        texts.push_back(Written(text.pattern));
        for (const std::string& thrown : text.classes)
            texts.back() += " | " + thrown;
    }
    EXPECT_EQ(texts, GetParam().texts);
}

INSTANTIATE_TEST_SUITE_P(
    ReadTexts, SourceReading,
    testing::Values(
        SourceCase{"Nothing", "int x;", {}},
        SourceCase{"AConstant", R"(constexpr char kA[] = "a b";)", {"a b"}},
        SourceCase{"AdjacentLiterals", "f(\"a \"\n   \"b\")", {"a b"}},
        SourceCase{"Escapes", R"(f("a\"b\\c\n");)", {"a\"b\\c\n"}},
        SourceCase{"Comments", "// \"a b\"\n/* \"c d\" */ f(\"e f\"); // g", {"e f"}},
        SourceCase{"QuotesAsCharacters", R"(f('"', '\'', "a b");)", {"a b"}},
        SourceCase{"Includes", "#include \"a b.h\"\nf(\"c d\");", {"c d"}},
        SourceCase{"GapsBehind", R"(return "a " + b;)", {"a <>"}},
        SourceCase{"GapsInFront", R"(return std::string(b) + " a";)", {"<> a"}},
        SourceCase{"GapsBetween", R"(return "a '" + b.c() + "' d";)", {"a '<>' d"}},
        SourceCase{"Choices", R"(return a ? "b c" : "d e";)", {"b c", "d e"}},
        SourceCase{"Rows", R"({{A::B, "c d"}, {A::E, "f g"}})", {"c d", "f g"}},
        SourceCase{"AThrownLiteral", R"(throw A::B("c d");)", {"c d | B"}},
        SourceCase{"AThrownConstant",
                   R"(constexpr char kA[] = "b"; void F() { throw C(kA); })",
                   {"b | C"}},
        SourceCase{"AThrownFunction",
                   R"(std::string A(int b, int c) { return "d " + b; } f() { throw E(A(b, c)); })",
                   {"d <> | E"}},
        SourceCase{"AThrownPointer", R"(throw new A("b c");)", {"b c | A*"}},
        SourceCase{"SeveralClasses",
                   R"(constexpr char kA[] = "b c"; f() { throw D(kA); } g() { throw E(kA); })",
                   {"b c | D | E"}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(SourceReading, RefusesWhatItDoesNotUnderstand) {
    EXPECT_THROW(ReadTexts("f(R\"(a b)\");"), std::invalid_argument);
}

TEST(SourceText, IsAMessageWhenPeopleCouldReadItOrItIsThrown) {
    for (const std::string text : {"Not found", "Refused.", "a b", " with: "})
        EXPECT_TRUE((SourceText{{}, {text, ""}, {}}.IsMessage())) << text;
    for (const std::string text : {"", "NameID", "urn:oasis:names", ": ", "  ", "&amp;"})
        EXPECT_FALSE((SourceText{{}, {"", text}, {}}.IsMessage())) << text;
    EXPECT_TRUE((SourceText{{}, {"Refused"}, {"ParseException"}}.IsMessage()));
}

// --- The reader of the page

TEST(Cells, AreSplitAtBarsOutsideOfCode) {
    EXPECT_EQ(Cells("| a | `b | c` | |"), (std::vector<std::string>{"a", "`b | c`", ""}));
    EXPECT_TRUE(Cells("a | b").empty());
    EXPECT_TRUE(Cells("").empty());
}

TEST(CodeSpans, AreFoundWithTheBackticksInThem) {
    EXPECT_EQ(CodeSpans("a `b c`, `d`"), (std::vector<std::string>{"b c", "d"}));
    EXPECT_EQ(CodeSpans("``a `b' c``"), (std::vector<std::string>{"a `b' c"}));
    EXPECT_TRUE(CodeSpans("a").empty());
}

TEST(Pattern, HasAGapForEachPlaceholder) {
    EXPECT_EQ(PatternOf("Element '<element>' of <a b>"), (Pattern{"Element '", "' of ", ""}));
    EXPECT_EQ(PatternOf("after <X509Data>"), (Pattern{"after <X509Data>"}));
    const auto isLetter = [](std::string_view gap) { return gap == "x"; };
    EXPECT_TRUE(Reads("axbx", {"a", "b", ""}, isLetter));
    EXPECT_FALSE(Reads("axby", {"a", "b", ""}, isLetter));
    EXPECT_FALSE(Reads("axb", {"a"}, isLetter));
    const auto isLetters = [](std::string_view gap) { return gap == "xbx" || gap == "x"; };
    EXPECT_TRUE(Reads("axbxbx", {"a", "b", ""}, isLetters));  // by the first b and by the second
    EXPECT_FALSE(Reads("axbbx", {"a", "b", ""}, isLetters));
}

}  // namespace
}  // namespace Documents
