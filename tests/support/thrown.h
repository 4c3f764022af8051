#pragma once

#include <gtest/gtest.h>

#include <exception>
#include <string>
#include <typeinfo>

/// The message of the `Expected` that `action` throws, which must be of exactly that class.
/// Anything else, or nothing thrown, fails the running test.
template <class Expected, class Action>
std::string MessageOf(Action&& action) {
    try {
        action();
    } catch (const Expected& caught) {
        // By their text: two modules may have the name of a type at two places.
        EXPECT_STREQ(typeid(caught).name(), typeid(Expected).name()) << "thrown: " << caught.what();
        return caught.what();
    } catch (const std::exception& caught) {
        ADD_FAILURE() << "another exception was thrown: " << typeid(caught).name() << ": "
                      << caught.what();
        return {};
    }
    ADD_FAILURE() << "nothing was thrown";
    return {};
}
