#include "portable_executable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

namespace {

TEST(NeededLibraries, AreExpatCryptoWindowsAndTheRuntimeOfTheLanguage) {
    const std::regex runtime(
        "(ADVAPI32|KERNEL32|msvcrt|libwinpthread-1|libgcc_s_seh-1|libstdc\\+\\+-6)\\.dll");
    std::vector<std::string> libraries;
    for (const std::string& name : ReadPortableExecutable(LIBRARY_FILE).neededFiles)
        if (!std::regex_match(name, runtime)) libraries.push_back(name);
    EXPECT_THAT(libraries, testing::UnorderedElementsAre(testing::StartsWith("libexpat"),
                                                         testing::StartsWith("libcrypto")));
}

}  // namespace
