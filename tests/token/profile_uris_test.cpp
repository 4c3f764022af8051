#include "saml/token.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace Saml;

struct UriCase {
    const char* name;
    const char* const* constant;
    const char* configured;  ///< By the cache variable.
    const char* standard;    ///< What a build has that configures nothing.
};
class ProfileUris : public testing::TestWithParam<UriCase> {};

TEST_P(ProfileUris, AreWhatTheBuildWasConfiguredWith) {
    EXPECT_STREQ(*GetParam().constant, GetParam().configured);
}

TEST_P(ProfileUris, HaveTheseDefaults) {
    if (std::string(GetParam().configured) != GetParam().standard)
        GTEST_SKIP() << "this build serves another provider";
    EXPECT_STREQ(*GetParam().constant, GetParam().standard);
}

INSTANTIATE_TEST_SUITE_P(
    Token, ProfileUris,
    testing::Values(UriCase{"UpnNameFormat", &ProfileUri::UpnNameFormat, SAMLTOKEN_UPN_NAME_FORMAT,
                            "http://schemas.xmlsoap.org/claims/UPN"},
                    UriCase{"GroupIdentity", &ProfileUri::GroupIdentity, SAMLTOKEN_GROUP_IDENTITY,
                            "http://sso.example.org/attr-names/2009/01/GroupIdentity"},
                    UriCase{"IsSolution", &ProfileUri::IsSolution, SAMLTOKEN_IS_SOLUTION,
                            "http://claims.example.org/attr-names/2011/07/isSolution"},
                    UriCase{"GivenName", &ProfileUri::GivenName, SAMLTOKEN_GIVEN_NAME,
                            "http://schemas.xmlsoap.org/ws/2005/05/identity/claims/givenname"},
                    UriCase{"Surname", &ProfileUri::Surname, SAMLTOKEN_SURNAME,
                            "http://schemas.xmlsoap.org/ws/2005/05/identity/claims/surname"},
                    UriCase{"ExtensionNamespace", &ProfileUri::ExtensionNamespace,
                            SAMLTOKEN_EXTENSION_NAMESPACE,
                            "http://sso.example.org/names/2009/12/std-ext/SAML2.0"}),
    [](const auto& row) { return std::string(row.param.name); });

}  // namespace
