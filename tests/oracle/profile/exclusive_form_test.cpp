#include "oracle/profile/exclusive_form.h"

#include "oracle/canonicalization/libxml2_canonicalizer.h"
#include "oracle/profile/assertion_grammar.h"
#include "oracle/profile/full_assertion.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <ctime>
#include <stdexcept>
#include <string>

// The tests' own canonical form is libxml2's where that has one: on the assertion whose neighbours
// are judged by it.
namespace {

using namespace Oracle;

const Markup& ChildNamed(const Markup& element, const std::string& localName) {
    for (const Markup& child : element.children)
        if (child.LocalName() == localName) return child;
    throw std::out_of_range(localName);
}

std::size_t NumberOf(const LibXml2::ParsedText& text, const std::string& localName) {
    return text.ElementsNamed(Grammar::kSignatureNamespace, localName).at(0);
}

class ExclusiveFormOfTheFullAssertion : public testing::TestWithParam<Confirmation> {
  protected:
    const Markup document_ = FullAssertion(GetParam(), std::time(nullptr));
    const Markup& assertion_ = document_.children.front();
    const Markup& signature_ = ChildNamed(assertion_, "Signature");
    const LibXml2::ParsedText theirs_{Written(document_)};
};

TEST_P(ExclusiveFormOfTheFullAssertion, IsThatOfLibXml2WithoutTheSignature) {
    LibXml2::CanonicalPart part;
    part.leftOut = NumberOf(theirs_, "Signature");
    EXPECT_EQ(ExclusiveForm(assertion_, {}, &signature_, ""), theirs_.CanonicalForm(part));
    part.prefixes = {"saml", "xsi", "ext"};
    EXPECT_EQ(ExclusiveForm(assertion_, {}, &signature_, "saml xsi ext"),
              theirs_.CanonicalForm(part));
}

TEST_P(ExclusiveFormOfTheFullAssertion, IsThatOfLibXml2ForWhatIsSigned) {
    LibXml2::CanonicalPart part;
    part.apex = NumberOf(theirs_, "SignedInfo");
    EXPECT_EQ(ExclusiveForm(ChildNamed(signature_, "SignedInfo"),
                            ScopeIn(ScopeIn({}, assertion_), signature_), nullptr, ""),
              theirs_.CanonicalForm(part));
}

INSTANTIATE_TEST_SUITE_P(Oracle, ExclusiveFormOfTheFullAssertion,
                         testing::Values(Confirmation::Bearer, Confirmation::HolderOfKey),
                         [](const auto& row) {
                             return std::string(row.param == Confirmation::Bearer ? "Bearer"
                                                                                  : "HolderOfKey");
                         });

}  // namespace
