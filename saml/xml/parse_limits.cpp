#include "saml/xml/parse_limits.h"

#include "saml/foundations.h"

namespace Saml::Xml {
namespace {

void RequireWithin(std::uint64_t count, std::int64_t limit) {
    if (limit < 0 || count > static_cast<std::uint64_t>(limit)) throw ParsingAbortedException();
}

}  // namespace

ParseLimits::ParseLimits(std::int64_t maxTotalSize, std::int64_t maxNodeCount,
                         std::int64_t maxDepth) noexcept
    : maxTotalSize_(maxTotalSize), maxNodeCount_(maxNodeCount), maxDepth_(maxDepth) {}

void ParseLimits::Start(bool enforce) noexcept {
    enforced_ = enforce;
    nodeCount_ = 0;
    totalSize_ = 0;
}

void ParseLimits::CountNode(std::size_t size) {
    if (!enforced_) return;
    CountSize(size);
    RequireWithin(++nodeCount_, maxNodeCount_);
}

void ParseLimits::CountSize(std::size_t size) {
    if (!enforced_) return;
    totalSize_ += size;
    RequireWithin(totalSize_, maxTotalSize_);
}

void ParseLimits::CheckDepth(std::size_t openAncestors) const {
    if (enforced_) RequireWithin(openAncestors, maxDepth_);
}

}  // namespace Saml::Xml
