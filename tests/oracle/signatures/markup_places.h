#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

/// Where the pieces of a well-formed text stand that has no DOCTYPE and no CDATA section.
namespace MarkupPlaces {

struct Span {
    std::size_t begin;
    std::size_t end;

    std::size_t Size() const { return end - begin; }
};

struct Attribute {
    Span whole;  ///< With the blank in front of it.
    Span name;
    Span value;  ///< Between the quotes.
};

struct Element {
    std::string localName;
    Span whole;
    Span startTag;
    Span startName;
    std::optional<Span> endName;  ///< None in an empty-element tag.
    std::vector<Attribute> attributes;
    std::optional<std::size_t> parent;  ///< Among the elements.
};

/// Character data between two pieces of markup; never empty.
struct Run {
    Span span;
    std::size_t parent;
};

struct Places {
    std::vector<Element> elements;  ///< In document order.
    std::vector<Run> runs;
};

/// \throws std::runtime_error  The text is of another form.
Places PlacesOf(const std::string& xml);

}  // namespace MarkupPlaces
