#pragma once

#include "faults/shortages.h"

#include <functional>
#include <memory>
#include <set>
#include <string>

/// Makes one call again and again, each time with another of its allocations failing.
namespace Saml::Faults {

/// One call of the library. The parts run in this order; only `call` runs short of memory.
struct FaultyCall {
    /// Makes what the call needs anew; may be empty when everything is there.
    std::function<void()> prepare;
    std::function<void()> call;
    /// Tells what the call's results hold at present.
    std::function<std::string()> result;
    /// Drops what `prepare` and `call` made.
    std::function<void()> forget;
};

/// A call that writes to one result: `before` stands there at first, `tell` says what stands there.
template <class Result>
FaultyCall CallFor(std::function<void(Result&)> call,
                   std::function<std::string(const Result&)> tell, std::function<Result()> before) {
    const auto result = std::make_shared<Result>();
    return {[result, before] { *result = before(); }, [result, call] { call(*result); },
            [result, tell] { return tell(*result); }, [result] { *result = Result(); }};
}

using Outcomes = std::set<std::string>;
constexpr char kReturned[] = "returned";

/// What comes of the call when an allocation fails, besides what comes of it anyway; exactly these,
/// for each allocator. "bad_alloc" for short is the standard library's.
struct Failures {
    Outcomes ours;
    Outcomes expat;
    Outcomes openSsl;
};

/// `call` returns or throws as `usual` says ("returned", or class and message), and when any one of
/// its allocations fails, or any one and all behind it:
/// - it comes to that same end, with the same result, or to one of `failures`, with the result that
///   there was before; each of `failures` comes up;
/// - made again on the same objects, it comes to its usual end;
/// - what it allocated is released when its results are.
/// Tells how many allocations failed.
void ExpectSoundInShortage(const FaultyCall& call, const std::string& usual,
                           const Failures& failures);

/// Runs `action` and says how it ended: "returned", or the class, without namespaces, and message
/// of what it threw. `afterwards` runs in between.
std::string EndOf(const std::function<void()>& action, const std::function<void()>& afterwards);

}  // namespace Saml::Faults
