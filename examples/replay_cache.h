// Which tokens were presented before: a bearer token speaks for whoever saw it, unless whoever
// accepts it remembers that it did.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <string>

class ReplayCache {
  public:
    using Seconds = std::int64_t;            // since the Unix epoch
    using Clock = std::function<Seconds()>;  // called under the cache's lock

    enum class Presented {
        First,  // now remembered
        Again,
        TooLate,  // its time was over before it could be remembered
        Full      // as many are remembered as may be, and none of them is over
    };

    ReplayCache(std::size_t capacity, Clock clock);

    // Remembers `id` until `until`. Exactly one of many threads that present the same one at once
    // is the first.
    //
    // A full cache takes no new token: forgetting an old one would let it in again. Hence give it
    // none but accepted tokens, or anybody can fill it.
    Presented Present(const std::string& id, Seconds until);

  private:
    void ForgetWhatIsOver(Seconds now);

    const std::size_t capacity_;
    const Clock clock_;
    std::mutex mutex_;
    std::set<std::string> ids_;
    std::multimap<Seconds, std::set<std::string>::const_iterator> ends_;
};
