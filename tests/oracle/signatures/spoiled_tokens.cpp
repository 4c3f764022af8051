#include "oracle/signatures/spoiled_tokens.h"

#include "oracle/signatures/signed_parts.h"
#include "oracle/signatures/spoiling.h"
#include "oracle/signatures/xmlsec1.h"
#include "support/dice.h"
#include "support/random_seed.h"

#include <gtest/gtest.h>

#include <iostream>
#include <stdexcept>
#include <typeinfo>

namespace SignatureMatrix {
namespace {

using namespace Saml;

constexpr std::size_t kSpoilingsOfAToken = 40;
constexpr std::size_t kOneInThisManyForXmlSec1 = 20;

bool StillSays(const SignedParts& parts, const std::string& xml, const Cell& cell) {
    try {
        return SignedPartsOf(xml, cell) == parts;
    } catch (const std::runtime_error&) {
        return false;  // what libxml2 cannot read is not what was signed
    }
}

/// The second padding character of the signature value, if there is a first one, is one.
std::string WithWholePadding(std::string xml) {
    const std::size_t end = xml.find("SignatureValue>", xml.find("SignatureValue>") + 1);
    const std::size_t last = xml.rfind('<', end) - 1;
    if (xml[last - 1] == '=') xml[last] = '=';
    return xml;
}

}  // namespace

SpoilingTrial::SpoilingTrial(std::uint64_t usual, Witness witness)
    : seed_(RandomSeed(usual)), witness_(witness) {}

void SpoilingTrial::SpoilAndJudge(const std::string& token, const Cell& cell) {
    const SignedParts parts = SignedPartsOf(token, cell);
    const ResolverHandle resolver = SetOf(cell.size.signer);
    // Each token has numbers of its own, whichever tokens share its process.
    Dice dice(seed_, cell.Name());
    Spoiler spoiler(token, cell.Prefixes(), dice);
    for (std::size_t i = 0; i != kSpoilingsOfAToken; ++i) {
        const Spoiler::Spoiled spoiled = spoiler.Spoil(spoilings_);
        SCOPED_TRACE("seed " + std::to_string(seed_) + ", " + spoiled.how + ":\n" + spoiled.xml +
                     "\nIt was:\n" + token);
        const bool isChanged = !StillSays(parts, spoiled.xml, cell);
        const Verdict ours = JudgeOurselves(spoiled.xml, cell, resolver);
        if (ours.accepts) {
            EXPECT_FALSE(isChanged) << "accepted, but libxml2 reads something else than was signed";
        }
        ++spoilings_;
        changed_ += isChanged ? 1 : 0;
        ++(!ours.accepts ? refused_ : isChanged ? acceptedChanged_ : acceptedUnchanged_);
        const bool isSample = i % kOneInThisManyForXmlSec1 == tokens_ % kOneInThisManyForXmlSec1;
        if (witness_ == Witness::XmlSec1 && isSample)
            CompareWithXmlSec1(spoiled.xml, ours, isChanged);
    }
    ++tokens_;
}

SpoilingTrial::Verdict SpoilingTrial::JudgeOurselves(const std::string& xml, const Cell& cell,
                                                     const ResolverHandle& resolver) {
    try {
        TokenFrom(xml, cell.style, resolver);
        return {true, {}};
    } catch (const InvalidTokenException& refusal) {
        return {false, refusal.what()};
    } catch (const Xml::XMLParseException& refusal) {
        return {false, refusal.what()};
    } catch (const std::exception& other) {
        ADD_FAILURE() << "no refusal but " << typeid(other).name() << ": " << other.what();
        return {false, other.what()};
    }
}

// Where xmlsec1 accepts, we may be stricter about what a signature does not protect: comments
// within a text, attributes that the profile does not have, blanks within a group of Base64. Where
// it refuses, we refuse, but that we do not look at the second of two padding characters.
void SpoilingTrial::CompareWithXmlSec1(const std::string& xml, const Verdict& ours,
                                       bool isChanged) {
    const bool theirs = XmlSec1::Accepts(xml);
    ++compared_;
    if (theirs == ours.accepts) return;
    if (theirs) {
        EXPECT_FALSE(isChanged) << "xmlsec1 accepts, we say: " << ours.refusal;
        ++refusedByUsAlone_;
    } else {
        EXPECT_TRUE(XmlSec1::Accepts(WithWholePadding(xml))) << "xmlsec1 refuses, we accept";
        ++refusedByXmlSec1Alone_;
    }
}

void SpoilingTrial::ExpectUsefulCounts() const {
    EXPECT_GT(changed_ * 2, spoilings_);
    EXPECT_GT(acceptedUnchanged_, 0u);
    EXPECT_EQ(acceptedChanged_, 0u);
    const std::size_t samples = tokens_ * (kSpoilingsOfAToken / kOneInThisManyForXmlSec1);
    EXPECT_EQ(compared_, witness_ == Witness::XmlSec1 ? samples : 0);
    std::cout << tokens_ << " tokens, " << spoilings_ << " spoilings (" << changed_
              << " of another canonical form), " << refused_ << " refused, " << acceptedUnchanged_
              << " accepted with the same bytes, " << acceptedChanged_ << " with others; "
              << compared_ << " compared with xmlsec1, " << refusedByUsAlone_
              << " refused by us alone, " << refusedByXmlSec1Alone_ << " by it alone\n";
    testing::Test::RecordProperty("tokens", static_cast<int>(tokens_));
    testing::Test::RecordProperty("spoilings", static_cast<int>(spoilings_));
    testing::Test::RecordProperty("refused", static_cast<int>(refused_));
    testing::Test::RecordProperty("acceptedWithTheSameBytes", static_cast<int>(acceptedUnchanged_));
    testing::Test::RecordProperty("comparedWithXmlSec1", static_cast<int>(compared_));
}

}  // namespace SignatureMatrix
