#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

// From the lowest up; a file includes files of its own subsystem and of lower ones.
const std::array<std::string, 4> kSubsystems = {"foundations", "xml", "security", "token"};

const std::string kTop = "saml/";

// The files that know the two C libraries, by an include of their own or through another file's.
const std::set<std::string> kExpatFiles = {
    "xml/expat_handle.h",      "xml/tokenizer_events.cpp", "xml/tokenizer_events.h",
    "xml/xml_parser_impl.cpp", "xml/xml_parser_impl.h",
};
const std::set<std::string> kOpenSslFiles = {
    "security/certificate_codec.cpp",   "security/certificate_codec.h",
    "security/decoded_key.cpp",         "security/decoded_key.h",
    "security/der_conversion.h",        "security/digest_method.cpp",
    "security/digest_method.h",         "security/hash_algorithm_impl.cpp",
    "security/key_codec.cpp",           "security/key_codec.h",
    "security/openssl_handles.h",       "security/pem_helpers.cpp",
    "security/pem_input.cpp",           "security/pem_input.h",
    "security/sign_algorithm_impl.cpp", "security/trust_chain_resolver.cpp",
    "security/trust_chain_resolver.h",  "security/trust_set_resolver.cpp",
    "security/trust_set_resolver.h",    "security/trusted_certificates.cpp",
    "security/trusted_certificates.h",  "security/verify_algorithm_impl.cpp",
};
// Platform code stands in these.
const std::set<std::string> kPlatformFiles = {"foundations/demangled_name.h",
                                              "foundations/platform_posix.cpp",
                                              "foundations/platform_windows.cpp"};
// Tells AddressSanitizer, where it is built in, which memory is free.
constexpr char kPoisoningFile[] = "xml/node_pool.cpp";

struct Include {
    std::string from;    // relative to saml/
    std::string target;  // as written
    bool quoted;
};

std::ostream& operator<<(std::ostream& out, const Include& include) {
    return out << kTop << include.from << " includes " << include.target;
}

bool StartsWith(const std::string& text, const std::string& beginning) {
    return text.compare(0, beginning.size(), beginning) == 0;
}

std::vector<std::string> SourceFiles() {
    std::vector<std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(LIBRARY_SOURCES)) {
        const std::string kind = entry.path().extension().string();
        if (kind == ".h" || kind == ".cpp")
            files.push_back(fs::relative(entry.path(), LIBRARY_SOURCES).generic_string());
    }
    return files;
}

void ReadIncludes(const std::string& file, std::vector<Include>& includes) {
    static const std::regex kInclude(R"(^\s*#\s*include\s*([<"])([^>"]+)[>"].*)");
    std::ifstream lines(fs::path(LIBRARY_SOURCES) / file);
    std::smatch parts;
    for (std::string line; std::getline(lines, line);)
        if (std::regex_match(line, parts, kInclude))
            includes.push_back({file, parts[2], parts[1] == "\""});
}

const std::vector<Include>& AllIncludes() {
    static const std::vector<Include> kAll = [] {
        std::vector<Include> includes;
        for (const std::string& file : SourceFiles())
            ReadIncludes(file, includes);
        return includes;
    }();
    return kAll;
}

// The place of a file's subsystem, of "xml.h" as of "xml/node_impl.h"; past the end for any other.
std::size_t Level(const std::string& file) {
    const std::string subsystem = file.substr(0, file.find_first_of("./"));
    const auto found = std::find(kSubsystems.begin(), kSubsystems.end(), subsystem);
    return static_cast<std::size_t>(found - kSubsystems.begin());
}

// A quoted include's target, relative to saml/ as its origin is.
std::string TargetFile(const Include& include) {
    return include.target.substr(kTop.size());
}

bool IsPublicHeader(const std::string& file) {
    return std::any_of(kSubsystems.begin(), kSubsystems.end(),
                       [&](const std::string& subsystem) { return file == subsystem + ".h"; });
}

bool IsStandardHeader(const std::string& target) {
    return target.find_first_of("./") == std::string::npos;
}

// The files from which a chain of includes leads to a header whose name begins like this.
std::set<std::string> FilesThatReach(const std::string& header) {
    std::set<std::string> reaching;
    std::size_t before = 0;
    do {
        before = reaching.size();
        for (const Include& include : AllIncludes())
            if (StartsWith(include.target, header) ||
                (include.quoted && reaching.count(TargetFile(include)) == 1))
                reaching.insert(include.from);
    } while (reaching.size() != before);
    return reaching;
}

TEST(IncludeArrows, AreReadFromEverySubsystem) {
    std::set<std::string> seen;
    for (const Include& include : AllIncludes())
        seen.insert(include.from.substr(0, include.from.find('/')));
    for (const std::string& subsystem : kSubsystems) {
        EXPECT_EQ(seen.count(subsystem), 1U) << subsystem;
        EXPECT_EQ(seen.count(subsystem + ".h"), 1U) << subsystem;
    }
}

TEST(IncludeArrows, EveryFileBelongsToASubsystem) {
    for (const std::string& file : SourceFiles())
        EXPECT_LT(Level(file), kSubsystems.size()) << file;
}

TEST(IncludeArrows, QuotesAreForFilesOfTheLibraryNamedFromItsTop) {
    for (const Include& include : AllIncludes()) {
        EXPECT_EQ(include.quoted, StartsWith(include.target, kTop)) << include;
        const bool exists = fs::exists(fs::path(LIBRARY_SOURCES).parent_path() / include.target);
        EXPECT_TRUE(exists || !include.quoted) << include;
    }
}

TEST(IncludeArrows, NeverPointUpwards) {
    for (const Include& include : AllIncludes()) {
        if (!include.quoted) continue;
        EXPECT_LE(Level(TargetFile(include)), Level(include.from)) << include;
    }
}

TEST(IncludeArrows, LeadFromPublicHeadersToLowerPublicHeadersBoostAndTheStandardLibraryOnly) {
    for (const Include& include : AllIncludes()) {
        if (!IsPublicHeader(include.from)) continue;
        const std::string target = include.quoted ? TargetFile(include) : "";
        const bool lowerPublicHeader =
            IsPublicHeader(target) && Level(target) < Level(include.from);
        EXPECT_TRUE(lowerPublicHeader || StartsWith(include.target, "boost/") ||
                    IsStandardHeader(include.target))
            << include;
    }
}

TEST(IncludeArrows, LeadToExpatFromTheParserOnly) {
    EXPECT_EQ(FilesThatReach("expat"), kExpatFiles);
}

TEST(IncludeArrows, LeadToOpenSslFromTheListedFilesOnly) {
    EXPECT_EQ(FilesThatReach("openssl/"), kOpenSslFiles);
}

TEST(IncludeArrows, LeadToNoOtherLibrary) {
    for (const Include& include : AllIncludes()) {
        if (kPlatformFiles.count(include.from) == 1) continue;
        if (include.from == kPoisoningFile && include.target == "sanitizer/asan_interface.h")
            continue;
        EXPECT_TRUE(include.quoted || StartsWith(include.target, "boost/") ||
                    StartsWith(include.target, "openssl/") || include.target == "expat.h" ||
                    IsStandardHeader(include.target))
            << include;
    }
}

}  // namespace
