#pragma once

#include <cstddef>
#include <cstdint>

namespace Saml::Xml {

/// Running counters of one document against the limits of its handler. Every operation does nothing
/// while the limits are not enforced and throws `ParsingAbortedException` when one is exceeded.
class ParseLimits {
  public:
    /// A negative limit refuses everything.
    ParseLimits(std::int64_t maxTotalSize, std::int64_t maxNodeCount,
                std::int64_t maxDepth) noexcept;

    /// Begins a new document.
    void Start(bool enforce) noexcept;
    /// Counts a node whose names and data have `size` bytes.
    void CountNode(std::size_t size);
    /// Counts `size` bytes that belong to a node counted already.
    void CountSize(std::size_t size);
    /// Checks the place of a node that has so many open ancestors.
    void CheckDepth(std::size_t openAncestors) const;

  private:
    const std::int64_t maxTotalSize_;
    const std::int64_t maxNodeCount_;
    const std::int64_t maxDepth_;
    std::uint64_t nodeCount_ = 0;
    std::uint64_t totalSize_ = 0;
    bool enforced_ = false;
};

}  // namespace Saml::Xml
