// What the built library shows of its hardening: read from the file, as a loader or an auditor
// does.
#include "tool_output.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <string>
#include <vector>

namespace {

constexpr char kLibrary[] = "'" LIBRARY_FILE "'";

/// The first groups of the lines that match `pattern`.
std::vector<std::string> Found(const std::string& command, const std::string& pattern) {
    const std::regex expression(pattern);
    std::vector<std::string> found;
    std::smatch parts;
    for (const std::string& line : OutputLines(command))
        if (std::regex_match(line, parts, expression)) found.push_back(parts[1]);
    return found;
}

std::vector<std::string> ProgramHeader(const std::string& kind) {
    return Found(std::string(READELF " -lW ") + kLibrary, " +(" + kind + " .*)");
}

/// The functions of others that `file` calls.
std::vector<std::string> Undefined(const std::string& file) {
    return Found(NM " -D --undefined-only '" + file + "'", " *U ([^@]*).*");
}

TEST(Hardening, KeepsTheStackFromBeingExecuted) {
    const std::vector<std::string> stack = ProgramHeader("GNU_STACK");
    ASSERT_EQ(stack.size(), 1U);
    EXPECT_THAT(stack[0], testing::ContainsRegex(" RW +0x"));
}

TEST(Hardening, KeepsEverySegmentFromBeingWritableAndExecutable) {
    const std::vector<std::string> segments = ProgramHeader("LOAD");
    // Code and data at least; the linker for x86-64 sets constants apart, that for arm64 does not.
    ASSERT_GE(segments.size(), 2U);
    EXPECT_THAT(segments, testing::Each(testing::Not(testing::ContainsRegex(" RWE +0x"))));
}

TEST(Hardening, MakesRelocatedDataReadOnly) {
    EXPECT_EQ(ProgramHeader("GNU_RELRO").size(), 1U);
}

TEST(Hardening, ResolvesEverythingBeforeTheFirstCall) {
    EXPECT_THAT(Found(std::string(READELF " -dW ") + kLibrary, ".*\\(FLAGS_1\\) +(.*)"),
                testing::ElementsAre(testing::HasSubstr("NOW")));
    EXPECT_THAT(Found(std::string(READELF " -dW ") + kLibrary, ".*\\((TEXTREL)\\).*"),
                testing::IsEmpty());
}

TEST(Hardening, GuardsTheStack) {
    EXPECT_THAT(Undefined(LIBRARY_FILE), testing::Contains("__stack_chk_fail"));
}

// The library itself makes no call of a C function whose bounds a compiler could know, so a probe
// is read that is compiled with the same options and does.
TEST(Hardening, ChecksTheBoundsOfCalls) {
    EXPECT_THAT(Undefined(PROBE_FILE), testing::Contains("__memcpy_chk"));
    EXPECT_THAT(Undefined(PROBE_FILE), testing::Not(testing::Contains("memcpy")));
}

#ifdef BRANCH_TARGET
TEST(Hardening, LetsJumpsLandAtTheStartOfExportedFunctionsOnly) {
    const std::vector<std::string> targets =
        Found(std::string(OBJDUMP " -d --no-show-raw-insn ") + kLibrary,
              " *([0-9a-f]+):\\s+(" BRANCH_TARGET ")\\s*.*");
    const std::set<std::string> landings(targets.begin(), targets.end());
    const std::vector<std::string> functions =
        Found(std::string(NM " -D --defined-only ") + kLibrary, "0*([0-9a-f]+) [TW] .*");
    ASSERT_GT(functions.size(), 100U);
    EXPECT_THAT(functions,
                testing::Each(testing::ResultOf(
                    [&](const std::string& place) { return landings.count(place); }, 1U)));
}
#endif

}  // namespace
