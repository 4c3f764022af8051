#pragma once

#include "saml/foundations.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace Saml {

/// Gives a text in slices of the given size, whatever more it is asked for, and remembers what it
/// was asked for.
struct SlicedReader : Reader {
    SlicedReader(std::string text, std::size_t slice) : text_(std::move(text)), slice_(slice) {}

    int Read(char* buffer, int size) override {
        requests.push_back(size);
        if (beforeEachSlice > 0 && requests.size() % (beforeEachSlice + 1) != 0) return 0;
        if (position_ == text_.size()) return -1;
        const std::size_t count =
            std::min({slice_, static_cast<std::size_t>(size), text_.size() - position_});
        std::copy_n(text_.data() + position_, count, buffer);
        position_ += count;
        return static_cast<int>(count);
    }

    /// How many reads give nothing before each one that gives something.
    std::size_t beforeEachSlice = 0;
    std::vector<int> requests;

  private:
    std::string text_;
    std::size_t slice_;
    std::size_t position_ = 0;
};

}  // namespace Saml
