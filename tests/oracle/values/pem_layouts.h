#pragma once

#include <string>
#include <vector>

/// Ways in which a PEM block (RFC 7468) can be laid out, good ones and bad ones.
namespace PemLayouts {

/// A block and what may stand in the same text.
struct Objects {
    std::string block;   ///< With line feeds, 64 characters a line.
    std::string before;  ///< Blocks with other labels.
    std::string behind;  ///< Any blocks.
};

struct Layout {
    const char* name;
    /// Everyone reads it: it stays within what RFC 7468 section 2 wants parsers to take.
    bool isHarmless;
    std::string (*write)(const Objects& objects);
};

const std::vector<Layout>& All();

}  // namespace PemLayouts
