#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace Fuzz {

/// Decisions taken from an input, byte by byte; zeros and empty texts when it is used up.
class ByteSource {
  public:
    explicit ByteSource(std::string_view input) : rest_(input) {}

    bool IsEmpty() const { return rest_.empty(); }

    unsigned char Byte() {
        if (rest_.empty()) return 0;
        const auto byte = static_cast<unsigned char>(rest_.front());
        rest_.remove_prefix(1);
        return byte;
    }

    /// Less than `count`, which is 1 to 256.
    std::size_t Below(std::size_t count) { return Byte() % count; }

    /// The next `size` bytes, or what there is of them.
    std::string Text(std::size_t size) {
        const std::string text(rest_.substr(0, size));
        rest_.remove_prefix(text.size());
        return text;
    }

    std::string_view Rest() const { return rest_; }

  private:
    std::string_view rest_;
};

}  // namespace Fuzz
