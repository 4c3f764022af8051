#include "threads/many_threads.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <exception>
#include <iostream>
#include <thread>
#include <typeinfo>
#include <vector>

namespace Saml::Threads {

std::string EndOf(const std::function<std::string()>& action) {
    try {
        return action();
    } catch (const std::exception& thrown) {
        return std::string(typeid(thrown).name()) + ": " + thrown.what();
    }
}

void ExpectSameOnManyThreads(int rounds, int kinds,
                             const std::function<std::string(int kind)>& action) {
    std::vector<std::string> expected;
    for (int kind = 0; kind < kinds; ++kind)
        expected.push_back(EndOf([&] { return action(kind); }));

    std::atomic<int> waiting{kThreads};
    std::atomic<int> next{0};
    std::vector<std::vector<std::string>> differences(kThreads);
    const auto run = [&](std::vector<std::string>& different) {
        --waiting;
        while (waiting > 0)
            std::this_thread::yield();
        for (int number = next++; number < rounds * kThreads; number = next++) {
            const int kind = number % kinds;
            std::string end = EndOf([&] { return action(kind); });
            if (end != expected[static_cast<std::size_t>(kind)])
                different.push_back(std::to_string(kind) + ": " + end);
        }
    };
    std::vector<std::thread> threads;
    for (auto& different : differences)
        threads.emplace_back([&run, &different] { run(different); });
    for (std::thread& thread : threads)
        thread.join();

    for (const auto& different : differences)
        EXPECT_EQ(different, std::vector<std::string>());
    std::cout << rounds * kThreads << " runs on " << kThreads << " threads\n";
    testing::Test::RecordProperty("runs", rounds * kThreads);
}

}  // namespace Saml::Threads
