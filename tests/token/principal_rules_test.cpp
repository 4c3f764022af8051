#include "saml/token/principal_rules.h"

#include "support/thrown.h"

#include <gtest/gtest.h>

#include <locale>
#include <string>

namespace {

using namespace Saml;

// --- User principal names

struct UpnCase {
    const char* name;
    const char* value;
    const char* expectedName;
    const char* expectedDomain;
};
class UpnSplitting : public testing::TestWithParam<UpnCase> {};

TEST_P(UpnSplitting, TakesTheDomainAfterTheLastAt) {
    const PrincipalId principal = PrincipalFromUpn(ProfileUri::UpnNameFormat, GetParam().value);
    EXPECT_EQ(principal.Name, GetParam().expectedName);
    EXPECT_EQ(principal.Domain, GetParam().expectedDomain);
}

INSTANTIATE_TEST_SUITE_P(
    PrincipalRules, UpnSplitting,
    testing::Values(UpnCase{"OneAt", "jdoe@corp", "jdoe", "corp"},
                    UpnCase{"AtInTheName", "j@x@corp", "j@x", "corp"},
                    UpnCase{"AtFirstInTheName", "@jdoe@corp", "@jdoe", "corp"},
                    UpnCase{"TwoAtsSideBySide", "jdoe@@corp", "jdoe@", "corp"},
                    UpnCase{"OneCharacterEach", "j@c", "j", "c"},
                    UpnCase{"NothingIsTrimmedOrFolded", " JDoe @ Corp ", " JDoe ", " Corp "},
                    UpnCase{"BackslashesMeanNothing", "dom\\jdoe@corp", "dom\\jdoe", "corp"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(PrincipalFromUpn, QuotesTheValueWhoseNameOrDomainIsMissing) {
    for (const std::string value : {"", "jdoe", "@corp", "jdoe@", "@", "j@x@", "jdoe corp"})
        EXPECT_EQ(
            MessageOf<ParseException>([&] { PrincipalFromUpn(ProfileUri::UpnNameFormat, value); }),
            "Failed to parse the UPN NameID: `" + value + "'; name or domain part is missing.");
}

TEST(PrincipalFromUpn, QuotesAFormatThatIsNotTheUpnFormat) {
    const std::string upn = ProfileUri::UpnNameFormat;
    std::string otherCase = upn;
    otherCase.front() = 'H';
    for (const std::string& format :
         {std::string("urn:oasis:names:tc:SAML:1.1:nameid-format:unspecified"),
          std::string("urn:oasis:names:tc:SAML:1.1:nameid-format:emailAddress"), std::string(),
          otherCase, upn + "/", " " + upn})
        EXPECT_EQ(MessageOf<ParseException>([&] { PrincipalFromUpn(format, "jdoe@corp"); }),
                  "Invalid or unsupported NameId format '" + format + "'");
}

TEST(PrincipalFromUpn, JudgesTheFormatFirst) {
    EXPECT_EQ(MessageOf<ParseException>([] { PrincipalFromUpn("urn:f", "jdoe"); }),
              "Invalid or unsupported NameId format 'urn:f'");
}

// --- Groups

struct GroupCase {
    const char* name;
    const char* value;
    const char* expectedDomain;
    const char* expectedName;
};
class GroupSplitting : public testing::TestWithParam<GroupCase> {};

TEST_P(GroupSplitting, TakesTheDomainBeforeTheFirstBackslash) {
    const PrincipalId group = PrincipalFromGroup(GetParam().value);
    EXPECT_EQ(group.Domain, GetParam().expectedDomain);
    EXPECT_EQ(group.Name, GetParam().expectedName);
}

INSTANTIATE_TEST_SUITE_P(
    PrincipalRules, GroupSplitting,
    testing::Values(GroupCase{"OneBackslash", "dom\\grp", "dom", "grp"},
                    GroupCase{"BackslashInTheName", "dom\\a\\b", "dom", "a\\b"},
                    GroupCase{"TwoSideBySide", "dom\\\\grp", "dom", "\\grp"},
                    GroupCase{"BackslashLastInTheName", "dom\\grp\\", "dom", "grp\\"},
                    GroupCase{"OneCharacterEach", "d\\g", "d", "g"},
                    GroupCase{"NothingIsTrimmedOrFolded", " Dom \\ Grp ", " Dom ", " Grp "},
                    GroupCase{"AtsAndSlashesMeanNothing", "dom\\g@x/y", "dom", "g@x/y"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(PrincipalFromGroup, QuotesTheValueWhoseDomainOrGroupIsMissing) {
    for (const std::string value : {"", "grp", "\\grp", "dom\\", "\\", "\\dom\\grp", "dom/grp"})
        EXPECT_EQ(MessageOf<ParseException>([&] { PrincipalFromGroup(value); }),
                  "Failed to parse Group Identity value: `" + value + "'; domain or group missing");
}

// --- Equality

/// Makes `locale` the global one as long as it lives.
class GlobalLocale {
  public:
    explicit GlobalLocale(const std::locale& locale) : previous_(std::locale::global(locale)) {}
    ~GlobalLocale() { std::locale::global(previous_); }
    GlobalLocale(const GlobalLocale&) = delete;
    GlobalLocale& operator=(const GlobalLocale&) = delete;

  private:
    std::locale previous_;
};

/// A language whose only pair of letters is q and 9, and '9' is the capital.
class QAndNine : public std::ctype<char> {
  protected:
    char do_toupper(char character) const override { return character == 'q' ? '9' : character; }
    const char* do_toupper(char* begin, const char* end) const override {
        for (; begin != end; ++begin)
            *begin = do_toupper(*begin);
        return end;
    }
};

TEST(Equality, IgnoresTheCaseOfLetters) {
    EXPECT_TRUE(EqualsIgnoringCase("User", "uSER"));
    EXPECT_TRUE(EqualsIgnoringCase("", ""));
    EXPECT_TRUE(EqualsIgnoringCase("a1-_@\\", "A1-_@\\"));
}

TEST(Equality, WantsTheSameLengthAndTheSameCharacters) {
    EXPECT_FALSE(EqualsIgnoringCase("User", "User "));
    EXPECT_FALSE(EqualsIgnoringCase("User", "Use"));
    EXPECT_FALSE(EqualsIgnoringCase("", "u"));
    EXPECT_FALSE(EqualsIgnoringCase("User", "Usor"));
    EXPECT_FALSE(EqualsIgnoringCase("[", "{"));
    EXPECT_FALSE(EqualsIgnoringCase(std::string("a\0b", 3), std::string("a\0c", 3)));
}

TEST(Equality, LeavesBytesAloneThatTheLocaleDoesNotKnowAsLetters) {
    EXPECT_TRUE(EqualsIgnoringCase("M\xc3\xbcller", "m\xc3\xbcLLER"));
    EXPECT_FALSE(EqualsIgnoringCase("\xc3\xbc", "\xc3\x9c"));
}

TEST(Equality, AsksTheGlobalLocaleForCapitals) {
    const GlobalLocale inForce(std::locale(std::locale::classic(), new QAndNine));
    EXPECT_TRUE(EqualsIgnoringCase("xq9", "x9q"));
    EXPECT_FALSE(EqualsIgnoringCase("x", "X"));
}

TEST(PrincipalEquality, IgnoresCaseInBothFields) {
    const PrincipalId one{"User", "Dom"};
    EXPECT_TRUE(one == (PrincipalId{"user", "DOM"}));
    EXPECT_TRUE((PrincipalId{"user", "DOM"}) == one);
    EXPECT_TRUE(one == one);
}

TEST(PrincipalEquality, WantsBothFieldsToMatch) {
    const PrincipalId one{"User", "Dom"};
    EXPECT_FALSE(one == (PrincipalId{"User", "Dam"}));
    EXPECT_FALSE(one == (PrincipalId{"Usor", "Dom"}));
    EXPECT_FALSE(one == (PrincipalId{"Dom", "User"}));
    EXPECT_FALSE(one == (PrincipalId{"", ""}));
}

}  // namespace
