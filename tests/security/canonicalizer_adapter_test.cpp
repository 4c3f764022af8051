#include "saml/security/canonicalizer_adapter.h"

#include "saml/xml/document_impl.h"
#include "support/canonical_forms.h"
#include "support/foreign_nodes.h"
#include "support/thrown.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace Saml::Xml::Security {
namespace {

using CanonicalizerPtr = boost::intrusive_ptr<Canonicalizer>;

TEST(CreateCanonicalizer, KnowsExclusiveCanonicalization) {
    const Held<Document> document = Parsed("<r xmlns:c='urn:c'><apex/></r>");
    EXPECT_EQ(
        CanonicalForm("http://www.w3.org/2001/10/xml-exc-c14n#", ElementNamed(*document, "apex")),
        "<apex></apex>");
}

TEST(CreateCanonicalizer, KnowsInclusiveCanonicalizationWithANumberSign) {
    const Held<Document> document = Parsed("<r xmlns:c='urn:c'><apex/></r>");
    EXPECT_EQ(CanonicalForm("http://www.w3.org/TR/2001/REC-xml-c14n-20010315#",
                            ElementNamed(*document, "apex")),
              "<apex xmlns:c=\"urn:c\"></apex>");
}

TEST(CreateCanonicalizer, RefusesEveryOtherIdentifier) {
    const std::string exclusive = "http://www.w3.org/2001/10/xml-exc-c14n#";
    const std::string inclusive = "http://www.w3.org/TR/2001/REC-xml-c14n-20010315";
    const std::vector<std::string> identifiers = {"",
                                                  inclusive,
                                                  inclusive + "#WithComments",
                                                  inclusive + "##",
                                                  inclusive + "# ",
                                                  " " + inclusive + "#",
                                                  exclusive + "WithComments",
                                                  "http://www.w3.org/2001/10/xml-exc-c14n",
                                                  "HTTP://www.w3.org/2001/10/xml-exc-c14n#",
                                                  exclusive + std::string(1, '\0'),
                                                  "http://www.w3.org/2006/12/xml-c14n11",
                                                  "%1%"};
    for (const std::string& identifier : identifiers) {
        CanonicalizerPtr result;
        const std::string message = MessageOf<UnsupportedCanonicalizationException>(
            [&] { CreateCanonicalizer(identifier, result); });
        // A message ends at its first zero byte.
        EXPECT_EQ(message, std::string("The following canonicalization method is unsupported: ") +
                               identifier.c_str());
        EXPECT_EQ(result, nullptr);
    }
}

TEST(CreateCanonicalizer, LeavesTheResultAloneWhenItFails) {
    CanonicalizerPtr result;
    CreateCanonicalizer(Algorithm::ExclusiveC14N, result);
    Canonicalizer* const before = result.get();
    EXPECT_THROW(CreateCanonicalizer("urn:other", result), UnsupportedCanonicalizationException);
    EXPECT_EQ(result.get(), before);
}

TEST(CreateCanonicalizer, ReleasesWhatTheResultHeld) {
    CanonicalizerPtr result;
    CreateCanonicalizer(Algorithm::ExclusiveC14N, result);
    const CanonicalizerPtr former = result;
    CreateCanonicalizer(Algorithm::InclusiveC14N, result);
    EXPECT_EQ(former->use_count(), 1u);
    EXPECT_EQ(result->use_count(), 1u);
    EXPECT_NE(former, result);
}

TEST(CanonicalizerAdapter, SeesEveryNode) {
    const Held<Document> document = Parsed("<apex> <b>\n</b> </apex>");
    EXPECT_EQ(CanonicalForm(Algorithm::ExclusiveC14N, *document->GetRootElement()),
              "<apex> <b>\n</b> </apex>");
}

class CanonicalizeArguments : public testing::TestWithParam<const char*> {
  protected:
    void SetUp() override { CreateCanonicalizer(GetParam(), canonicalizer_); }

    CanonicalizerPtr canonicalizer_;
    StringWriter out_;
};

TEST_P(CanonicalizeArguments, RefuseNull) {
    EXPECT_NE(
        MessageOf<InvalidArgumentException>([&] { canonicalizer_->Canonicalize(nullptr, out_); }),
        "");
    EXPECT_EQ(out_.data, "");
}

TEST_P(CanonicalizeArguments, RefuseADocument) {
    const Held<Document> document = Parsed("<apex/>");
    const TypeMismatchException expected(typeid(ElementNode), typeid(DocumentImpl));
    EXPECT_EQ(MessageOf<TypeMismatchException>(
                  [&] { canonicalizer_->Canonicalize(document.get(), out_); }),
              expected.what());
    EXPECT_EQ(out_.data, "");
}

TEST_P(CanonicalizeArguments, RefuseNodesOfForeignClasses) {
    const Held<Node> element(new ForeignElement);
    const Held<Node> text(new ForeignText);
    for (Node* const foreign : {element.get(), text.get()}) {
        const std::string message =
            MessageOf<TypeMismatchException>([&] { canonicalizer_->Canonicalize(foreign, out_); });
        const TypeMismatchException expected(typeid(NodeImpl), typeid(*foreign));
        EXPECT_EQ(message, expected.what());
    }
    EXPECT_EQ(out_.data, "");
}

INSTANTIATE_TEST_SUITE_P(CanonicalizerAdapter, CanonicalizeArguments,
                         testing::Values(+Algorithm::ExclusiveC14N, +Algorithm::InclusiveC14N),
                         [](const auto& row) {
                             return row.param == Algorithm::ExclusiveC14N ? "Exclusive"
                                                                          : "Inclusive";
                         });

TEST(CanonicalizerAdapter, AppendsToWhatTheWriterHas) {
    const Held<ElementNode> apex = NewElement("a");
    CanonicalizerPtr canonicalizer;
    CreateCanonicalizer(Algorithm::ExclusiveC14N, canonicalizer);
    StringWriter out;
    canonicalizer->Canonicalize(apex.get(), out);
    canonicalizer->Canonicalize(apex.get(), out);
    EXPECT_EQ(out.data, "<a></a><a></a>");
}

/// What a writer throws need not be an exception class of anybody's.
struct DiskFull {
    int sector;
};

class FailingWriter final : public Writer {
  public:
    explicit FailingWriter(std::size_t capacity) : capacity_(capacity) {}
    void Write(const char* data, int length) override {
        if (written.size() >= capacity_) throw DiskFull{7};
        written.append(data, static_cast<std::size_t>(length));
    }

    std::string written;

  private:
    std::size_t capacity_;
};

TEST(CanonicalizerAdapter, LetsThroughWhatTheWriterThrows) {
    const Held<ElementNode> apex = NewElement("a");
    CanonicalizerPtr canonicalizer;
    CreateCanonicalizer(Algorithm::ExclusiveC14N, canonicalizer);
    FailingWriter out(0);
    try {
        canonicalizer->Canonicalize(apex.get(), out);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const DiskFull& failure) {
        EXPECT_EQ(failure.sector, 7);
    }
}

TEST(CanonicalizerAdapter, LeavesWrittenWhatTheWriterTookBeforeItFailed) {
    const Held<ElementNode> apex = NewElement("a");
    for (int i = 0; i != 300000; ++i)
        apex->AppendChild(NewElement("b").get());
    CanonicalizerPtr canonicalizer;
    CreateCanonicalizer(Algorithm::InclusiveC14N, canonicalizer);
    StringWriter whole;
    canonicalizer->Canonicalize(apex.get(), whole);

    FailingWriter out(100000);
    EXPECT_THROW(canonicalizer->Canonicalize(apex.get(), out), DiskFull);
    EXPECT_GE(out.written.size(), 100000u);
    EXPECT_LT(out.written.size(), whole.data.size());
    EXPECT_TRUE(out.written == whole.data.substr(0, out.written.size()));

    // The object is as good as before.
    StringWriter again;
    canonicalizer->Canonicalize(apex.get(), again);
    EXPECT_TRUE(again.data == whole.data);
}

TEST(CanonicalizerAdapter, ServesThreadsAtOnce) {
    CanonicalizerPtr canonicalizer;
    CreateCanonicalizer(Algorithm::ExclusiveC14N, canonicalizer);
    std::vector<std::string> forms(4);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i != forms.size(); ++i)
        threads.emplace_back([&canonicalizer, &form = forms[i], i] {
            const Held<ElementNode> apex = NewElement("a", "p");
            apex->SetAttribute("xmlns:p", "urn:" + std::to_string(i));
            for (int round = 0; round != 200; ++round) {
                StringWriter out;
                canonicalizer->Canonicalize(apex.get(), out);
                form = std::move(out.data);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    for (std::size_t i = 0; i != forms.size(); ++i)
        EXPECT_EQ(forms[i], "<p:a xmlns:p=\"urn:" + std::to_string(i) + "\"></p:a>");
}

TEST(CanonicalizerAdapter, ChangesNothingInTheTree) {
    const Held<Document> document =
        Parsed("<r xmlns:c='urn:c'><!--x--><apex c:a='1'> t</apex></r>");
    const std::string before = Outline(*document);
    CanonicalForm(Algorithm::InclusiveC14N, ElementNamed(*document, "apex"));
    CanonicalForm(Algorithm::ExclusiveC14N, ElementNamed(*document, "apex"));
    EXPECT_EQ(Outline(*document), before);
    ExpectSoundLinks(*document);
}

}  // namespace
}  // namespace Saml::Xml::Security
