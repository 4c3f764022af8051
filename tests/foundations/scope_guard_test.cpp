#include "saml/foundations/scope_guard.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>

namespace Saml {
namespace {

TEST(ScopeGuard, CleansUpOnceWhenTheScopeEndsAndNotBefore) {
    int cleanUps = 0;
    {
        const ScopeGuard guard([&] { ++cleanUps; });
        EXPECT_EQ(cleanUps, 0);
    }
    EXPECT_EQ(cleanUps, 1);
}

TEST(ScopeGuard, CleansUpWhenAnExceptionLeavesTheScope) {
    int cleanUps = 0;
    const auto leave = [&] {
        const ScopeGuard guard([&] { ++cleanUps; });
        throw std::runtime_error("left");
    };
    EXPECT_THROW(leave(), std::runtime_error);
    EXPECT_EQ(cleanUps, 1);
}

TEST(ScopeGuard, CleansUpOnAnEarlyReturn) {
    int cleanUps = 0;
    const auto leave = [&](bool early) {
        const ScopeGuard guard([&] { ++cleanUps; });
        if (early) return 1;
        return 2;
    };
    EXPECT_EQ(leave(true), 1);
    EXPECT_EQ(cleanUps, 1);
}

TEST(ScopeGuard, UndoesInTheReverseOrderOfTheGuards) {
    std::string order;
    {
        const ScopeGuard outer([&] { order += "outer"; });
        const ScopeGuard inner([&] { order += "inner "; });
    }
    EXPECT_EQ(order, "inner outer");
}

TEST(ScopeGuard, TakesACleanUpThatCanOnlyBeMoved) {
    auto flag = std::make_shared<bool>(false);
    {
        const ScopeGuard guard(
            [held = std::make_unique<std::shared_ptr<bool>>(flag)] { **held = true; });
        EXPECT_FALSE(*flag);
    }
    EXPECT_TRUE(*flag);
}

TEST(ScopeGuard, CannotBeCopiedSoThatNothingIsCleanedUpTwice) {
    using Guard = ScopeGuard<void (*)()>;
    EXPECT_FALSE(std::is_copy_constructible_v<Guard>);
    EXPECT_FALSE(std::is_copy_assignable_v<Guard>);
}

}  // namespace
}  // namespace Saml
