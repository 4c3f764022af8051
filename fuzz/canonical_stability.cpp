#include "support/documents.h"
#include "support/laws.h"

// Canonical form is a fixed point: what was parsed from it has it again (Canonical XML 1.0, section
// 1.2: the canonical form of a document is an XML document with the same canonical form).

namespace {

using namespace Saml::Xml;

constexpr std::size_t kMostElements = 4096;  // entities make long documents of short texts
constexpr std::size_t kApexes = 8;

void RequireFixedPoint(const char* algorithm, ElementNode& apex) {
    const std::string form = Fuzz::CanonicalForm(algorithm, apex);
    if (form.empty()) return;  // refused for its repeated declarations
    const Fuzz::DocumentPtr again = Fuzz::Parsed(form);
    Fuzz::Require(again != nullptr, "a canonical form is well-formed");
    Fuzz::Require(Fuzz::CanonicalForm(algorithm, *again->GetRootElement()) == form,
                  "the canonical form of a canonical form is itself");
}

}  // namespace

void Fuzz::CheckLaws(std::string_view input) {
    const DocumentPtr document = Parsed(input);
    if (!document || ElementsOf(*document, kMostElements).size() == kMostElements) return;
    // ":a" is written "a", which may be another attribute's name, and ":-" as "-", which is no
    // name.
    if (!NamesSurvive(input)) return;
    for (ElementNode* const apex : ElementsOf(*document, kApexes)) {
        RequireFixedPoint(Security::Algorithm::ExclusiveC14N, *apex);
        RequireFixedPoint(Security::Algorithm::InclusiveC14N, *apex);
    }
}
