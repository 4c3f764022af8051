#pragma once

#include <functional>
#include <optional>
#include <string>

/// Runs code in a process of its own that can compute and do nothing else: it cannot open, look up
/// or write a file, speak to the network or start a process.
namespace Saml::Attacks::Sealed {

/// Why that is not possible here, if so: instrumentation needs system calls of its own.
std::optional<std::string> WhyNot();

struct Ending {
    int exitCode = -1;       ///< What the code gave, when it was not stopped.
    long refusedCall = -1;   ///< The number of the system call that it was stopped at.
    bool wasSealed = false;  ///< Whether the seal could be put on.
    std::string Told() const;
};

/// Runs `prepare`, puts the seal on, runs `compute`, in a child process that ends then. The seal is
/// a list of the system calls that are allowed: those of memory, clocks, random bytes and exits.
Ending Run(const std::function<void()>& prepare, const std::function<int()>& compute);

}  // namespace Saml::Attacks::Sealed
