// One genuine token, spoiled at every byte. Whatever is accepted must say the same of the same
// subject, and stand in the list of places that mean nothing.
#include "hostile/attacks/provider.h"
#include "hostile/attacks/spoiled_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <set>
#include <utility>
#include <vector>

namespace Saml::Attacks {
namespace {

const std::set<std::string> kDocumentedClasses = {
    "accepted",
    "Saml::Xml::XMLParseException",
    "Saml::ParseException",
    "Saml::InvalidSignatureException",
};

struct Token {
    std::string text;
    std::string accepted;  ///< Its outcome, which says all about its subject.
    Extent signatureValue;
    Extent signer;     ///< The text of the signer's certificate.
    Extent authority;  ///< The text of the one behind it.
};

const Token& Genuine() {
    static const Token token = [] {
        const Forge::TokenSpec customer = Provider::CustomerSpec();
        Token made;
        made.text = Provider::Signed(customer);
        made.accepted = Accepted(customer);
        made.signatureValue = ContentOf(made.text, "ds:SignatureValue");
        made.signer = ContentOf(made.text, "ds:X509Certificate");
        made.authority = ContentOf(made.text, "ds:X509Certificate", made.signer.end);
        return made;
    }();
    return token;
}

/// The padding of a certificate's text. A letter in its place adds bytes behind the certificate,
/// which ends where its own DER says so.
bool IsBehindACertificate(Extent certificate, std::size_t place, char now) {
    return certificate.Holds(place) && Genuine().text[place] == '=' && IsBase64Letter(now);
}

/// The changes that mean nothing, whoever is trusted: in the texts in Base64 outside of what is
/// signed. Everything else is signed, or markup, or a byte of the signature, or of a certificate,
/// which is signed as a whole.
bool IsMeaningless(const std::string& flipped, std::size_t place) {
    const Token& token = Genuine();
    for (const Extent& base64 : {token.signatureValue, token.signer, token.authority})
        if (IsUnusedBase64(token.text, base64, place, flipped)) return true;
    return IsBehindACertificate(token.signer, place, flipped[place]) ||
           IsBehindACertificate(token.authority, place, flipped[place]);
}

bool IsControlCharacter(char character) {
    return static_cast<unsigned char>(character) < ' ' &&
           std::string("\t\n\r").find(character) == std::string::npos;
}

/// Who trusts exactly the signer asks for no authority and reads no certificate behind the
/// signer's: any Base64 will do there.
bool IsMeaninglessToTheSignersFriends(const std::string& flipped, std::size_t place) {
    const Extent authority = Genuine().authority;
    if (IsMeaningless(flipped, place)) return true;
    if (!authority.Holds(place) || IsControlCharacter(flipped[place])) return false;
    std::string error;
    Base64::Decode(flipped.substr(authority.begin, authority.end - authority.begin), error);
    return error.empty();
}

class FlippedBit : public testing::TestWithParam<unsigned> {};

TEST_P(FlippedBit, IsRefusedWhereverItMeansSomething) {
    const Token& token = Genuine();
    Tally tally;
    for (std::size_t place = 0; place != token.text.size(); ++place) {
        const std::string flipped = WithBitFlipped(token.text, place, GetParam());
        const auto expect = [&](const Resolver& trust, bool isMeaningless) {
            const std::string outcome = OutcomeByText(flipped, trust);
            tally.Add(ClassOf(outcome));
            if (isMeaningless)
                EXPECT_EQ(outcome, token.accepted) << "at " << place;
            else
                EXPECT_NE(ClassOf(outcome), "accepted") << "at " << place;
            EXPECT_EQ(kDocumentedClasses.count(ClassOf(outcome)), 1u) << outcome;
        };
        expect(Provider::TrustInTheRoot(), IsMeaningless(flipped, place));
        expect(Provider::TrustInTheSigner(), IsMeaninglessToTheSignersFriends(flipped, place));
    }
    std::cout << token.text.size() << " bytes\n";
    tally.Report();
}

INSTANTIATE_TEST_SUITE_P(OfAGenuineToken, FlippedBit, testing::Range(0U, 8U));

// Every end of it, and every beginning: none is a document.
TEST(TruncatedTokens, AreNotWellFormed) {
    const Token& token = Genuine();
    Tally tally;
    for (std::size_t place = 0; place != token.text.size(); ++place)
        for (const std::string& part :
             {token.text.substr(0, place), token.text.substr(token.text.size() - place)}) {
            const std::string outcome = OutcomeByText(part, Provider::TrustInTheSigner());
            tally.Add(ClassOf(outcome));
            ASSERT_EQ(ClassOf(outcome), "Saml::Xml::XMLParseException") << outcome << "\n" << part;
        }
    tally.Report();
}

/// The texts in Base64 outside of what is signed.
bool SaysTheSameInBase64(const std::string& spoiled) {
    const Token& token = Genuine();
    return DecodesAsBefore(token.text, token.signatureValue, spoiled) ||
           DecodesAsBefore(token.text, token.signer, spoiled);
}

/// `spoil` for each place of the token; what is accepted says the same, and the place is not
/// signed.
template <class Spoil, class MayBeAccepted>
void ExpectSameAccountOrRefusal(const Spoil& spoil, const MayBeAccepted& mayBeAccepted) {
    const Token& token = Genuine();
    Tally tally;
    for (std::size_t place = 0; place != token.text.size(); ++place)
        for (const Resolver& trust : {Provider::TrustInTheRoot(), Provider::TrustInTheSigner()}) {
            const std::string spoiled = spoil(place);
            const std::string outcome = OutcomeByText(spoiled, trust);
            tally.Add(ClassOf(outcome));
            EXPECT_EQ(kDocumentedClasses.count(ClassOf(outcome)), 1u) << outcome;
            if (ClassOf(outcome) != "accepted") continue;
            EXPECT_EQ(outcome, token.accepted) << "at " << place;
            EXPECT_TRUE(mayBeAccepted(place) || SaysTheSameInBase64(spoiled))
                << "at " << place << " of " << token.text;
        }
    tally.Report();
}

/// Between a tag's name and its attributes, and between these.
bool IsBlankInATag(std::size_t place) {
    const std::string& text = Genuine().text;
    if (text[place] != ' ' || text.rfind('<', place) == std::string::npos) return false;
    const std::string tag = text.substr(text.rfind('<', place), place - text.rfind('<', place));
    return tag.find('>') == std::string::npos && std::count(tag.begin(), tag.end(), '"') % 2 == 0;
}

/// At the end of a certificate's text, where more bytes may stand behind it.
bool IsAtTheEndOf(Extent certificate, std::size_t place) {
    return certificate.Holds(place) && certificate.end - place <= 4;
}

/// What may change of the certificates: of the signer's its end, of the one behind it anything, for
/// those who trust the signer.
bool IsUnreadCertificate(std::size_t place) {
    return Genuine().authority.Holds(place) || IsAtTheEndOf(Genuine().signer, place);
}

/// The end of a tag in `X509Data`: a second ">" is a text, and texts mean nothing there.
bool IsBetweenCertificates(std::size_t place) {
    const Token& token = Genuine();
    const std::size_t begin = token.text.find("<ds:X509Data>");
    const std::size_t end = token.text.find("</ds:X509Data>");
    return begin <= place && place < end && token.text[place] == '>';
}

TEST(TokensWithAByteLess, AreNeverAnothers) {
    ExpectSameAccountOrRefusal(
        [](std::size_t place) { return std::string(Genuine().text).erase(place, 1); },
        IsUnreadCertificate);
}

TEST(TokensWithAByteTwice, AreNeverAnothers) {
    ExpectSameAccountOrRefusal(
        [](std::size_t place) {
            return std::string(Genuine().text).insert(place, 1, Genuine().text[place]);
        },
        [](std::size_t place) {
            return IsBlankInATag(place) || IsBetweenCertificates(place) ||
                   IsUnreadCertificate(place);
        });
}

TEST(TokensWithTwoNeighboursSwapped, AreNeverAnothers) {
    ExpectSameAccountOrRefusal(
        [](std::size_t place) {
            std::string text = Genuine().text;
            if (place + 1 != text.size()) std::swap(text[place], text[place + 1]);
            return text;
        },
        [](std::size_t place) {
            const std::string& text = Genuine().text;
            return place + 1 == text.size() || text[place] == text[place + 1] ||
                   IsUnreadCertificate(place);
        });
}

}  // namespace
}  // namespace Saml::Attacks
