#include "oracle/canonicalization/greater_than_signs.h"
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
        return LibXml2::WithGreaterThanSignsEscaped(text.CanonicalForm({method, apex}));
    } catch (const std::runtime_error&) {
        return std::nullopt;
    }
}

}  // namespace

void Fuzz::CheckLaws(std::string_view input) {
    const DocumentPtr document = Parsed(input);
    if (!document || !NamesSurvive(input) || IsCanonicalizedAnotherWay(*document)) return;
    const std::vector<ElementNode*> elements = ElementsOf(*document, kMostElements);
    if (elements.size() == kMostElements) return;
    const auto theirs = ReadByLibXml2(std::string(input));
    if (!theirs) return;
    Require(theirs->CountOfElements() == elements.size(), "libxml2 finds as many elements");
    const auto requireSame = [&](const char* algorithm, Method method, std::size_t apex) {
        if (const auto form = TheirForm(*theirs, method, apex))
            Require(SayTheSame(CanonicalForm(algorithm, *elements[apex]), *form, input),
                    "the canonical form is libxml2's");
    };
    for (std::size_t apex = 0; apex != std::min(elements.size(), kApexes); ++apex) {
        requireSame(Security::Algorithm::ExclusiveC14N, Method::Exclusive, apex);
        // Their inclusive form gives an apex the xml: attributes of its ancestors.
        if (apex == 0 || !HasXmlAttributes(*document))
            requireSame(Security::Algorithm::InclusiveC14N, Method::Inclusive, apex);
    }
}
