#include "faults/faulty_calls.h"
#include "saml/security.h"
#include "support/recording_handler.h"
#include "support/xml_trees.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/// Readers, writers and handlers of the caller's own that throw at their first call, at their
/// second, and so on to the last.
namespace Saml::Faults {
namespace {

using Xml::ElementNode;
using Xml::Held;
using Xml::Node;
using Xml::XMLParser;

constexpr char kText[] =
    "<?xml version='1.0'?><!--before--><p:a xmlns:p='urn:p' b='1' c='2'>text &amp; more<d/>"
    "<e>\xC3\xA9</e><![CDATA[section]]><!--inside--></p:a><?target data?>";

/// What callers throw: no class of the library, and no exception class at all.
struct Own {
    std::size_t number;
};

std::string EndOf(const std::function<void()>& action) {
    try {
        return Faults::EndOf(action, [] {});
    } catch (const Own& thrown) {
        return "own " + std::to_string(thrown.number);
    }
}
std::string OwnEnd(std::size_t number) {
    return "own " + std::to_string(number);
}

/// Counts calls and throws in the one with a given number.
class Fuse {
  public:
    void Count() {
        const std::size_t number = calls_++;
        if (number == blowsAt) throw Own{number};
    }
    std::size_t Calls() const { return calls_; }

    std::size_t blowsAt = AllocationPlan::kNever;

  private:
    std::size_t calls_ = 0;
};

void Report(const char* what, std::size_t count) {
    std::cout << what << " that threw: " << count << "\n";
    testing::Test::RecordProperty("calls_that_threw", std::to_string(count));
}

/// Gives `slice` bytes at a time, and nothing in every third call.
struct FusedReader final : Reader {
    FusedReader(std::string text, std::size_t slice) : text_(std::move(text)), slice_(slice) {}
    int Read(char* buffer, int size) override {
        fuse.Count();
        if (fuse.Calls() % 3 == 0) return 0;
        if (position_ == text_.size()) return -1;
        const std::size_t count =
            std::min({slice_, static_cast<std::size_t>(size), text_.size() - position_});
        std::copy_n(text_.data() + position_, count, buffer);
        position_ += count;
        return static_cast<int>(count);
    }
    Fuse fuse;

  private:
    const std::string text_;
    const std::size_t slice_;
    std::size_t position_ = 0;
};

TEST(ReaderThatThrows, StopsTheParseAndNothingElse) {
    const Held<XMLParser> parser(
        Xml::CreateXMLParser(Xml::CreateXMLDocumentHandler(1000, 100, 10)));
    const std::string whole = Xml::Outline(*Xml::Parsed(kText));
    std::size_t thrown = 0;
    for (const std::size_t slice :
         {std::size_t{1}, std::size_t{2}, std::size_t{7}, std::size_t{100}}) {
        for (std::size_t number = 0;; ++number) {
            SCOPED_TRACE(std::to_string(slice) + " bytes, call " + std::to_string(number));
            FusedReader reader(kText, slice);
            reader.fuse.blowsAt = number;
            Held<Node> document;
            const std::string end = EndOf([&] { parser->Parse(reader, document); });
            if (reader.fuse.Calls() <= number) {
                EXPECT_EQ(end, kReturned);
                ASSERT_TRUE(document);
                EXPECT_EQ(Xml::Outline(*document), whole);
                break;
            }
            ++thrown;
            ASSERT_EQ(end, OwnEnd(number));
            EXPECT_FALSE(document);
            parser->Parse(kText, true, document);
            EXPECT_EQ(Xml::Outline(*document), whole);
        }
    }
    Report("calls of a reader", thrown);
    EXPECT_GT(thrown, sizeof kText);
}

/// Returns a wrong count in one call.
struct BrokenReader final : Reader {
    int Read(char* buffer, int size) override {
        if (calls++ == brokenAt) return wrong > 0 ? size + wrong : wrong;
        if (position == sizeof kText - 1) return -1;
        *buffer = kText[position++];
        return 1;
    }
    std::size_t brokenAt = 0;
    int wrong = 0;
    std::size_t calls = 0;
    std::size_t position = 0;
};

TEST(ReaderWithAWrongCount, IsRefusedAtEveryCall) {
    const Held<XMLParser> parser(
        Xml::CreateXMLParser(Xml::CreateXMLDocumentHandler(1000, 100, 10)));
    for (const int wrong : {1, -2, -2147483647}) {
        for (std::size_t number = 0; number < sizeof kText; ++number) {
            BrokenReader reader;
            reader.brokenAt = number;
            reader.wrong = wrong;
            Held<Node> document;
            ASSERT_EQ(EndOf([&] { parser->Parse(reader, document); }),
                      "InvalidArgumentException: The reader returned a count outside the range "
                      "asked for.");
            EXPECT_FALSE(document);
            parser->Parse(kText, document);
            EXPECT_TRUE(document);
        }
    }
}

struct FusedWriter final : Writer {
    void Write(const char* bytes, int length) override {
        fuse.Count();
        data.append(bytes, static_cast<std::size_t>(length));
    }
    Fuse fuse;
    std::string data;
};

struct Writing {
    const char* name;
    void (*write)(Node& node, Writer& out);
};
void PrintTo(const Writing& row, std::ostream* out) {
    *out << row.name;
}

class WriterThatThrows : public testing::TestWithParam<Writing> {};

TEST_P(WriterThatThrows, StopsTheWritingAndNothingElse) {
    const Held<Xml::Document> document = Xml::Parsed(kText);
    ElementNode& root = *document->GetRootElement();
    const std::string outline = Xml::Outline(*document);
    FusedWriter whole;
    GetParam().write(root, whole);

    for (std::size_t number = 0; number < whole.fuse.Calls(); ++number) {
        SCOPED_TRACE(number);
        FusedWriter out;
        out.fuse.blowsAt = number;
        ASSERT_EQ(EndOf([&] { GetParam().write(root, out); }), OwnEnd(number));
        EXPECT_EQ(out.fuse.Calls(), number + 1) << "it was called again";
        EXPECT_EQ(out.data, whole.data.substr(0, out.data.size()));
        FusedWriter again;
        GetParam().write(root, again);
        EXPECT_EQ(again.data, whole.data);
    }
    Report("calls of a writer", whole.fuse.Calls());
    EXPECT_GT(whole.fuse.Calls(), 0U);
    EXPECT_EQ(Xml::Outline(*document), outline);
    Xml::ExpectSoundLinks(*document);
}

void Canonicalize(const char* algorithm, Node& node, Writer& out) {
    boost::intrusive_ptr<Xml::Security::Canonicalizer> canonicalizer;
    Xml::Security::CreateCanonicalizer(algorithm, canonicalizer);
    canonicalizer->Canonicalize(&node, out);
}

INSTANTIATE_TEST_SUITE_P(
    Of, WriterThatThrows,
    testing::Values(Writing{"InclusiveCanonicalization",
                            [](Node& node, Writer& out) {
                                Canonicalize(Xml::Security::Algorithm::InclusiveC14N, node, out);
                            }},
                    Writing{"ExclusiveCanonicalization",
                            [](Node& node, Writer& out) {
                                Canonicalize(Xml::Security::Algorithm::ExclusiveC14N, node, out);
                            }},
                    Writing{"Write", [](Node& node, Writer& out) { node.Write(out); }},
                    Writing{"WriteFormatted",
                            [](Node& node, Writer& out) { node.WriteFormatted(out); }}),
    [](const auto& row) { return std::string(row.param.name); });

/// Throws at an event something of each kind: an exception of the library, one of the standard
/// library, a pointer, and what is no exception at all.
void ThrowOfKind(int kind) {
    switch (kind) {
        case 0:
            throw InvalidArgumentException("own");
        case 1:
            throw std::bad_alloc();
        case 2:
            throw std::make_shared<int>(2);
        default:
            throw Own{0};
    }
}

TEST(HandlerThatThrows, StopsTheParseAndNothingElse) {
    const Held<Xml::RecordingHandler> handler(new Xml::RecordingHandler);
    const Held<XMLParser> parser(Xml::CreateXMLParser(handler.get()));
    Held<Node> document;
    parser->Parse(kText, document);
    const Xml::Events whole = handler->events;
    ASSERT_EQ(whole.front(), "StartDocument false");
    ASSERT_EQ(whole.back(), "Reset");

    std::size_t thrown = 0;
    for (std::size_t number = 0; number < whole.size(); ++number) {
        for (int kind = 0; kind < 4; ++kind) {
            SCOPED_TRACE(whole[number]);
            handler->events.clear();
            handler->onEvent = [&](const std::string&) {
                if (handler->events.size() == number + 1) ThrowOfKind(kind);
            };
            Held<Node> untouched;
            std::string end;
            try {
                end = EndOf([&] { parser->Parse(kText, untouched); });
            } catch (const std::shared_ptr<int>&) {
                end = "pointer";
            }
            ++thrown;
            Xml::Events expected(whole.begin(),
                                 whole.begin() + static_cast<std::ptrdiff_t>(number) + 1);
            if (number == 0) {
                // It has begun nothing that it could forget.
                EXPECT_EQ(end, (std::vector<std::string>{"InvalidArgumentException: own",
                                                         "bad_alloc", "pointer",
                                                         "own 0"}[static_cast<std::size_t>(kind)]));
            } else if (number + 1 == whole.size()) {
                EXPECT_EQ(end, kReturned) << "what Reset throws is dropped";
            } else {
                EXPECT_EQ(end, "XMLParseException: parsing aborted");
                expected.push_back("Reset");
            }
            EXPECT_EQ(handler->events, expected);
            EXPECT_EQ(untouched != nullptr, end == kReturned);

            handler->onEvent = nullptr;
            handler->events.clear();
            parser->Parse(kText, document);
            EXPECT_EQ(handler->events, whole);
        }
    }
    Report("calls of a handler", thrown);
}

}  // namespace
}  // namespace Saml::Faults
