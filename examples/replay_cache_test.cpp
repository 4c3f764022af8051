#include "replay_cache.h"

#include <gtest/gtest.h>

#include <atomic>
#include <iostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using Presented = ReplayCache::Presented;

class ReplayCacheOfThree : public testing::Test {
  protected:
    ReplayCache::Seconds now = 1000;
    ReplayCache cache{3, [this] { return now; }};
};

TEST_F(ReplayCacheOfThree, TakesATokenOnce) {
    EXPECT_EQ(cache.Present("_a", 1100), Presented::First);
    EXPECT_EQ(cache.Present("_a", 1100), Presented::Again);
    EXPECT_EQ(cache.Present("_b", 1100), Presented::First);
    EXPECT_EQ(cache.Present("_A", 1100), Presented::First) << "identifiers differ by their case";
}

TEST_F(ReplayCacheOfThree, RemembersATokenToItsLastSecond) {
    EXPECT_EQ(cache.Present("_a", 1100), Presented::First);
    now = 1099;
    EXPECT_EQ(cache.Present("_a", 1100), Presented::Again);
    now = 1100;
    EXPECT_EQ(cache.Present("_a", 1200), Presented::First);
    EXPECT_EQ(cache.Present("_a", 1200), Presented::Again);
}

TEST_F(ReplayCacheOfThree, RemembersUntilTheFirstPresentationsEnd) {
    EXPECT_EQ(cache.Present("_a", 1100), Presented::First);
    EXPECT_EQ(cache.Present("_a", 1500), Presented::Again);
    now = 1100;
    EXPECT_EQ(cache.Present("_a", 1500), Presented::First);
}

// Who was overtaken by the clock between verification and cache may be the second to come: the
// first one would be forgotten by now.
TEST_F(ReplayCacheOfThree, TakesNoTokenThatIsOver) {
    EXPECT_EQ(cache.Present("_a", 1001), Presented::First);
    now = 1001;
    EXPECT_EQ(cache.Present("_a", 1001), Presented::TooLate);
    EXPECT_EQ(cache.Present("_b", 900), Presented::TooLate);
    EXPECT_EQ(cache.Present("_c", -1), Presented::TooLate);
}

TEST_F(ReplayCacheOfThree, TakesNoFourthInsteadOfForgettingOne) {
    for (const char* id : {"_a", "_b", "_c"})
        EXPECT_EQ(cache.Present(id, 1100), Presented::First) << id;
    EXPECT_EQ(cache.Present("_d", 1100), Presented::Full);
    for (const char* id : {"_a", "_b", "_c"})
        EXPECT_EQ(cache.Present(id, 1100), Presented::Again) << id;
    EXPECT_EQ(cache.Present("_d", 1100), Presented::Full) << "a refused one is not remembered";
}

TEST_F(ReplayCacheOfThree, MakesRoomForOneWhenOneIsOver) {
    EXPECT_EQ(cache.Present("_late", 1300), Presented::First);
    EXPECT_EQ(cache.Present("_early", 1100), Presented::First);
    EXPECT_EQ(cache.Present("_between", 1200), Presented::First);
    now = 1100;
    EXPECT_EQ(cache.Present("_d", 1400), Presented::First);
    EXPECT_EQ(cache.Present("_e", 1400), Presented::Full);
    EXPECT_EQ(cache.Present("_late", 1300), Presented::Again);
    EXPECT_EQ(cache.Present("_between", 1200), Presented::Again);
}

TEST(ReplayCache, OfNothingTakesNothing) {
    ReplayCache cache(0, [] { return 0; });
    EXPECT_EQ(cache.Present("_a", 100), Presented::Full);
}

TEST(ReplayCache, RemembersNothingWhenTheClockFails) {
    bool fails = true;
    ReplayCache cache(1, [&]() -> ReplayCache::Seconds {
        if (fails) throw std::runtime_error("no clock");
        return 0;
    });
    EXPECT_THROW(cache.Present("_a", 100), std::runtime_error);
    fails = false;
    EXPECT_EQ(cache.Present("_a", 100), Presented::First);
}

TEST(ReplayCache, LetsExactlyOneOfEightThreadsWin) {
    constexpr int kThreads = 8;
    constexpr int kTokens = 500;
    ReplayCache cache(kTokens, [] { return 0; });
    std::atomic<int> ready{0};
    std::vector<std::atomic<int>> first(kTokens);
    std::vector<std::atomic<int>> again(kTokens);
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([&] {
            ++ready;
            while (ready < kThreads)
                std::this_thread::yield();
            for (std::size_t token = 0; token < kTokens; ++token) {
                const Presented presented = cache.Present("_" + std::to_string(token), 100);
                if (presented == Presented::First) ++first[token];
                if (presented == Presented::Again) ++again[token];
            }
        });
    for (std::thread& thread : threads)
        thread.join();

    for (std::size_t token = 0; token < kTokens; ++token) {
        EXPECT_EQ(first[token], 1) << token;
        EXPECT_EQ(again[token], kThreads - 1) << token;
    }
    std::cout << kTokens << " tokens presented by " << kThreads << " threads\n";
    RecordProperty("tokens", kTokens);
}

}  // namespace
