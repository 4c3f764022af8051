#pragma once

#include "saml/foundations.h"
#include "saml/foundations/checked_narrowing.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace Saml::Xml::Security {

/// Gathers the many short pieces of canonical output into few long writes.
class CanonicalOutput {
  public:
    explicit CanonicalOutput(Writer& writer) noexcept : writer_(writer) {}

    void Append(char byte) {
        if (size_ == pending_.size()) Flush();
        pending_[size_++] = byte;
    }
    void Append(std::string_view run) {
        if (run.size() > pending_.size() - size_) {
            Flush();
            if (run.size() > pending_.size()) {
                WriteRun(writer_, run);
                return;
            }
        }
        std::copy(run.begin(), run.end(), pending_.begin() + static_cast<std::ptrdiff_t>(size_));
        size_ += run.size();
    }
    /// Writes what is pending; the last call, without which output is lost.
    void Flush() {
        WriteRun(writer_, {pending_.data(), size_});
        size_ = 0;
    }

  private:
    static constexpr std::size_t kPendingSize = 4096;  // it may stand on a small stack

    Writer& writer_;
    std::size_t size_ = 0;
    std::array<char, kPendingSize> pending_;  // NOLINT: what is not written is not read
};

}  // namespace Saml::Xml::Security
