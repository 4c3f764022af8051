#include "saml/foundations/platform.h"

#include <gtest/gtest.h>

#include <vector>

#if defined(_WIN32)
// As the loader calls it; <windows.h> stays out of the tests.
extern "C" int __stdcall DllMain(void* module, unsigned long reason, void* reserved);
#endif

namespace Saml {
namespace PlatformTest {

struct Widget {};

TEST(ReadableTypeName, NamesFundamentalTypes) {
    EXPECT_EQ(ReadableTypeName(typeid(int)), "int");
    EXPECT_EQ(ReadableTypeName(typeid(double)), "double");
    EXPECT_EQ(ReadableTypeName(typeid(const char*)), "char const*");
}

TEST(ReadableTypeName, NamesClassesWithTheirNamespaces) {
    EXPECT_EQ(ReadableTypeName(typeid(Widget)), "Saml::PlatformTest::Widget");
}

TEST(ReadableTypeName, NamesTemplatesWithTheirArguments) {
    EXPECT_EQ(ReadableTypeName(typeid(std::vector<int>)), "std::vector<int, std::allocator<int> >");
}

#if defined(__GLIBCXX__)
/// A type whose raw name is no mangled one.
struct OddlyNamedType : std::type_info {
    explicit OddlyNamedType(const char* rawName) : std::type_info(rawName) {}
};

TEST(ReadableTypeName, FallsBackToTheRawName) {
    EXPECT_EQ(ReadableTypeName(OddlyNamedType("no mangled name")), "no mangled name");
    EXPECT_EQ(ReadableTypeName(OddlyNamedType("")), "");
}
#endif

#if defined(_WIN32)
TEST(DllMain, ReportsSuccessEvenWhereNotificationsCannotBeTurnedOff) {
    constexpr unsigned long kEveryReason[] = {0, 1, 2, 3};
    for (const unsigned long reason : kEveryReason)
        EXPECT_EQ(DllMain(nullptr, reason, nullptr), 1) << "reason " << reason;
}
#endif

}  // namespace PlatformTest
}  // namespace Saml
