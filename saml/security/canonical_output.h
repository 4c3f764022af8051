#pragma once

#include "saml/foundations.h"
#include "saml/foundations/checked_narrowing.h"

#include <string>
#include <string_view>

namespace Saml::Xml::Security {

/// Gathers the many short pieces of canonical output into few long writes.
class CanonicalOutput {
  public:
    explicit CanonicalOutput(Writer& writer) : writer_(writer) {}

    void Append(char byte) {
        pending_.push_back(byte);
        if (pending_.size() >= kLongEnough) Flush();
    }
    void Append(std::string_view run) {
        if (run.size() >= kLongEnough) {
            Flush();
            WriteRun(writer_, run);
            return;
        }
        pending_.append(run);
        if (pending_.size() >= kLongEnough) Flush();
    }
    /// Writes what is pending; the last call, without which output is lost.
    void Flush() {
        WriteRun(writer_, pending_);
        pending_.clear();
    }

  private:
    static constexpr std::size_t kLongEnough = std::size_t{64} * 1024;

    Writer& writer_;
    std::string pending_;
};

}  // namespace Saml::Xml::Security
