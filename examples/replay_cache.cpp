#include "replay_cache.h"

#include <utility>

ReplayCache::ReplayCache(std::size_t capacity, Clock clock)
    : capacity_(capacity), clock_(std::move(clock)) {}

ReplayCache::Presented ReplayCache::Present(const std::string& id, Seconds until) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const Seconds now = clock_();
    ForgetWhatIsOver(now);
    // Verified in time, but overtaken on the way here: had it been remembered, it would have been
    // forgotten by now, and this may be the second one.
    if (now >= until) return Presented::TooLate;
    if (ids_.count(id) != 0) return Presented::Again;
    if (ids_.size() >= capacity_) return Presented::Full;

    const auto entry = ends_.emplace(until, ids_.end());  // before the other, which is then undone
    try {
        entry->second = ids_.insert(id).first;
    } catch (...) {
        ends_.erase(entry);
        throw;
    }
    return Presented::First;
}

void ReplayCache::ForgetWhatIsOver(Seconds now) {
    const auto living = ends_.upper_bound(now);  // at its last second a token is refused already
    for (auto entry = ends_.begin(); entry != living; ++entry)
        ids_.erase(entry->second);
    ends_.erase(ends_.begin(), living);
}
