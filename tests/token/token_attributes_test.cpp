#include "saml/token/token_attributes.h"

#include "support/thrown.h"
#include "token/parsed_attribute.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace Saml;

/// The message of the exception that `action` throws by pointer.
template <class Action>
std::string MessageOfPointer(Action&& action) {
    try {
        action();
    } catch (const ParseException& refusal) {
        ADD_FAILURE() << "thrown by value: " << refusal.what();
        return {};
    } catch (ParseException* refusal) {
        const std::unique_ptr<ParseException> owned(refusal);
        return owned->what();
    }
    ADD_FAILURE() << "nothing was thrown";
    return {};
}

TEST(TokenAttributes, AreEmptyWhenThereAreNone) {
    const TokenAttributes result = ApplyAttributes({});
    EXPECT_TRUE(result.groups.empty());
    EXPECT_EQ(result.personName.FirstName, "");
    EXPECT_EQ(result.personName.LastName, "");
    EXPECT_FALSE(result.isSolution);
}

TEST(TokenAttributes, GiveGroupsInDocumentOrderAcrossAttributes) {
    const TokenAttributes result =
        ApplyAttributes({Attribute(ProfileUri::GroupIdentity, {"d1\\g1", "d2\\g2"}),
                         Attribute(ProfileUri::GroupIdentity, {}),
                         Attribute(ProfileUri::GroupIdentity, {"d1\\g1"})});
    ASSERT_EQ(result.groups.size(), 3U);
    EXPECT_EQ(result.groups[0].Domain, "d1");
    EXPECT_EQ(result.groups[0].Name, "g1");
    EXPECT_EQ(result.groups[1].Domain, "d2");
    EXPECT_EQ(result.groups[1].Name, "g2");
    EXPECT_EQ(result.groups[2].Name, "g1");
}

constexpr std::size_t kMany = 5000;

ParsedAttribute ManyGroups() {
    ParsedAttribute attribute = Attribute(ProfileUri::GroupIdentity, {});
    for (std::size_t i = 0; i != kMany; ++i)
        attribute.values.emplace_back(*new Xml::TextNodeImpl("d\\" + std::to_string(i)));
    return attribute;
}

void ExpectManyGroups(const TokenAttributes& result) {
    ASSERT_EQ(result.groups.size(), kMany);
    EXPECT_EQ(result.groups.capacity(), kMany);
    for (std::size_t i = 0; i != kMany; ++i)
        ASSERT_EQ(result.groups[i].Name, std::to_string(i));
}

TEST(TokenAttributes, GiveManyGroupsFromTextsThatNobodyElseHolds) {
    std::vector<ParsedAttribute> attributes;
    attributes.push_back(ManyGroups());
    ASSERT_FALSE(attributes[0].values[0].IsShared());
    ExpectManyGroups(ApplyAttributes(std::move(attributes)));
}

TEST(TokenAttributes, GiveManyGroupsFromTextsThatSomebodyElseHolds) {
    ParsedAttribute attribute = ManyGroups();
    ExpectManyGroups(ApplyAttributes({attribute}));
    EXPECT_EQ(attribute.values.at(kMany - 1).Take(), "d\\" + std::to_string(kMany - 1));
}

TEST(TokenAttributes, RefuseAMalformedGroup) {
    EXPECT_EQ(MessageOf<ParseException>([] {
                  ApplyAttributes({Attribute(ProfileUri::GroupIdentity, {"d\\g", "nobody"})});
              }),
              "Failed to parse Group Identity value: `nobody'; domain or group missing");
}

TEST(TokenAttributes, TakeTheFirstValueOfANameAndTheLastAttribute) {
    const TokenAttributes result = ApplyAttributes(
        {Attribute(ProfileUri::GivenName, {"Ann"}), Attribute(ProfileUri::Surname, {"Doe", "Roe"}),
         Attribute(ProfileUri::GivenName, {"Jane", "Joan"})});
    EXPECT_EQ(result.personName.FirstName, "Jane");
    EXPECT_EQ(result.personName.LastName, "Doe");
}

TEST(TokenAttributes, LetAnAttributeWithoutValueEmptyTheName) {
    const TokenAttributes result = ApplyAttributes(
        {Attribute(ProfileUri::GivenName, {"Ann"}), Attribute(ProfileUri::Surname, {"Doe"}),
         Attribute(ProfileUri::GivenName, {}), Attribute(ProfileUri::Surname, {""})});
    EXPECT_EQ(result.personName.FirstName, "");
    EXPECT_EQ(result.personName.LastName, "");
}

TEST(TokenAttributes, AreRecognisedByTheirExactName) {
    std::string upperCase = ProfileUri::GivenName;
    upperCase.front() = 'H';
    ParsedAttribute other = Attribute("urn:other", {"Ann"});
    other.nameFormat = ProfileUri::GivenName;
    other.friendlyName = ProfileUri::GivenName;
    const TokenAttributes result =
        ApplyAttributes({Attribute(upperCase, {"Ann"}),
                         Attribute(std::string(ProfileUri::GroupIdentity) + "/", {"no backslash"}),
                         Attribute("givenname", {"Ann"}), Attribute("", {"Ann"}), other});
    EXPECT_TRUE(result.groups.empty());
    EXPECT_EQ(result.personName.FirstName, "");
}

struct SolutionCase {
    const char* name;
    const char* value;
    bool expected;
};
class SolutionFlag : public testing::TestWithParam<SolutionCase> {};

TEST_P(SolutionFlag, IsTrueForThatWordOnly) {
    const TokenAttributes result =
        ApplyAttributes({Attribute(ProfileUri::IsSolution, {GetParam().value})});
    EXPECT_EQ(result.isSolution, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    TokenAttributes, SolutionFlag,
    testing::Values(SolutionCase{"Lower", "true", true}, SolutionCase{"Upper", "TRUE", true},
                    SolutionCase{"Mixed", "tRuE", true}, SolutionCase{"Yes", "yes", false},
                    SolutionCase{"One", "1", false}, SolutionCase{"False", "false", false},
                    SolutionCase{"Empty", "", false}, SolutionCase{"Padded", " true", false},
                    SolutionCase{"Longer", "truey", false}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(SolutionFlag, OfTheLastAttributeHolds) {
    EXPECT_FALSE(ApplyAttributes({Attribute(ProfileUri::IsSolution, {"true"}),
                                  Attribute(ProfileUri::IsSolution, {"no"})})
                     .isSolution);
    EXPECT_TRUE(ApplyAttributes({Attribute(ProfileUri::IsSolution, {"no"}),
                                 Attribute(ProfileUri::IsSolution, {"true"})})
                    .isSolution);
}

TEST(SolutionFlag, WithoutExactlyOneValueIsRefusedByPointer) {
    EXPECT_EQ(MessageOfPointer([] { ApplyAttributes({Attribute(ProfileUri::IsSolution, {})}); }),
              "No value found for attribute isSolution.");
    EXPECT_EQ(MessageOfPointer([] {
                  ApplyAttributes({Attribute(ProfileUri::IsSolution, {"true", "true"})});
              }),
              "More than one value found for attribute isSolution.");
}

TEST(TokenAttributes, ReportTheFirstFaultInDocumentOrder) {
    EXPECT_EQ(MessageOf<ParseException>([] {
                  ApplyAttributes({Attribute(ProfileUri::GroupIdentity, {"x"}),
                                   Attribute(ProfileUri::IsSolution, {})});
              }),
              "Failed to parse Group Identity value: `x'; domain or group missing");
    EXPECT_EQ(MessageOfPointer([] {
                  ApplyAttributes({Attribute(ProfileUri::IsSolution, {}),
                                   Attribute(ProfileUri::GroupIdentity, {"x"})});
              }),
              "No value found for attribute isSolution.");
}

}  // namespace
