#include "support/recording_handler.h"
#include "support/sliced_reader.h"
#include "support/thrown.h"
#include "support/xml_trees.h"

#include <expat.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <functional>
#include <new>
#include <stdexcept>
#include <string>

namespace Saml::Xml {
namespace {

/// The tokenizer's own words; they differ between its versions.
std::string TextOf(XML_Error error) {
    return XML_ErrorString(error);
}

struct Rejection {
    std::string message;
    std::uint32_t line = 0;
};

/// The rejection of a parse, which must leave `document` as it is.
template <class Parse>
Rejection RejectionBy(Parse&& parse, Held<Node>& document) {
    Node* const before = document.get();
    const auto owners = before == nullptr ? 0 : before->use_count();
    Rejection rejection;
    try {
        parse();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const XMLParseException& rejected) {
        rejection = {rejected.what(), rejected.line};
    }
    EXPECT_EQ(document.get(), before);
    if (before != nullptr) {
        EXPECT_EQ(before->use_count(), owners);
    }
    return rejection;
}

struct MalformedCase {
    const char* name;
    std::string text;
    XML_Error error;
    std::uint32_t line;
};

class MalformedText : public testing::TestWithParam<MalformedCase> {};

TEST_P(MalformedText, IsRefusedWithTheTokenizersWordsAndLine) {
    const Held<XMLParser> parser(CreateXMLParser(CreateXMLDocumentHandler(0, 0, 0)));
    for (Held<Node> document : {Held<Node>(), Held<Node>(CreateDocument())}) {
        const Rejection rejection =
            RejectionBy([&] { parser->Parse(GetParam().text, document); }, document);
        EXPECT_EQ(rejection.message, TextOf(GetParam().error));
        EXPECT_EQ(rejection.line, GetParam().line);
    }
}

TEST_P(MalformedText, IsRefusedAlikeByteByByte) {
    const Held<XMLParser> parser(CreateXMLParser(CreateXMLDocumentHandler(0, 0, 0)));
    SlicedReader reader(GetParam().text, 1);
    Held<Node> document;
    const Rejection rejection = RejectionBy([&] { parser->Parse(reader, document); }, document);
    EXPECT_EQ(rejection.message, TextOf(GetParam().error));
    EXPECT_EQ(rejection.line, GetParam().line);
}

INSTANTIATE_TEST_SUITE_P(
    XMLParserImpl, MalformedText,
    testing::Values(
        MalformedCase{"Empty", "", XML_ERROR_NO_ELEMENTS, 1},
        MalformedCase{"BlanksOnly", " \n\n ", XML_ERROR_NO_ELEMENTS, 3},
        MalformedCase{"NoElement", "<!--c-->\n<?p d?>", XML_ERROR_NO_ELEMENTS, 2},
        MalformedCase{"OpenElement", "<a>\n<b>\n</b>\n", XML_ERROR_NO_ELEMENTS, 4},
        MalformedCase{"OpenTag", "<a/", XML_ERROR_UNCLOSED_TOKEN, 1},
        MalformedCase{"OtherEndTag", "<a>\n\n<b></a>", XML_ERROR_TAG_MISMATCH, 3},
        MalformedCase{"SecondRoot", "<a/>\n<b/>", XML_ERROR_JUNK_AFTER_DOC_ELEMENT, 2},
        MalformedCase{"TextBeforeTheRoot", "text", XML_ERROR_SYNTAX, 1},
        MalformedCase{"TextBehindTheRoot", "<a/>\n\ntext", XML_ERROR_JUNK_AFTER_DOC_ELEMENT, 3},
        MalformedCase{"DoubleAttribute", "<a\nb='1' b='2'/>", XML_ERROR_DUPLICATE_ATTRIBUTE, 2},
        MalformedCase{"UndefinedEntity", "<a>\n&nope;</a>", XML_ERROR_UNDEFINED_ENTITY, 2},
        MalformedCase{"RecursiveEntity", "<!DOCTYPE a [<!ENTITY e '&e;'>]><a>&e;</a>",
                      XML_ERROR_RECURSIVE_ENTITY_REF, 1},
        MalformedCase{"BadCharacterReference", "<a>&#0;</a>", XML_ERROR_BAD_CHAR_REF, 1},
        MalformedCase{"ZeroByte", std::string("<a>\0</a>", 8), XML_ERROR_INVALID_TOKEN, 1},
        MalformedCase{"ZeroByteBehindTheRoot", std::string("<a/>\0", 5), XML_ERROR_INVALID_TOKEN,
                      1},
        MalformedCase{"InvalidUtf8", "<a>\xFF</a>", XML_ERROR_INVALID_TOKEN, 1},
        MalformedCase{"EndOfSectionInText", "<a>]]></a>", XML_ERROR_INVALID_TOKEN, 1},
        MalformedCase{"OpenSection", "<a>\n<![CDATA[x", XML_ERROR_UNCLOSED_CDATA_SECTION, 2},
        MalformedCase{"LateDeclaration", " <?xml version='1.0'?><a/>", XML_ERROR_MISPLACED_XML_PI,
                      1},
        MalformedCase{"UnknownEncoding", "<?xml version='1.0' encoding='nope'?><a/>",
                      XML_ERROR_UNKNOWN_ENCODING, 1},
        // A rule of the tree, not of XML: an element takes no processing instruction.
        MalformedCase{"InstructionInsideAnElement", "<a>\n<?p d?></a>", XML_ERROR_ABORTED, 2}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(AnInputThatEndsAtOnce, HasNoElement) {
    struct EmptyReader : Reader {
        int Read(char*, int) override { return -1; }
    } reader;
    const Held<XMLParser> parser(CreateXMLParser(CreateXMLDocumentHandler(0, 0, 0)));
    Held<Node> document;
    const Rejection rejection = RejectionBy([&] { parser->Parse(reader, document); }, document);
    EXPECT_EQ(rejection.message, TextOf(XML_ERROR_NO_ELEMENTS));
    EXPECT_EQ(rejection.line, 1u);
}

TEST(ReadingOfTheInput, StopsAtTheFirstFailure) {
    const Held<XMLParser> parser(CreateXMLParser(CreateXMLDocumentHandler(0, 0, 0)));
    SlicedReader reader("<a></b>" + std::string(100000, 'x'), 100);
    Held<Node> document;
    EXPECT_EQ(RejectionBy([&] { parser->Parse(reader, document); }, document).message,
              TextOf(XML_ERROR_TAG_MISMATCH));
    EXPECT_EQ(reader.requests.size(), 1u);
}

/// Gives the beginning of a document and then `fault`.
struct FaultyReader : Reader {
    explicit FaultyReader(std::function<int()> fault) : fault_(std::move(fault)) {}

    int Read(char* buffer, int) override {
        if (begun_) return fault_();
        begun_ = true;
        *std::copy_n("<a>", 3, buffer) = '\0';
        return 3;
    }

  private:
    std::function<int()> fault_;
    bool begun_ = false;
};

TEST(XMLParserImpl, DropsWhatTheResetOfItsHandlerThrows) {
    const Held<RecordingHandler> handler(new RecordingHandler);
    handler->onEvent = [](const std::string& event) {
        if (event == "Reset") throw InternalErrorException("cannot forget");
    };
    const Held<XMLParser> parser(CreateXMLParser(handler.get()));
    Held<Node> document;
    parser->Parse("<a/>", document);
    EXPECT_EQ(handler->events.back(), "Reset");
    EXPECT_EQ(MessageOf<XMLParseException>([&] { parser->Parse("<a>", document); }),
              "no element found");
    EXPECT_EQ(handler->events.back(), "Reset");
}

class BrokenReader : public testing::TestWithParam<int> {};

TEST_P(BrokenReader, IsRefusedBeforeTheTokenizerSeesTheCount) {
    const Held<RecordingHandler> handler(new RecordingHandler);
    const Held<XMLParser> parser(CreateXMLParser(handler.get()));
    FaultyReader reader([] { return GetParam(); });
    const Held<Node> before(CreateDocument());
    Held<Node> document = before;
    EXPECT_NE(MessageOf<InvalidArgumentException>([&] { parser->Parse(reader, document); }), "");
    EXPECT_EQ(document, before);
    EXPECT_EQ(handler->events, (Events{"StartDocument false", "StartElement a at 1:0", "Reset"}));

    parser->Parse("<b/>", document);
    EXPECT_NE(document, before) << "the parser serves on";
}

INSTANTIATE_TEST_SUITE_P(Counts, BrokenReader, testing::Values(10241, INT_MAX, -2, -10240, INT_MIN),
                         [](const auto& row) {
                             return (row.param < 0 ? "Minus" : "Plus") +
                                    std::to_string(std::abs(std::int64_t{row.param}));
                         });

struct CallersOwnFailure {
    int number;
};

TEST(AFailingReader, IsHeardUnchanged) {
    const Held<RecordingHandler> handler(new RecordingHandler);
    const Held<XMLParser> parser(CreateXMLParser(handler.get()));
    const Held<Node> before(CreateDocument());
    Held<Node> document = before;

    FaultyReader throwingObject([]() -> int { throw CallersOwnFailure{42}; });
    try {
        parser->Parse(throwingObject, document);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const CallersOwnFailure& failure) {
        EXPECT_EQ(failure.number, 42);
    }
    FaultyReader throwingStandard([]() -> int { throw std::runtime_error("disk"); });
    EXPECT_EQ(MessageOf<std::runtime_error>([&] { parser->Parse(throwingStandard, document); }),
              "disk");
    FaultyReader throwingParsing([]() -> int { throw XMLParseException("mine", 7); });
    EXPECT_EQ(MessageOf<XMLParseException>([&] { parser->Parse(throwingParsing, document); }),
              "mine");

    EXPECT_EQ(document, before);
    const Events each{"StartDocument false", "StartElement a at 1:0", "Reset"};
    Events all;
    for (int i = 0; i < 3; ++i)
        all.insert(all.end(), each.begin(), each.end());
    EXPECT_EQ(handler->events, all);

    parser->Parse("<b/>", document);
    EXPECT_NE(document, before) << "the parser serves on";
}

constexpr char kEveryEvent[] =
    "<?xml version='1.0'?><!--c--><?p d?><a x='1'>text&lt;more<b/><![CDATA[s\nt]]><!--e-->\n"
    "<c>u</c></a><!--f--><?q g?>";

Events EveryEvent(std::size_t slice) {
    const Held<RecordingHandler> handler(new RecordingHandler);
    const Held<XMLParser> parser(CreateXMLParser(handler.get()));
    SlicedReader reader(kEveryEvent, slice);
    Held<Node> document;
    parser->Parse(reader, document);
    return handler->events;
}

class HandlerFailure : public testing::TestWithParam<std::size_t> {};

// Whatever event it is: the failure ends the parse there and then. The tokenizer likes to tell the
// end of an empty element, of a section or of a text that it has begun even after it was stopped.
TEST_P(HandlerFailure, IsTheLastEventOfItsDocument) {
    const Events every = EveryEvent(GetParam());
    ASSERT_GT(every.size(), 20u);
    ASSERT_EQ(every.back(), "Reset");
    for (std::size_t failing = 1; failing + 1 < every.size(); ++failing) {
        SCOPED_TRACE(every[failing]);
        const Held<RecordingHandler> handler(new RecordingHandler);
        const Held<XMLParser> parser(CreateXMLParser(handler.get()));
        SlicedReader reader(kEveryEvent, GetParam());
        std::size_t readsUntilFailure = 0;
        handler->onEvent = [&](const std::string&) {
            if (handler->events.size() != failing + 1) return;
            readsUntilFailure = reader.requests.size();
            throw std::runtime_error("refused");
        };
        Held<Node> document;
        EXPECT_EQ(RejectionBy([&] { parser->Parse(reader, document); }, document).message,
                  TextOf(XML_ERROR_ABORTED));
        EXPECT_EQ(reader.requests.size(), readsUntilFailure) << "nothing is read behind it";
        Events expected(every.begin(), every.begin() + static_cast<std::ptrdiff_t>(failing) + 1);
        expected.emplace_back("Reset");
        EXPECT_EQ(handler->events, expected);

        handler->onEvent = nullptr;
        handler->events.clear();
        SlicedReader again(kEveryEvent, GetParam());
        parser->Parse(again, document);
        EXPECT_EQ(handler->events, every) << "the parser serves on";
    }
}

INSTANTIATE_TEST_SUITE_P(SlicesOf, HandlerFailure,
                         testing::Values(1u, 2u, 3u, 5u, 7u, 11u, 13u, 29u, 64u, 10240u),
                         [](const auto& row) { return std::to_string(row.param); });

struct ThrownCase {
    const char* name;
    std::function<void()> raise;
};

class ThrownByHandler : public testing::TestWithParam<std::tuple<const char*, ThrownCase>> {};

TEST_P(ThrownByHandler, BecomesARejectionAtTheCurrentLine) {
    const std::string event = std::get<0>(GetParam());
    const ThrownCase& thrown = std::get<1>(GetParam());
    const Held<RecordingHandler> handler(new RecordingHandler);
    const Held<XMLParser> parser(CreateXMLParser(handler.get()));
    handler->onEvent = [&](const std::string& told) {
        if (told.rfind(event, 0) == 0) thrown.raise();
    };
    Held<Node> document;
    const Rejection rejection =
        RejectionBy([&] { parser->Parse(kEveryEvent, document); }, document);
    EXPECT_EQ(rejection.message, TextOf(XML_ERROR_ABORTED));
    EXPECT_EQ(rejection.line, event == "EndCData" ? 2u : 1u);
    EXPECT_EQ(handler->events.back(), "Reset");
}

INSTANTIATE_TEST_SUITE_P(
    XMLParserImpl, ThrownByHandler,
    testing::Combine(
        testing::Values("XmlDeclaration", "Comment", "ProcessingInstruction", "StartElement",
                        "Characters", "EndElement", "StartCData", "EndCData"),
        testing::Values(
            ThrownCase{"Abort", [] { throw ParsingAbortedException(); }},
            ThrownCase{"TreeRule", [] { throw InvalidArgumentException("rule"); }},
            ThrownCase{"ParseException", [] { throw XMLParseException("other text", 99); }},
            ThrownCase{"StandardException", [] { throw std::logic_error("logic"); }},
            ThrownCase{"OutOfMemory", [] { throw std::bad_alloc(); }},
            ThrownCase{"Number", [] { throw 42; }}, ThrownCase{"Text", [] { throw "text"; }})),
    [](const auto& row) {
        return std::string(std::get<0>(row.param)) + std::get<1>(row.param).name;
    });

TEST(AHandlerFailureFurtherDown, IsReportedWithItsLine) {
    const Held<RecordingHandler> handler(new RecordingHandler);
    const Held<XMLParser> parser(CreateXMLParser(handler.get()));
    handler->onEvent = [](const std::string& event) {
        if (event == "StartElement c at 3:1") throw ParsingAbortedException();
    };
    Held<Node> document;
    EXPECT_EQ(
        RejectionBy([&] { parser->Parse("<a>\n<b/>\n <c/>\n</a>", document); }, document).line, 3u);
}

TEST(StartDocument, ThrowsToTheCallerBeforeAnythingIsRead) {
    const Held<RecordingHandler> handler(new RecordingHandler);
    const Held<XMLParser> parser(CreateXMLParser(handler.get()));
    handler->onEvent = [](const std::string&) { throw CallersOwnFailure{1}; };
    SlicedReader reader("<a/>", 1);
    const Held<Node> before(CreateDocument());
    Held<Node> document = before;
    EXPECT_THROW(parser->Parse(reader, document), CallersOwnFailure);
    EXPECT_EQ(document, before);
    EXPECT_TRUE(reader.requests.empty());
    EXPECT_EQ(handler->events, (Events{"StartDocument false"})) << "nothing to forget yet";

    handler->onEvent = nullptr;
    parser->Parse(reader, document);
    EXPECT_NE(document, before);
}

struct EntityCase {
    const char* name;
    const char* declaration;
};

class EntityDeclaration : public testing::TestWithParam<EntityCase> {
  protected:
    std::string text_ = "<!DOCTYPE a [<!--before-->" + std::string(GetParam().declaration) +
                        "<!--after-->]><a>t</a>";
    Held<RecordingHandler> handler_{new RecordingHandler};
    Held<XMLParser> parser_{CreateXMLParser(handler_.get())};
    Held<Node> document_;
};

TEST_P(EntityDeclaration, StopsAParseWithLimitsAtOnce) {
    EXPECT_EQ(RejectionBy([&] { parser_->Parse(text_, true, document_); }, document_).message,
              TextOf(XML_ERROR_ABORTED));
    EXPECT_EQ(handler_->events, (Events{"StartDocument true", "Comment before", "Reset"}));
}

TEST_P(EntityDeclaration, IsNoMatterWithoutLimits) {
    parser_->Parse(text_, false, document_);
    EXPECT_NE(document_, nullptr);
    EXPECT_EQ(handler_->events.at(1), "Comment before");
    EXPECT_EQ(handler_->events.at(2), "Comment after");
}

TEST_P(EntityDeclaration, IsNoMatterAgainAfterAParseWithLimits) {
    EXPECT_THROW(parser_->Parse(text_, true, document_), XMLParseException);
    parser_->Parse(text_, document_);
    EXPECT_NE(document_, nullptr);
    EXPECT_THROW(parser_->Parse(text_, true, document_), XMLParseException);
}

INSTANTIATE_TEST_SUITE_P(
    XMLParserImpl, EntityDeclaration,
    testing::Values(EntityCase{"General", "<!ENTITY e \"x\">"},
                    EntityCase{"Empty", "<!ENTITY e ''>"},
                    EntityCase{"Parameter", "<!ENTITY % p 'x'>"},
                    EntityCase{"External", "<!ENTITY e SYSTEM 'none'>"},
                    EntityCase{"ExternalWithPublicName", "<!ENTITY e PUBLIC 'p' 'none'>"},
                    EntityCase{"ExternalParameter", "<!ENTITY % p SYSTEM 'none'>"},
                    EntityCase{"Unparsed",
                               "<!NOTATION n SYSTEM 'n'><!ENTITY e SYSTEM 'none' NDATA n>"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(ADoctypeWithoutEntities, PassesWithLimits) {
    const Held<XMLParser> parser(CreateXMLParser(CreateXMLDocumentHandler(1000, 100, 10)));
    Held<Node> document;
    parser->Parse("<!DOCTYPE a [<!ELEMENT a ANY><!ATTLIST a x CDATA 'd'>]><a/>", true, document);
    EXPECT_EQ(Outline(*document), "#document{a[x=d]}");
}

}  // namespace
}  // namespace Saml::Xml
