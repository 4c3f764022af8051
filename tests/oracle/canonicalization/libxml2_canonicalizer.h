#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// libxml2 as canonicalizer, in this process. Comments are left out always.
namespace LibXml2 {

enum class Method {
    Inclusive,  ///< Canonical XML 1.0.
    Exclusive,  ///< Exclusive XML Canonicalization 1.0.
};

/// What to canonicalize, and how. Elements are told by their number in document order; the root
/// element is 0.
struct CanonicalPart {
    Method method = Method::Exclusive;
    std::size_t apex = 0;
    /// Not part of it, with all that it contains: what an enveloped-signature transform removes.
    std::optional<std::size_t> leftOut = std::nullopt;
    /// The words of an `InclusiveNamespaces` `PrefixList`; for the exclusive method only.
    std::vector<std::string> prefixes = {};
};

/// A document as libxml2 reads it: entities and default attributes of its DTD are filled in.
class ParsedText {
  public:
    /// \throws std::runtime_error  The text is not well-formed; with what libxml2 says.
    explicit ParsedText(const std::string& text);
    ~ParsedText();
    ParsedText(const ParsedText&) = delete;
    ParsedText& operator=(const ParsedText&) = delete;

    /// False when a name breaks Namespaces in XML, by an unbound prefix for example.
    bool IsNamespaceWellFormed() const noexcept;
    std::size_t CountOfElements() const noexcept;
    /// The numbers of all elements with this name, in document order.
    std::vector<std::size_t> ElementsNamed(const std::string& namespaceUri,
                                           const std::string& localName) const;

    /// The canonical form of the apex and of what is below it.
    /// \throws std::out_of_range   There is no element of a number.
    /// \throws std::runtime_error  libxml2 refuses; with what it says.
    std::string CanonicalForm(const CanonicalPart& part) const;

  private:
    struct Tree;
    std::unique_ptr<const Tree> tree_;
};

/// The same for a single use of a text.
std::string CanonicalForm(const std::string& text, const CanonicalPart& part = {});

}  // namespace LibXml2
