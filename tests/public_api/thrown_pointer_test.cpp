#include "token_service.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

using namespace Saml;
using namespace Saml::Xml::Security;

namespace {

constexpr char kFlagValue[] = "<saml2:AttributeValue>false</saml2:AttributeValue>";

// The message of the pointer thrown for a correctly signed token whose solution-user attribute has
// `values` instead of its one value; empty when nothing of that kind was thrown.
std::string ThrownPointersMessage(const std::string& values) {
    const TokenService service;
    boost::intrusive_ptr<KeyInfoResolver> resolver;
    CreateTrustChainKeyResolver({service.certificate()}, resolver);
    const std::string token = service.Issue(kFlagValue, values);
    try {
        CreateSamlToken(token, resolver.get());
        ADD_FAILURE() << "the token was accepted";
    } catch (const std::exception& caught) {
        ADD_FAILURE() << "thrown by value: " << caught.what();
    } catch (ParseException* thrown) {
        const std::unique_ptr<ParseException> owned(thrown);
        return owned->what();
    }
    return {};
}

TEST(TheThrownPointer, SaysThatTheSolutionFlagHasNoValue) {
    EXPECT_EQ(ThrownPointersMessage(""), "No value found for attribute isSolution.");
}

TEST(TheThrownPointer, SaysThatTheSolutionFlagHasSeveralValues) {
    EXPECT_EQ(ThrownPointersMessage(std::string(kFlagValue) + kFlagValue),
              "More than one value found for attribute isSolution.");
}

TEST(TheThrownPointer, IsCaughtByPointersToItsBasesToo) {
    const TokenService service;
    boost::intrusive_ptr<KeyInfoResolver> resolver;
    CreateTrustChainKeyResolver({service.certificate()}, resolver);
    const std::string token = service.Issue(kFlagValue, "");
    try {
        CreateSamlToken(token, resolver.get());
        FAIL() << "the token was accepted";
    } catch (Exception* thrown) {
        const std::unique_ptr<Exception> owned(thrown);
        EXPECT_NE(dynamic_cast<ParseException*>(owned.get()), nullptr);
    }
}

}  // namespace
