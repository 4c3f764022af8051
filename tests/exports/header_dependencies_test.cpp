#include "tool_output.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace {

// What expat and OpenSSL install, by the ends of the paths.
constexpr char kForeignHeaders[] = "/(expat(_[a-z]+)?\\.h|openssl/[a-z0-9_]+\\.h)$";

// -I for each folder that callers of the library get from CMake.
std::string IncludeFlags() {
    std::string flags;
    std::istringstream folders(CALLER_INCLUDE_FOLDERS);
    for (std::string folder; std::getline(folders, folder, ':');)
        flags += " '-I" + folder + "'";
    return flags;
}

/// The files that a compiler reads for a source which includes nothing but this header.
std::vector<std::string> FilesReadFor(const std::string& header, const std::string& standard) {
    std::string rule;
    for (const std::string& line :
         OutputLines("echo '#include <" + header + ">' | " CXX_COMPILER " -std=" + standard +
                     " -DBOOST_CHRONO_HEADER_ONLY -M -x c++ -" + IncludeFlags()))
        rule += line.back() == '\\' ? line.substr(0, line.size() - 1) : line;

    std::vector<std::string> files;
    std::istringstream words(rule);
    for (std::string file; words >> file;)
        files.push_back(file);
    return files;
}

class PublicHeaders : public testing::TestWithParam<std::string> {};

TEST_P(PublicHeaders, BringNeitherExpatNorOpenSslAlong) {
    for (const std::string standard : {"c++17", "c++20"}) {
        const std::vector<std::string> files = FilesReadFor(GetParam(), standard);
        EXPECT_THAT(files, testing::Contains(testing::EndsWith(GetParam())));
        EXPECT_THAT(files, testing::Each(testing::Not(testing::ContainsRegex(kForeignHeaders))));
    }
}

INSTANTIATE_TEST_SUITE_P(HeaderDependencies, PublicHeaders,
                         testing::Values("saml/foundations.h", "saml/xml.h", "saml/security.h",
                                         "saml/token.h"),
                         [](const auto& row) {
                             const std::string name = row.param.substr(row.param.find('/') + 1);
                             return name.substr(0, name.find('.'));
                         });

// The same eyes see them where they are.
TEST(HeaderDependencies, ShowExpatAndOpenSslOfPrivateHeaders) {
    EXPECT_THAT(FilesReadFor("saml/xml/expat_handle.h", "c++17"),
                testing::Contains(testing::ContainsRegex(kForeignHeaders)));
    EXPECT_THAT(FilesReadFor("saml/security/openssl_handles.h", "c++17"),
                testing::Contains(testing::ContainsRegex(kForeignHeaders)));
}

}  // namespace
