#pragma once

#include <ostream>
#include <vector>

/// What the document of NIST's Public Key Interoperability Test Suite, version 1.0.1, says about
/// certification paths (RFC 5280 section 6).
namespace Pkits {

enum class Verdict { Fails, Validates };

inline std::ostream& operator<<(std::ostream& out, Verdict verdict) {
    return out << (verdict == Verdict::Validates ? "validates" : "fails");
}

struct Case {
    const char* number;  ///< Section and case.
    const char* title;
    Verdict verdict;
    const char* path;  ///< Names of files, from below the trust anchor down to the end entity.
};
/// Every case of the sections that are about what the trust-chain resolver does.
std::vector<Case> Cases();

/// One of these cases whose verdict depends on what the resolver does not do.
struct Departure {
    const char* number;
    Verdict ours;
    const char* reason;
};
std::vector<Departure> Departures();

/// A section none of whose cases are taken.
struct LeftOut {
    const char* section;
    const char* title;
    const char* reason;
};
std::vector<LeftOut> SectionsLeftOut();

}  // namespace Pkits
