#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <random>
#include <string>
#include <utility>
#include <vector>

/// Random numbers for tests. The distributions of the standard library differ between platforms,
/// its engine does not: the same seed gives the same numbers everywhere.
class Dice {
  public:
    /// \param stream  Tells apart what is drawn with one seed: numbers of a shard and of a case.
    explicit Dice(std::uint64_t seed, std::initializer_list<std::uint64_t> stream = {})
        : Dice(seed, stream.begin(), stream.end()) {}
    /// \param stream  The same as a name.
    Dice(std::uint64_t seed, const std::string& stream)
        : Dice(seed, stream.begin(), stream.end()) {}

    /// One of 0 to `end` - 1.
    std::size_t Below(std::size_t end) { return static_cast<std::size_t>(engine_() % end); }
    bool Chance(std::size_t percent) { return Below(100) < percent; }

    template <class Rows>
    const auto& Any(const Rows& rows) {
        return *std::next(std::begin(rows), static_cast<std::ptrdiff_t>(Below(std::size(rows))));
    }

    template <class Row>
    void Shuffle(std::vector<Row>& rows) {
        for (std::size_t left = rows.size(); left > 1; --left)
            std::swap(rows[left - 1], rows[Below(left)]);
    }

  private:
    template <class Numbers>
    Dice(std::uint64_t seed, Numbers begin, Numbers end) {
        std::vector<std::uint64_t> numbers{seed, seed >> 32U};
        for (; begin != end; ++begin)
            numbers.push_back(static_cast<std::uint64_t>(*begin));
        std::seed_seq seeds(numbers.begin(), numbers.end());  // of each it takes the low 32 bits
        engine_.seed(seeds);
    }

    std::mt19937_64 engine_;
};
