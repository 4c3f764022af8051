#pragma once

#include "documents/source_messages.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Documents {

/// A message as the page tells it, with the class that callers catch.
struct Refusal {
    std::size_t line;
    std::string message;    ///< With placeholders, "<element>".
    std::string className;  ///< Without its namespace; a star behind a pointer's; "" for no class.
};

/// The code spans of a piece of Markdown, those in double backticks, too.
std::vector<std::string> CodeSpans(const std::string& markdown);
/// The cells of a line of a table; none for any other line. A bar within a code span is text.
std::vector<std::string> Cells(const std::string& line);

/// A page with tables of messages. Which column holds what is told by the headings: "message" and
/// "class", or "what you see" for beginnings of messages.
class RefusalsPage {
  public:
    explicit RefusalsPage(const std::string& path);

    const std::vector<Refusal>& Refusals() const noexcept { return refusals_; }
    /// Of the table for people in a hurry.
    const std::vector<std::string>& Beginnings() const noexcept { return beginnings_; }

    /// True when callers can find a message of the sources as it comes out of the token functions:
    /// in a row for each class that is thrown with it, converted where it is converted.
    bool Has(const SourceText& text, const SourceTexts& sources) const;

    /// The row that says this of an exception that was thrown; null when there is none.
    const Refusal* Find(std::string_view className, std::string_view message) const;

  private:
    bool HasThrown(const SourceText& text, const std::string& thrown,
                   const SourceTexts& sources) const;

    std::vector<Refusal> refusals_;
    std::vector<std::string> beginnings_;
};

}  // namespace Documents
