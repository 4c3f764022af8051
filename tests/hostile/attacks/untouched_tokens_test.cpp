// The other attacks start from these tokens: untouched, they are accepted.
#include "hostile/attacks/provider.h"

#include <gtest/gtest.h>

namespace Saml::Attacks {
namespace {

TEST(UntouchedTokens, AreAccepted) {
    Forge::TokenSpec bearer;
    Forge::TokenSpec holder = Provider::CustomerSpec();
    holder.holderOfKeyCertificate = "AQIDBAUG";
    const Forge::TokenSpec customer = Provider::CustomerSpec();
    ExpectOutcomes({
        {"Bearer", Provider::Signed(bearer), Accepted(bearer)},
        {"HolderOfKey", Provider::Signed(holder), Accepted(holder)},
        {"EverythingOptional", Provider::Signed(customer), Accepted(customer)},
    });
}

TEST(UntouchedTokens, AreRefusedWithoutASignature) {
    ExpectOutcomes({{"NoSignature", Forge::Write(Provider::CustomerSpec()),
                     Refused<ParseException>(
                         "Signature syntax error: Expected element 'Signature' not found.")}});
}

}  // namespace
}  // namespace Saml::Attacks
