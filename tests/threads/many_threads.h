#pragma once

#include <functional>
#include <string>

/// Does the same on many threads at once.
namespace Saml::Threads {

constexpr int kThreads = 8;

/// What `action` gives; on an exception its class and message.
std::string EndOf(const std::function<std::string()>& action);

/// Runs `action` `rounds` times on each of eight threads, which all begin at the same time, and
/// expects what it gave on this thread beforehand. It gets the number of the run, counted over all
/// threads, so that threads may do different things at a time; runs whose numbers differ by a
/// multiple of `kinds` do the same.
void ExpectSameOnManyThreads(int rounds, int kinds,
                             const std::function<std::string(int kind)>& action);

}  // namespace Saml::Threads
