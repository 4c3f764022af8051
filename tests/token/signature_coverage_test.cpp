#include "saml/token/signature_coverage.h"

#include "support/thrown.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace Saml;
using namespace Saml::Xml::Security;

/// A reference of which only the URI matters.
class UriOnly final : public SignatureReference {
  public:
    explicit UriOnly(std::string uri) : uri_(std::move(uri)) {}

    Xml::ElementNode* GetElement() override { return nullptr; }
    const std::string& GetURI() override { return uri_; }
    Xml::ElementNode* GetReferent() override { return nullptr; }
    const std::string& GetDigestMethod() override { return uri_; }
    const std::string& GetCanonicalizationMethod() override { return uri_; }
    bool IsEnveloped() override { return false; }
    void AddEnvelopedSignatureTransform() override {}
    void SetCanonicalizationMethod(const std::string&) override {}
    bool VerifyDigest() override { return false; }
    void UpdateDigest() override {}

  private:
    std::string uri_;
};

/// A signature of which only the references' URIs matter.
class ReferencesOnly final : public Signature {
  public:
    explicit ReferencesOnly(const std::vector<std::string>& uris) : uris_(uris) {}

    Xml::ElementNode* GetElement() override { return nullptr; }
    const std::string& GetCanonicalizationMethod() override { return empty_; }
    const std::string& GetSignatureMethod() override { return empty_; }
    void GetReferences(std::list<boost::intrusive_ptr<SignatureReference>>& out) override {
        out.clear();
        for (const std::string& uri : uris_)
            out.emplace_back(new UriOnly(uri));
    }
    bool Verify(KeyInfoResolver*, const std::set<std::string>&) override { return false; }
    void Sign(ByteBlob) override {}
    void AddReference(const std::string&, const std::string&,
                      boost::intrusive_ptr<SignatureReference>&) override {}
    void SetKeyInfo(const std::list<ByteBlob>&) override {}
    void SetKeyInfo(Xml::ElementNode*) override {}

  private:
    std::vector<std::string> uris_;
    std::string empty_;
};

void CheckCoverage(const std::vector<std::string>& uris, const std::string& id) {
    const boost::intrusive_ptr<Signature> signature(new ReferencesOnly(uris));
    RequireWholeAssertionCovered(*signature, id);
}

TEST(SignatureCoverage, IsGivenByAnEmptyUri) {
    EXPECT_NO_THROW(CheckCoverage({""}, "_1"));
}

TEST(SignatureCoverage, IsGivenByTheIdOfTheAssertion) {
    EXPECT_NO_THROW(CheckCoverage({"#_1"}, "_1"));
    EXPECT_NO_THROW(CheckCoverage({"#"}, ""));
}

TEST(SignatureCoverage, IsGivenByAnyOfSeveralReferences) {
    EXPECT_NO_THROW(CheckCoverage({"#_2", "", "#_3"}, "_1"));
    EXPECT_NO_THROW(CheckCoverage({"#_2", "#_3", "#_1"}, "_1"));
}

TEST(SignatureCoverage, IsNotGivenByAnythingElse) {
    for (const std::string uri : {"#_2", "_1", "#_1 ", "#_11", "#_", "#", "##_1", "#_1/",
                                  "#xpointer(/)", "#xpointer(id('_1'))", "urn:x#_1"})
        EXPECT_EQ(MessageOf<ParseException>([&] { CheckCoverage({uri}, "_1"); }),
                  "Token's signature must cover the entire token")
            << uri;
    EXPECT_EQ(MessageOf<ParseException>([] { CheckCoverage({}, "_1"); }),
              "Token's signature must cover the entire token");
    EXPECT_EQ(MessageOf<ParseException>([] { CheckCoverage({"#_A"}, "_a"); }),
              "Token's signature must cover the entire token");
}

}  // namespace
