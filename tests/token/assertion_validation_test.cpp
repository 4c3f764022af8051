#include "saml/token/assertion_validation.h"

#include "support/thrown.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace {

using namespace Saml;

constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kGreatest = std::numeric_limits<std::int64_t>::max();

DateTime Date(const std::string& text) {
    DateTime date;
    EXPECT_TRUE(DateTime::Create(text, date)) << text;
    return date;
}

/// A bearer assertion without delegation that lasts from noon to one o'clock.
ParsedAssertion NoonToOne() {
    ParsedAssertion assertion;
    assertion.version = "2.0";
    assertion.id = "_1";
    assertion.conditions.notBefore = Date("2020-06-01T12:00:00Z");
    assertion.conditions.notOnOrAfter = Date("2020-06-01T13:00:00Z");
    assertion.subject.confirmation.notOnOrAfter = Date("2020-06-01T13:00:00Z");
    return assertion;
}

const char* const kWithin = "2020-06-01T12:30:00Z";

/// The refusal's message; "accepted" when there is none.
std::string Verdict(const ParsedAssertion& assertion, const std::string& now = kWithin,
                    std::int64_t tolerance = 0) {
    try {
        ValidateAssertion(assertion, Date(now), tolerance);
    } catch (const ParseException& refusal) {
        return refusal.what();
    }
    return "accepted";
}

TEST(AssertionValidation, AcceptsASoundAssertion) {
    EXPECT_EQ(Verdict(NoonToOne()), "accepted");
}

TEST(AssertionValidation, TakesVersion20Only) {
    for (const std::string version : {"", "1.1", "2", "2.0 ", "2.00", "3.0"}) {
        ParsedAssertion assertion = NoonToOne();
        assertion.version = version;
        EXPECT_EQ(Verdict(assertion), "Invalid token version") << version;
    }
}

TEST(AssertionValidation, TakesIdsThatBeginWithAnUnderscoreOnly) {
    for (const std::string id : {"", "abc", "a_", " _a", "-_"}) {
        ParsedAssertion assertion = NoonToOne();
        assertion.id = id;
        EXPECT_EQ(Verdict(assertion), "Invalid token ID") << id;
    }
    ParsedAssertion assertion = NoonToOne();
    assertion.id = "_";
    EXPECT_EQ(Verdict(assertion), "accepted");
}

// --- The window

constexpr char kFuture[] = "Token start date is in the future: 2020-06-01T12:00:00Z";
constexpr char kExpired[] = "The token has expired at: 2020-06-01T13:00:00Z";

struct WindowCase {
    const char* name;
    const char* now;
    std::int64_t tolerance;
    const char* verdict;
};
class Window : public testing::TestWithParam<WindowCase> {};

TEST_P(Window, IsJudgedToTheSecond) {
    EXPECT_EQ(Verdict(NoonToOne(), GetParam().now, GetParam().tolerance), GetParam().verdict);
}

INSTANTIATE_TEST_SUITE_P(
    AssertionValidation, Window,
    testing::Values(
        WindowCase{"AtTheStart", "2020-06-01T12:00:00Z", 0, "accepted"},
        WindowCase{"ASecondBeforeTheStart", "2020-06-01T11:59:59Z", 0, kFuture},
        WindowCase{"ASecondBeforeTheEnd", "2020-06-01T12:59:59Z", 0, "accepted"},
        WindowCase{"AtTheEnd", "2020-06-01T13:00:00Z", 0, kExpired},
        WindowCase{"MillisecondsDoNotCount", "2020-06-01T12:59:59.999Z", 0, "accepted"},
        WindowCase{"StartLessTolerance", "2020-06-01T11:50:00Z", 600, "accepted"},
        WindowCase{"ASecondLessThanThat", "2020-06-01T11:49:59Z", 600, kFuture},
        WindowCase{"ASecondMoreThanThat", "2020-06-01T11:50:01Z", 600, "accepted"},
        WindowCase{"ASecondBeforeTheEndWithTolerance", "2020-06-01T13:09:59Z", 600, "accepted"},
        WindowCase{"AtTheEndWithTolerance", "2020-06-01T13:10:00Z", 600, kExpired},
        WindowCase{"NegativeNarrowsTheStart", "2020-06-01T12:09:59Z", -600, kFuture},
        WindowCase{"NegativeAtTheStart", "2020-06-01T12:10:00Z", -600, "accepted"},
        WindowCase{"NegativeBeforeTheEnd", "2020-06-01T12:49:59Z", -600, "accepted"},
        WindowCase{"NegativeNarrowsTheEnd", "2020-06-01T12:50:00Z", -600, kExpired},
        WindowCase{"NegativeLeavesOneSecond", "2020-06-01T12:30:00Z", -1799, "accepted"},
        WindowCase{"NegativeLeavesNothing", "2020-06-01T12:30:00Z", -1800, kExpired},
        WindowCase{"NegativeBeyondTheWindow", "2020-06-01T12:30:00Z", -1801, kFuture},
        WindowCase{"GreatestLongAfter", "2038-01-19T03:14:07Z", kGreatest, "accepted"},
        WindowCase{"GreatestLongBefore", "1901-12-13T20:45:52Z", kGreatest, "accepted"},
        WindowCase{"LeastWithin", "2020-06-01T12:30:00Z", kLeast, kFuture},
        WindowCase{"LeastLongAfter", "2038-01-19T03:14:07Z", kLeast, kFuture},
        WindowCase{"LeastLongBefore", "1901-12-13T20:45:52Z", kLeast, kFuture},
        WindowCase{"MinusGreatest", "2020-06-01T12:30:00Z", -kGreatest, kFuture}),
    [](const auto& row) { return std::string(row.param.name); });

/// The window that 32 bits of seconds can hold, judged at its ends with the extreme tolerances:
/// any sum of these numbers overflows, and no verdict may show it.
TEST(WidestWindow, IsJudgedAsIfNumbersHadNoEnd) {
    ParsedAssertion assertion = NoonToOne();
    assertion.conditions.notBefore = Date("1901-12-13T20:45:52Z");
    assertion.conditions.notOnOrAfter = Date("2038-01-19T03:14:07Z");
    assertion.subject.confirmation.notOnOrAfter = assertion.conditions.notOnOrAfter;
    ASSERT_EQ(assertion.conditions.notBefore.timeT(), std::numeric_limits<std::int32_t>::min());
    ASSERT_EQ(assertion.conditions.notOnOrAfter.timeT(), std::numeric_limits<std::int32_t>::max());

    EXPECT_EQ(Verdict(assertion, "1901-12-13T20:45:52Z", 0), "accepted");
    EXPECT_EQ(Verdict(assertion, "1901-12-13T20:45:52Z", kGreatest), "accepted");
    EXPECT_EQ(Verdict(assertion, "1901-12-13T20:45:52Z", kLeast),
              "Token start date is in the future: 1901-12-13T20:45:52Z");
    EXPECT_EQ(Verdict(assertion, "2038-01-19T03:14:07Z", 0),
              "The token has expired at: 2038-01-19T03:14:07Z");
    EXPECT_EQ(Verdict(assertion, "2038-01-19T03:14:07Z", 1), "accepted");
    EXPECT_EQ(Verdict(assertion, "2038-01-19T03:14:07Z", kGreatest), "accepted");
    // 2^32 - 1 seconds lie between the ends: a tolerance of minus that many moves the start to the
    // end, which has not come a second earlier and is past the end, by as much, when it comes.
    EXPECT_EQ(Verdict(assertion, "2038-01-19T03:14:06Z", -4294967295),
              "Token start date is in the future: 1901-12-13T20:45:52Z");
    EXPECT_EQ(Verdict(assertion, "2038-01-19T03:14:07Z", -4294967295),
              "The token has expired at: 2038-01-19T03:14:07Z");
}

TEST(Window, ThatIsEmptyIsRefusedWhateverTheTolerance) {
    constexpr char kUnsatisfiable[] =
        "Unsatisfiable token validity conditions: NotBefore must be less than NotOnOrAfter.";
    for (const std::int64_t tolerance : {std::int64_t{0}, std::int64_t{1000000}, kGreatest}) {
        ParsedAssertion equal = NoonToOne();
        equal.conditions.notBefore = equal.conditions.notOnOrAfter;
        EXPECT_EQ(Verdict(equal, kWithin, tolerance), kUnsatisfiable);
        ParsedAssertion reversed = NoonToOne();
        std::swap(reversed.conditions.notBefore, reversed.conditions.notOnOrAfter);
        EXPECT_EQ(Verdict(reversed, kWithin, tolerance), kUnsatisfiable);
    }
}

TEST(Window, IsEmptyWhenItsEndsDifferInMillisecondsOnly) {
    ParsedAssertion assertion = NoonToOne();
    assertion.conditions.notBefore = Date("2020-06-01T12:00:00.000Z");
    assertion.conditions.notOnOrAfter = Date("2020-06-01T12:00:00.999Z");
    EXPECT_EQ(Verdict(assertion),
              "Unsatisfiable token validity conditions: NotBefore must be less than NotOnOrAfter.");
}

TEST(Window, IsEmptyWhenItsEndHasWrappedInto1901) {
    ParsedAssertion assertion = NoonToOne();
    assertion.conditions.notOnOrAfter = Date("2038-01-19T03:14:08Z");
    EXPECT_EQ(Verdict(assertion),
              "Unsatisfiable token validity conditions: NotBefore must be less than NotOnOrAfter.");
}

TEST(Window, IsQuotedAsTheTokenWritesIt) {
    ParsedAssertion assertion = NoonToOne();
    assertion.conditions.notBefore = Date("2020-06-01T12:00:00Z%1%!");
    assertion.conditions.notOnOrAfter = Date("2020-06-01T13:00:00.000Z");
    EXPECT_EQ(Verdict(assertion, "2020-06-01T11:00:00Z"),
              "Token start date is in the future: 2020-06-01T12:00:00Z%1%!");
    EXPECT_EQ(Verdict(assertion, "2020-06-01T14:00:00Z"),
              "The token has expired at: 2020-06-01T13:00:00.000Z");
}

// --- The subject's own end

struct SubjectEndCase {
    const char* name;
    const char* subjectEnd;
    const char* tokenEnd;
    const char* verdict;
};
class SubjectEnd : public testing::TestWithParam<SubjectEndCase> {};

TEST_P(SubjectEnd, IsComparedAsText) {
    ParsedAssertion assertion = NoonToOne();
    assertion.conditions.notOnOrAfter = Date(GetParam().tokenEnd);
    assertion.subject.confirmation.notOnOrAfter = Date(GetParam().subjectEnd);
    EXPECT_EQ(Verdict(assertion), GetParam().verdict);
}

INSTANTIATE_TEST_SUITE_P(
    AssertionValidation, SubjectEnd,
    testing::Values(
        SubjectEndCase{"Equal", "2020-06-01T13:00:00Z", "2020-06-01T13:00:00Z", "accepted"},
        SubjectEndCase{"Later", "2020-06-01T13:00:01Z", "2020-06-01T13:00:00Z", "accepted"},
        SubjectEndCase{"Earlier", "2020-06-01T12:59:59Z", "2020-06-01T13:00:00Z",
                       "Invalid token subject validity"},
        // '.' sorts before 'Z'.
        SubjectEndCase{"SameInstantInTheLongForm", "2020-06-01T13:00:00.000Z",
                       "2020-06-01T13:00:00Z", "Invalid token subject validity"},
        SubjectEndCase{"SameInstantInTheShortForm", "2020-06-01T13:00:00Z",
                       "2020-06-01T13:00:00.000Z", "accepted"},
        SubjectEndCase{"EarlierInTheShortForm", "2020-06-01T13:00:00Z", "2020-06-01T13:00:00.999Z",
                       "accepted"},
        SubjectEndCase{"ShorterTextFirst", "2020-06-01T13:00:00Z", "2020-06-01T13:00:00Zabcd",
                       "Invalid token subject validity"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(SubjectEnd, IsNoMatterForHolderOfKey) {
    ParsedAssertion assertion = NoonToOne();
    assertion.subject.confirmation.method = ConfirmationType::HolderOfKey;
    assertion.subject.confirmation.notOnOrAfter = DateTime();
    EXPECT_EQ(Verdict(assertion), "accepted");
}

// --- Delegation

ParsedAssertion Delegated(const NameRecord& delegateId) {
    ParsedAssertion assertion = NoonToOne();
    assertion.subject.confirmation.delegateId = delegateId;
    assertion.conditions.delegation = {{DateTime(), {"f", "one@corp"}},
                                       {DateTime(), {"f", "Two@corp"}}};
    return assertion;
}

TEST(Delegation, HoldsWhenTheIdIsThatOfTheLastDelegate) {
    EXPECT_EQ(Verdict(Delegated({"f", "Two@corp"})), "accepted");
}

TEST(Delegation, ComparesFormatAndNameExactly) {
    for (const NameRecord& other : {NameRecord{"f", "one@corp"}, NameRecord{"f", "two@corp"},
                                    NameRecord{"F", "Two@corp"}, NameRecord{"f", "Two@corp "}}) {
        EXPECT_EQ(Verdict(Delegated(other)),
                  "The SubjectConfirmation delegate id does not match the id of the last delegate")
            << other.format << " " << other.value;
    }
}

TEST(Delegation, NeedsARestrictionForAnId) {
    ParsedAssertion assertion = Delegated({"f", "Two@corp"});
    assertion.conditions.delegation.reset();
    EXPECT_EQ(
        Verdict(assertion),
        "Token SubjectConfirmation contains delegate id, but no delegation restriction is present");
}

TEST(Delegation, NeedsAnIdForARestriction) {
    ParsedAssertion assertion = Delegated({"f", "Two@corp"});
    assertion.subject.confirmation.delegateId.reset();
    EXPECT_EQ(Verdict(assertion),
              "Token has delegation restriction, but no delegate id is present in the "
              "SubjectConfirmation");
}

TEST(Delegation, IsJudgedForHolderOfKeyToo) {
    ParsedAssertion assertion = Delegated({"f", "one@corp"});
    assertion.subject.confirmation.method = ConfirmationType::HolderOfKey;
    EXPECT_EQ(Verdict(assertion),
              "The SubjectConfirmation delegate id does not match the id of the last delegate");
}

// --- The order: each assertion below breaks the rule that is reported and all later ones.

TEST(OrderOfValidation, IsVersionIdWindowSubjectDelegation) {
    ParsedAssertion assertion = Delegated({"f", "nobody@corp"});
    assertion.version = "1.0";
    assertion.id = "1";
    std::swap(assertion.conditions.notBefore, assertion.conditions.notOnOrAfter);
    assertion.subject.confirmation.notOnOrAfter = Date("2020-01-01T00:00:00Z");
    const std::string early = "2020-06-01T11:00:00Z";
    const std::string late = "2020-06-01T14:00:00Z";

    EXPECT_EQ(Verdict(assertion, late), "Invalid token version");
    assertion.version = "2.0";
    EXPECT_EQ(Verdict(assertion, late), "Invalid token ID");
    assertion.id = "_1";
    EXPECT_EQ(Verdict(assertion, late),
              "Unsatisfiable token validity conditions: NotBefore must be less than NotOnOrAfter.");
    std::swap(assertion.conditions.notBefore, assertion.conditions.notOnOrAfter);
    EXPECT_EQ(Verdict(assertion, early), kFuture);
    EXPECT_EQ(Verdict(assertion, late), kExpired);
    EXPECT_EQ(Verdict(assertion), "Invalid token subject validity");
    assertion.subject.confirmation.notOnOrAfter = assertion.conditions.notOnOrAfter;
    EXPECT_EQ(Verdict(assertion),
              "The SubjectConfirmation delegate id does not match the id of the last delegate");
}

}  // namespace
