#include "versioned_names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

TEST(SymbolVersions, AreTheMajorVersionOfTheLibrary) {
    EXPECT_THAT(VersionedNames(),
                testing::Each(testing::AnyOf("SAMLTOKEN_1", testing::EndsWith("@@SAMLTOKEN_1"))));
}

}  // namespace
