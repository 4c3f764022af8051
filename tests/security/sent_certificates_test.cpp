#include "saml/security/sent_certificates.h"

#include "saml/security/x509_key_info.h"
#include "support/test_keys.h"
#include "support/thrown.h"

#include <gtest/gtest.h>

#include <list>
#include <string>

namespace Saml::Xml::Security {
namespace {

using TestKeys::ToBlob;

/// Key information of a caller's own class.
class ForeignKeyInfo final : public KeyInfo {
  public:
    explicit ForeignKeyInfo(bool isX509) : isX509_(isX509) {}
    bool IsX509() override { return isX509_; }
    void GetElement(boost::intrusive_ptr<ElementNode>& out) override { out = nullptr; }

  private:
    const bool isX509_;
};

TEST(SentCertificates, AreThoseOfTheKeyInfoInItsOrder) {
    const std::list<ByteBlob> certificates{ToBlob("first"), ToBlob(""), ToBlob("third")};
    const boost::intrusive_ptr<KeyInfo> keyInfo(new X509KeyInfo("ds", certificates));
    const std::list<ByteBlob>& sent = SentCertificates(keyInfo.get());
    ASSERT_EQ(sent.size(), 3U);
    EXPECT_EQ(*sent.front(), *ToBlob("first"));
    EXPECT_EQ(*sent.back(), *ToBlob("third"));
}

TEST(SentCertificates, AreNoneWithoutKeyInfo) {
    EXPECT_TRUE(SentCertificates(nullptr).empty());
}

TEST(SentCertificates, AreNoneInKeyInfoAboutSomethingElse) {
    const boost::intrusive_ptr<KeyInfo> keyInfo(new ForeignKeyInfo(false));
    EXPECT_TRUE(SentCertificates(keyInfo.get()).empty());
}

TEST(SentCertificates, CannotBeReadFromAForeignClassThatClaimsToHoldThem) {
    const boost::intrusive_ptr<KeyInfo> keyInfo(new ForeignKeyInfo(true));
    const std::string message =
        MessageOf<TypeMismatchException>([&keyInfo] { SentCertificates(keyInfo.get()); });
    EXPECT_NE(message.find("Saml::Xml::Security::X509KeyInfo"), std::string::npos) << message;
    EXPECT_NE(message.find("ForeignKeyInfo"), std::string::npos) << message;
}

TEST(SentCertificates, AreBlankWithoutBytes) {
    EXPECT_TRUE(IsBlank(nullptr));
    EXPECT_TRUE(IsBlank(ToBlob("")));
    EXPECT_FALSE(IsBlank(ToBlob("x")));
}

}  // namespace
}  // namespace Saml::Xml::Security
