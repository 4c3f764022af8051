#pragma once

#include <utility>

namespace Saml {

/// Runs a clean-up when its scope is left, whichever way. The clean-up must not throw.
template <class CleanUp>
class ScopeGuard {
  public:
    explicit ScopeGuard(CleanUp cleanUp) : cleanUp_(std::move(cleanUp)) {}
    ~ScopeGuard() { cleanUp_(); }
    ScopeGuard(const ScopeGuard&) = delete;
    ScopeGuard& operator=(const ScopeGuard&) = delete;

  private:
    CleanUp cleanUp_;
};

}  // namespace Saml
