#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <exception>
#include <functional>
#include <pthread.h>

/// Much less than any thread gets by itself: what recurses with its input overflows it at once.
constexpr std::size_t kSmallStack = 256 * 1024;

/// Runs `action` on a thread of its own with a stack of `size` bytes, and waits for its end.
inline void OnStackOf(std::size_t size, const std::function<void()>& action) {
    const auto run = [](void* argument) -> void* {
        try {
            (*static_cast<const std::function<void()>*>(argument))();
        } catch (const std::exception& failure) {
            ADD_FAILURE() << "thrown: " << failure.what();
        }
        return nullptr;
    };
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, size), 0);
    pthread_t thread;
    ASSERT_EQ(
        pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&action)), 0);
    pthread_attr_destroy(&attributes);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
}

inline void OnSmallStack(const std::function<void()>& action) {
    OnStackOf(kSmallStack, action);
}
