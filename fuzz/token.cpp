#include "saml/token.h"

#include "support/canonical_differences.h"
#include "support/documents.h"
#include "support/laws.h"
#include "support/signature_oracle.h"
#include "support/signing_key.h"
#include "support/token_account.h"
#include "support/token_reading.h"

// A text that becomes a token says to any other reader what the token says, and was signed as other
// libraries verify it; every other text is refused by one of the documented exceptions.

namespace {

using TokenPtr = std::shared_ptr<const Saml::SamlToken>;

/// The token that `create` makes; null when it refuses.
template <class Create>
TokenPtr TokenOf(Create create) {
    try {
        return create();
    } catch (const Saml::InvalidTokenException&) {
    } catch (const Saml::Xml::XMLParseException&) {
    } catch (Saml::ParseException* refusal) {
        delete refusal;
    }
    return nullptr;
}

}  // namespace

void Fuzz::CheckLaws(std::string_view input) {
    const std::string text(input);
    const TokenPtr token =
        TokenOf([&] { return Saml::CreateSamlToken(text, &TrustingTheSigner()); });
    if (!token) return;
    Require(token->GetXml() == text, "a token keeps its text");
    const std::string account = Told(Oracle::AccountOf(*token));
    const auto reading = ReadToken(text);
    Require(reading || Mentions(text, "<!DOCTYPE"), "another reader reads an accepted text");
    if (reading)
        Require(SayTheSame(account, Told(*reading), text),
                "a token says what another reader reads in its text");

    const DocumentPtr document = Parsed(text);
    RequireThatOthersVerify(text, *document, *FirstSignature(*document));
    const TokenPtr fromDom = TokenOf([&] {
        return Saml::CreateSamlTokenFromDom(document->GetRootElement(), &TrustingTheSigner());
    });
    Require(fromDom != nullptr, "what is accepted as a text is accepted as a tree");
    Require(account == Told(Oracle::AccountOf(*fromDom)), "a tree says what its text says");
}
