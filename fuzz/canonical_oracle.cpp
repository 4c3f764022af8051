#include "oracle/canonicalization/libxml2_canonicalizer.h"
#include "support/canonical_differences.h"
#include "support/documents.h"
#include "support/laws.h"
#include "support/quiet_libxml2.h"

#include <optional>
#include <stdexcept>

// Canonical forms are those of libxml2, at the root and inside, wherever the rules agree.

namespace {

using namespace Saml::Xml;
using LibXml2::Method;

constexpr std::size_t kMostElements = 256;  // libxml2 is asked about each through a node set
constexpr std::size_t kApexes = 8;

/// Nothing where libxml2 is the stricter one: about namespace URIs that are relative, for example.
std::optional<std::string> TheirForm(const LibXml2::ParsedText& text, Method method,
                                     std::size_t apex) {
    try {
        return Fuzz::WithGreaterThanSignsEscaped(text.CanonicalForm({method, apex}));
    } catch (const std::runtime_error&) {
        return std::nullopt;
    }
}

void Compare(const std::vector<ElementNode*>& elements, const LibXml2::ParsedText& theirs,
             bool xmlAttributesAreInherited) {
    for (std::size_t i = 0; i != std::min(elements.size(), kApexes); ++i) {
        if (const auto form = TheirForm(theirs, Method::Exclusive, i))
            Fuzz::Require(
                Fuzz::CanonicalForm(Security::Algorithm::ExclusiveC14N, *elements[i]) == *form,
                "the exclusive canonical form is libxml2's");
        if (i != 0 && xmlAttributesAreInherited) continue;
        if (const auto form = TheirForm(theirs, Method::Inclusive, i))
            Fuzz::Require(
                Fuzz::CanonicalForm(Security::Algorithm::InclusiveC14N, *elements[i]) == *form,
                "the inclusive canonical form is libxml2's");
    }
}

}  // namespace

void Fuzz::CheckLaws(std::string_view input) {
    const DocumentPtr document = Parsed(input);
    if (!document || !NamesSurvive(*document) || IsCanonicalizedAnotherWay(*document)) return;
    const std::vector<ElementNode*> elements = ElementsOf(*document, kMostElements);
    if (elements.size() == kMostElements) return;
    const auto theirs = ReadByLibXml2(std::string(input));
    if (!theirs) return;
    Require(theirs->CountOfElements() == elements.size(), "libxml2 finds as many elements");
    Compare(elements, *theirs, HasXmlAttributes(*document));
}
