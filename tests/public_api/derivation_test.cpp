#include "token_service.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <list>
#include <stdexcept>
#include <string>
#include <vector>

using namespace Saml;
using namespace Saml::Xml;
using namespace Saml::Xml::Security;

namespace {

// Gives one byte at a time, and fails where it is told to.
class DrippingReader : public Reader {
  public:
    explicit DrippingReader(std::string text, std::size_t failAt = std::string::npos)
        : text_(std::move(text)), failAt_(failAt) {}

    int Read(char* buffer, int size) override {
        if (next_ == failAt_) throw std::runtime_error("the source broke");
        if (next_ == text_.size()) return -1;
        if (size < 1) return 0;
        *buffer = text_[next_++];
        return 1;
    }

  private:
    std::string text_;
    std::size_t failAt_;
    std::size_t next_ = 0;
};

class CountingWriter : public Writer {
  public:
    void Write(const char* data, int length) override {
        text += std::string(data, static_cast<std::size_t>(length));
        bytes += length;
    }
    std::string text;
    long bytes = 0;
};

class FailingWriter : public Writer {
  public:
    void Write(const char*, int) override { throw std::runtime_error("the disk is full"); }
};

// Notes every event instead of building a document.
class EventLog : public XMLHandler {
  public:
    void ProcessingInstruction(const std::string& target, const std::string& data) override {
        events.push_back("instruction " + target + " " + data);
    }
    void StartElement(const std::string& name, unsigned line, unsigned column,
                      const char** attributes) override {
        std::string event =
            "start " + name + " " + std::to_string(line) + ":" + std::to_string(column);
        for (; *attributes != nullptr; attributes += 2)
            event += std::string(" ") + attributes[0] + "=" + attributes[1];
        events.push_back(event);
    }
    void EndElement(const std::string& name) override { events.push_back("end " + name); }
    void StartCData() override { events.emplace_back("cdata"); }
    void EndCData() override { events.emplace_back("end of cdata"); }
    void Comment(const std::string& text) override {
        if (text == "throw") throw std::runtime_error("a handler's own failure");
        events.push_back("comment " + text);
    }
    void Characters(const char* data, int length) override {
        events.push_back("text " + std::string(data, static_cast<std::size_t>(length)));
    }
    void XmlDeclaration(const std::string& version, const std::string& encoding) override {
        events.push_back("declaration " + version + " " + encoding);
    }
    void StartDocument(bool enforceLimits, boost::intrusive_ptr<Node>& document) override {
        events.emplace_back(enforceLimits ? "document with limits" : "document");
        document.reset(CreateDocument());
    }
    void StartDocument(boost::intrusive_ptr<Node>& document) override {
        StartDocument(false, document);
    }
    void Reset() override { events.emplace_back("reset"); }

    std::vector<std::string> events;
};

// Offers the certificate that it was given, whatever the token says, and counts who asks.
class OneKeyResolver : public KeyInfoResolver {
  public:
    explicit OneKeyResolver(ByteBlob certificate) : certificate_(std::move(certificate)) {}
    void Resolve(KeyInfo* keyInfo, std::list<ByteBlob>& keys) override {
        ++asked;
        sawCertificates = keyInfo != nullptr && keyInfo->IsX509();
        keys.clear();
        keys.push_back(ExtractCertPubKey(certificate_));
    }
    int asked = 0;
    bool sawCertificates = false;

  private:
    ByteBlob certificate_;
};

struct DirectoryIsDown {};

class FailingResolver : public KeyInfoResolver {
  public:
    void Resolve(KeyInfo*, std::list<ByteBlob>&) override { throw DirectoryIsDown(); }
};

void Parse(Reader& reader, XMLHandler* handler, boost::intrusive_ptr<Node>& document) {
    const boost::intrusive_ptr<XMLParser> parser(CreateXMLParser(handler));
    parser->Parse(reader, document);
}

TEST(AReaderOfTheCaller, FeedsTheParser) {
    DrippingReader reader("<a>text<b/></a>");
    const boost::intrusive_ptr<XMLHandler> handler(CreateXMLDocumentHandler(100, 100, 100));
    boost::intrusive_ptr<Node> node;
    Parse(reader, handler.get(), node);

    auto* const document = dynamic_cast<Document*>(node.get());
    ASSERT_NE(document, nullptr);
    StringWriter out;
    document->GetRootElement()->Write(out);
    EXPECT_EQ(out.data, "<a>text<b/></a>");
}

TEST(AReaderOfTheCaller, FailsThroughTheParserWithItsOwnException) {
    DrippingReader reader("<a>text<b/></a>", 5);
    const boost::intrusive_ptr<XMLHandler> handler(CreateXMLDocumentHandler(100, 100, 100));
    boost::intrusive_ptr<Node> document;
    EXPECT_THROW(Parse(reader, handler.get(), document), std::runtime_error);
    EXPECT_EQ(document.get(), nullptr);
}

TEST(AWriterOfTheCaller, TakesTheCanonicalForm) {
    const auto document = ParseDocument("<a><b/></a>");
    boost::intrusive_ptr<Canonicalizer> canonicalizer;
    CreateCanonicalizer(Algorithm::ExclusiveC14N, canonicalizer);
    CountingWriter out;
    canonicalizer->Canonicalize(document->GetRootElement(), out);
    EXPECT_EQ(out.text, "<a><b></b></a>");
    EXPECT_EQ(out.bytes, 14);
}

TEST(AWriterOfTheCaller, FailsThroughTheLibraryWithItsOwnException) {
    const auto document = ParseDocument("<a/>");
    FailingWriter out;
    EXPECT_THROW(document->GetRootElement()->Write(out), std::runtime_error);
}

TEST(AHandlerOfTheCaller, ReceivesTheEventsInTheirOrder) {
    DrippingReader reader(
        "<?xml version='1.0' encoding='UTF-8'?><a x='1' y='2'>\n"
        "<?do it?><b/><![CDATA[c]]><!--d--></a>");
    const boost::intrusive_ptr<EventLog> log(new EventLog);
    boost::intrusive_ptr<Node> document;
    Parse(reader, log.get(), document);

    const std::vector<std::string> expected = {"document",
                                               "declaration 1.0 UTF-8",
                                               "start a 1:38 x=1 y=2",
                                               "text \n",
                                               "instruction do it",
                                               "start b 2:9",
                                               "end b",
                                               "cdata",
                                               "text c",
                                               "end of cdata",
                                               "comment d",
                                               "end a",
                                               "reset"};
    EXPECT_EQ(log->events, expected);
    EXPECT_NE(dynamic_cast<Document*>(document.get()), nullptr);
}

TEST(AHandlerOfTheCaller, EndsTheParseWhenItThrows) {
    const boost::intrusive_ptr<EventLog> log(new EventLog);
    const boost::intrusive_ptr<XMLParser> parser(CreateXMLParser(log.get()));
    boost::intrusive_ptr<Node> document;
    EXPECT_THROW(parser->Parse("<a><!--throw--><b/></a>", true, document), XMLParseException);
    const std::vector<std::string> expected = {"document with limits", "start a 1:0", "reset"};
    EXPECT_EQ(log->events, expected);
    EXPECT_EQ(document.get(), nullptr);
}

TEST(AResolverOfTheCaller, DecidesWhomATokenIsBelieved) {
    const TokenService service;
    const boost::intrusive_ptr<OneKeyResolver> resolver(new OneKeyResolver(service.certificate()));
    const auto token = CreateSamlToken(service.Issue(), resolver.get());
    EXPECT_EQ(token->GetSubject(), (PrincipalId{"jdoe", "corp.example"}));
    EXPECT_EQ(resolver->asked, 1);
    EXPECT_TRUE(resolver->sawCertificates);

    const boost::intrusive_ptr<OneKeyResolver> stranger(
        new OneKeyResolver(TokenService().certificate()));
    EXPECT_THROW(CreateSamlToken(service.Issue(), stranger.get()), InvalidSignatureException);
}

TEST(AResolverOfTheCaller, FailsThroughTheLibraryWithItsOwnException) {
    const TokenService service;
    const boost::intrusive_ptr<FailingResolver> resolver(new FailingResolver);
    EXPECT_THROW(CreateSamlToken(service.Issue(), resolver.get()), DirectoryIsDown);
}

}  // namespace
