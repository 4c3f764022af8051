#pragma once

#include "documents/message_pattern.h"

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace Documents {

/// What a source file says in one expression: literals with values between them. House style wants
/// one constant or one function for each message, and this reader relies on it.
struct SourceText {
    std::string file;  ///< Relative to the folder of the sources.
    Pattern pattern;
    /// The classes, without their namespaces, that the file throws with this text; with a star when
    /// it throws a pointer. None when another file or a table does.
    std::set<std::string> classes;

    /// Whether people may be meant to read it. Identifiers, markup and URIs have no blank between
    /// words and no full stop; what is thrown is a message whatever it looks like.
    bool IsMessage() const;
};

/// The texts of one file. Comments and includes are skipped, adjacent literals joined.
/// \throws std::invalid_argument  There is a raw string literal, which this reader does not read.
std::vector<SourceText> ReadTexts(const std::string& source);

/// All texts of the sources in a folder and below it.
class SourceTexts {
  public:
    explicit SourceTexts(const std::string& folder);

    const std::vector<SourceText>& All() const noexcept { return texts_; }
    std::size_t FileCount() const noexcept { return fileCount_; }

    /// True when `message`, which a page tells, can be put together from texts of the sources: it
    /// is one of them, with a placeholder or another message in each gap.
    bool Tell(std::string_view message) const;
    /// The same, with `text` as the outermost of them.
    bool TellBy(const SourceText& text, std::string_view message) const;

  private:
    std::vector<SourceText> texts_;
    std::size_t fileCount_ = 0;
};

}  // namespace Documents
