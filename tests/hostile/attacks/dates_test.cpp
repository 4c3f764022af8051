// Windows of validity at the ends of the calendar, of 32 bits and of the tolerance. Every token has
// the provider's own signature: what is refused is refused for its dates. Dates that are compared
// with the clock lie minutes away from where the verdict changes.
#include "hostile/attacks/hand_made_signature.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace Saml::Attacks {
namespace {

constexpr std::int64_t kMinute = 60;
constexpr std::int64_t kHour = 60 * kMinute;
constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
/// After so many seconds a count of 32 bits is the same again.
constexpr std::int64_t kPeriod = std::int64_t{1} << 32;

using Forge::FromNow;

Forge::TokenSpec Window(const std::string& notBefore, const std::string& notOnOrAfter) {
    Forge::TokenSpec spec = Provider::CustomerSpec();
    spec.notBefore = notBefore;
    spec.notOnOrAfter = notOnOrAfter;
    return spec;
}

Attack Valid(const std::string& name, const Forge::TokenSpec& spec,
             std::int64_t tolerance = DefaultClockTolerance) {
    return {name, TokenWith({}, spec), Accepted(spec), nullptr, tolerance};
}
Attack RefusedAs(const std::string& message, const std::string& name, const Forge::TokenSpec& spec,
                 std::int64_t tolerance = DefaultClockTolerance) {
    return {name, TokenWith({}, spec), Refused<ParseException>(message), nullptr, tolerance};
}
Attack Future(const std::string& name, const Forge::TokenSpec& spec,
              std::int64_t tolerance = DefaultClockTolerance) {
    return RefusedAs("Token start date is in the future: " + spec.notBefore, name, spec, tolerance);
}
Attack Expired(const std::string& name, const Forge::TokenSpec& spec,
               std::int64_t tolerance = DefaultClockTolerance) {
    return RefusedAs("The token has expired at: " + spec.notOnOrAfter, name, spec, tolerance);
}
Attack Unsatisfiable(const std::string& name, const Forge::TokenSpec& spec,
                     std::int64_t tolerance = DefaultClockTolerance) {
    return RefusedAs(
        "Unsatisfiable token validity conditions: NotBefore must be less than NotOnOrAfter.", name,
        spec, tolerance);
}

TEST(Tolerances, OfAnySizeWidenAndNarrowTheWindow) {
    const Forge::TokenSpec now = Window(FromNow(-kMinute), FromNow(kHour));
    const Forge::TokenSpec past = Window("2001-01-01T00:00:00Z", "2002-01-01T00:00:00Z");
    const Forge::TokenSpec soon = Window(FromNow(9 * kMinute), FromNow(kHour));
    const Forge::TokenSpec later = Window(FromNow(11 * kMinute), FromNow(kHour));
    const Forge::TokenSpec ended = Window(FromNow(-kHour), FromNow(-9 * kMinute));
    const Forge::TokenSpec longEnded = Window(FromNow(-kHour), FromNow(-11 * kMinute));
    const Forge::TokenSpec began = Window(FromNow(-kMinute), FromNow(3 * kHour));
    const Forge::TokenSpec ends = Window(FromNow(-3 * kHour), FromNow(kMinute));
    const Forge::TokenSpec wide = Window(FromNow(-3 * kHour), FromNow(3 * kHour));
    ExpectOutcomes({
        Valid("UsualBeforeTheStart", soon),
        Future("UsualTooEarly", later),
        Valid("UsualBehindTheEnd", ended),
        Expired("UsualTooLate", longEnded),
        Valid("NoneInsideTheWindow", now, 0),
        Future("NoneBeforeTheStart", Window(FromNow(5 * kMinute), FromNow(kHour)), 0),
        Expired("NoneBehindTheEnd", Window(FromNow(-kHour), FromNow(-5 * kMinute)), 0),
        Valid("MinusOneInsideTheWindow", now, -1),
        Future("MinusAnHourInTheFirstMinute", began, -kHour),
        Expired("MinusAnHourInTheLastMinute", ends, -kHour),
        Valid("MinusAnHourInTheMiddle", wide, -kHour),
        Valid("MostInThePast", past, kMost),
        Valid("MostAtTheEpoch", Window("1970-01-01T00:00:00Z", "1970-01-01T00:00:01Z"), kMost),
        Valid("MostInTheFuture", Window("2037-01-01T00:00:00Z", "2038-01-01T00:00:00Z"), kMost),
        Unsatisfiable("MostForNoWindow", Window(past.notOnOrAfter, past.notBefore), kMost),
        Future("LeastInsideTheWindow", wide, kLeast),
        Future("LeastPlusOneInsideTheWindow", wide, kLeast + 1),
        Future("LeastInThePast", past, kLeast),
        Valid("ThirtyTwoBitsInThePast", past, kPeriod),
        Expired("AtTheFirstSecond", Window("1901-12-13T20:45:52Z", "1901-12-13T20:45:53Z"), -1),
    });
}

TEST(Windows, ThatEndBeforeTheyBeginAreUnsatisfiable) {
    const std::string now = FromNow(0);
    ExpectOutcomes({
        Unsatisfiable("Equal", Window(now, now)),
        Unsatisfiable("EqualForAnyTolerance", Window(now, now), kMost),
        Unsatisfiable("Reversed", Window(FromNow(kMinute), FromNow(-kMinute))),
        // Equal in whole seconds: fractions are not compared.
        Unsatisfiable("LessThanASecond",
                      Window("2020-01-01T00:00:00.000Z", "2020-01-01T00:00:00.999Z"), kMost),
        Unsatisfiable("EqualAndWrittenInTwoWays",
                      Window("2020-01-01T00:00:00.000Z", "2020-01-01T00:00:00Z"), kMost),
        Valid("OneSecond", Window("2020-01-01T00:00:00.999Z", "2020-01-01T00:00:01.000Z"), kMost),
    });
}

// Seconds are kept in 32 bits, the texts are not: past the last second of 2038-01-19T03:14:07Z they
// begin anew at 1901-12-13T20:45:52Z. Windows across that instant have no time in them.
TEST(Windows, AreJudgedInThirtyTwoBits) {
    const std::string begin = FromNow(-kMinute);
    const std::string first = "1901-12-13T20:45:52Z";  // -2^31
    ExpectOutcomes({
        Valid("ToTheLastSecond", Window(begin, "2038-01-19T03:14:07Z")),
        Unsatisfiable("ToTheSecondBehind", Window(begin, "2038-01-19T03:14:08Z")),
        Unsatisfiable("From2037To2039", Window("2037-01-01T00:00:00Z", "2039-01-01T00:00:00Z")),
        Valid("FromTheFirstSecond", Window(first, "2037-01-01T00:00:00Z")),
        // One second earlier is 2038-01-19T03:14:07Z.
        Unsatisfiable("FromTheSecondBefore",
                      Window("1901-12-13T20:45:51Z", "2037-01-01T00:00:00Z")),
        Valid("FromTheEpoch", Window("1970-01-01T00:00:00Z", "2037-01-01T00:00:00Z")),
        Valid("FromTheSecondBeforeTheEpoch",
              Window("1969-12-31T23:59:59Z", "2037-01-01T00:00:00Z")),
        // 2106-02-07T06:28:15Z is 2^32 - 1, which is -1.
        Unsatisfiable("To2106", Window(begin, "2106-02-07T06:28:15Z")),
        Expired("FromTheFirstSecondTo2106", Window(first, "2106-02-07T06:28:15Z")),
        Expired("FromTheFirstSecondToTheEpochAgain", Window(first, "2106-02-07T06:28:16Z")),
        // 253402300799 is -769665.
        Unsatisfiable("To9999", Window(begin, "9999-12-31T23:59:59Z")),
        Expired("FromTheFirstSecondTo9999", Window(first, "9999-12-31T23:59:59.999Z")),
        // -17987443200 is -807574016, in 1944.
        Valid("From1400", Window("1400-01-01T00:00:00Z", "2037-01-01T00:00:00Z")),
        RefusedAs("Conditions/@NotBefore is not a date", "From1399",
                  Window("1399-12-31T23:59:59Z", "2037-01-01T00:00:00Z")),
    });
}

// What 32 bits cannot tell apart: it takes a provider who signs such dates.
TEST(Windows, OfAnotherPeriodOfThirtyTwoBitsAreTheSame) {
    ExpectOutcomes({
        Valid("TheNextPeriod", Window(FromNow(kPeriod - kMinute), FromNow(kPeriod + kHour))),
        Valid("ThePeriodBefore", Window(FromNow(-kPeriod - kMinute), FromNow(-kPeriod + kHour))),
        Valid("EndsAPeriodLater", Window(FromNow(-kMinute), FromNow(kPeriod + kHour))),
        Future("TheNextPeriodTooEarly",
               Window(FromNow(kPeriod + kHour), FromNow(kPeriod + 2 * kHour))),
        Expired("TheNextPeriodTooLate",
                Window(FromNow(kPeriod - 2 * kHour), FromNow(kPeriod - kHour))),
    });
}

TEST(Dates, ThatAreNoneAreRefusedAtBothEnds) {
    const std::pair<const char*, const char*> texts[] = {
        {"Empty", ""},
        {"LeapSecond", "2016-12-31T23:59:60Z"},
        {"HourTwentyFour", "2020-01-01T24:00:00Z"},
        {"MinuteSixty", "2020-01-01T00:60:00Z"},
        {"MonthZero", "2020-00-01T00:00:00Z"},
        {"MonthThirteen", "2020-13-01T00:00:00Z"},
        {"DayZero", "2020-01-00T00:00:00Z"},
        {"ThirtyFirstOfApril", "2020-04-31T00:00:00Z"},
        {"LeapDayOfAUsualYear", "2023-02-29T00:00:00Z"},
        {"LeapDayOfACentury", "2100-02-29T00:00:00Z"},
        {"YearZero", "0000-01-01T00:00:00Z"},
        {"YearOne", "0001-01-01T00:00:00Z"},
        {"YearBelowTheCalendar", "1399-12-31T23:59:59.999Z"},
        {"YearOfFiveDigits", "12020-01-01T00:00:00Z"},
        {"NegativeYear", "-020-01-01T00:00:00Z"},
        {"SignedYear", "+020-01-01T00:00:00Z"},
        {"OneDigitOfAFraction", "2020-01-01T00:00:00.5Z"},
        {"SixDigitsOfAFraction", "2020-01-01T00:00:00.123456Z"},
        {"CommaBeforeTheFraction", "2020-01-01T00:00:00,000Z"},
        {"SignInTheFraction", "2020-01-01T00:00:00.-01Z"},
        {"ZoneOfZero", "2020-01-01T00:00:00+00:00"},
        {"ZoneBehindAFraction", "2020-01-01T00:00:00.000+00:00"},
        {"ZoneOfTwentyFourCharacters", "2020-01-01T00:00:00+0000"},
        {"NoZone", "2020-01-01T00:00:00"},
        {"NoZoneBehindAFraction", "2020-01-01T00:00:00.0000"},
        {"SmallLetters", "2020-01-01t00:00:00z"},
        {"BlankInTheMiddle", "2020-01-01 00:00:00Z"},
        {"BlankInFront", " 2020-01-01T00:00:00Z"},
        {"BlankBehind", "2020-01-01T00:00:00Z "},
        {"BlankInANumber", "2020- 1-01T00:00:00Z"},
        {"Hexadecimal", "0x20-01-01T00:00:00Z"},
        {"ArabicDigits", "\xD9\xA2\xD9\xA0-01-01T00:00:00Z"},
        {"DateAlone", "2020-01-01"},
        {"Infinity", "infinity"},
    };
    std::vector<Attack> attacks;
    for (const auto& [name, text] : texts) {
        attacks.push_back(RefusedAs("Conditions/@NotBefore is not a date",
                                    std::string("NotBefore") + name, Window(text, FromNow(kHour))));
        attacks.push_back(RefusedAs("Conditions/@NotOnOrAfter is not a date",
                                    std::string("NotOnOrAfter") + name, [&spec = text] {
                                        Forge::TokenSpec made = Window(FromNow(-kMinute), spec);
                                        made.confirmationNotOnOrAfter = FromNow(kHour);
                                        return made;
                                    }()));
    }
    ExpectOutcomes(attacks);
}

TEST(Dates, AreReadInTheirTwoForms) {
    const std::string end = "2037-01-01T00:00:00Z";
    ExpectOutcomes({
        Valid("Short", Window("2020-01-01T00:00:00Z", end)),
        Valid("Long", Window("2020-01-01T00:00:00.000Z", end)),
        Valid("LeapDay", Window("2000-02-29T23:59:59.999Z", end)),
        // The long form of some signers; what it says behind the zone is not examined.
        Valid("FourCharactersBehindTheZone", Window("2020-01-01T00:00:00Z+99h", end)),
    });
}

TEST(ConfirmationDates, OfBearersCompareAsTexts) {
    const std::string invalid = "Invalid token subject validity";
    const auto confirmed = [](const std::string& end, const std::string& confirmation) {
        Forge::TokenSpec spec = Window(FromNow(-kMinute), end);
        spec.confirmationNotOnOrAfter = confirmation;
        return spec;
    };
    const std::string end = "2037-01-01T00:00:00Z";
    ExpectOutcomes({
        RefusedAs(invalid, "Earlier", confirmed(end, "2036-12-31T23:59:59Z")),
        RefusedAs(invalid, "LongPast", confirmed(end, "2001-01-01T00:00:00Z")),
        RefusedAs(invalid, "EarlierForAnyTolerance", confirmed(end, "2036-12-31T23:59:59Z"), kMost),
        // A point comes before the "Z".
        RefusedAs(invalid, "EqualButLong", confirmed(end, "2037-01-01T00:00:00.000Z")),
        RefusedAs(invalid, "AMomentLaterButLong", confirmed(end, "2037-01-01T00:00:00.999Z")),
        Valid("EqualButShort", confirmed("2037-01-01T00:00:00.000Z", end)),
        // Later by the text, although its seconds wrap around.
        Valid("Later", confirmed(end, "9999-12-31T23:59:59Z")),
        RefusedAs("SubjectConfirmationData/@NotOnOrAfter is not a date", "None",
                  confirmed(end, "never")),
    });
}

TEST(OtherDates, AreNotCompared) {
    const auto with = [](const auto& change) {
        Forge::TokenSpec spec = Provider::CustomerSpec();
        change(spec);
        return spec;
    };
    const std::string far = "9999-12-31T23:59:59Z";
    ExpectOutcomes({
        Valid("IssuedInTheFuture", with([&](auto& spec) { spec.issueInstant = far; })),
        Valid("AuthenticatedInTheFuture", with([&](auto& spec) { spec.authnInstant = far; })),
        Valid("DelegatedInTheFuture",
              with([&](auto& spec) { spec.delegates.front().instant = far; })),
        // Only a bearer's confirmation has to last as long as the conditions.
        Valid("HolderOfAKeyConfirmedForThePast", with([](auto& spec) {
                  spec.holderOfKeyCertificate = "AQIDBAUG";
                  spec.confirmationNotOnOrAfter = "2001-01-01T00:00:00Z";
              })),
        RefusedAs("Assertion/@IssueInstant is not a date", "IssuedNever",
                  with([](auto& spec) { spec.issueInstant = "never"; })),
        RefusedAs("AuthnStatement/@AuthnInstant is not a date", "AuthenticatedNever",
                  with([](auto& spec) { spec.authnInstant = "never"; })),
        RefusedAs("Delegate/@DelegationInstant is not a date", "DelegatedNever",
                  with([](auto& spec) { spec.delegates.front().instant = "never"; })),
    });
}

// The clock comes before the signature: a replayed token tells nothing about keys.
TEST(DatesOfForgeries, AreJudgedBeforeTheirSignatures) {
    HandMadeSignature forged;
    forged.sign = SigningWith("attacker");
    const Forge::TokenSpec past = Window("2001-01-01T00:00:00Z", "2002-01-01T00:00:00Z");
    const Forge::TokenSpec later = Window(FromNow(11 * kMinute), FromNow(kHour));
    const std::string replayed = TokenWith({}, past);
    const std::string expired =
        Refused<ParseException>("The token has expired at: 2002-01-01T00:00:00Z");
    ExpectOutcomes({
        {"ForgedAndExpired", TokenWith(forged, past), expired},
        {"ForgedAndExpiredForAnyTolerance", TokenWith(forged, past), RefusedAsTampered(), nullptr,
         kMost},
        {"ForgedAndInTheFuture", TokenWith(forged, later),
         Refused<ParseException>("Token start date is in the future: " + later.notBefore)},
        {"Replayed", replayed, expired},
        {"ReplayedWithALaterEnd",
         [&] {
             std::string token = replayed;
             for (std::size_t at = 0; (at = token.find("2002-", at)) != std::string::npos;)
                 token.replace(at, 5, "2037-");
             return token;
         }(),
         RefusedAsTampered()},
    });
}

}  // namespace
}  // namespace Saml::Attacks
