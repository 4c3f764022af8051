#include "saml/xml/xml_parser_impl.h"

#include "saml/foundations/checked_narrowing.h"
#include "saml/foundations/scope_guard.h"
#include "saml/xml/tokenizer_events.h"

#include <array>
#include <new>
#include <utility>

namespace Saml::Xml {
namespace {

constexpr char kNullHandler[] = "A parser needs a handler.";
constexpr char kTextTooLong[] = "The text is longer than 2147483647 bytes.";
constexpr char kBrokenReader[] = "The reader returned a count outside the range asked for.";
constexpr char kUnknownFailure[] = "Unknown XML_Parse failure";

constexpr int kChunkSize = 10240;
constexpr int kEndOfInput = -1;
/// A tokenizer that met more than this is not used again: its buffers have grown, and expat keeps
/// its account of memory across resets, so that it would refuse later documents.
constexpr std::size_t kReusableUpTo = std::size_t{1024} * 1024;

boost::intrusive_ptr<XMLHandler> RequireHandler(XMLHandler* handler) {
    if (handler == nullptr) throw InvalidArgumentException(kNullHandler);
    return boost::intrusive_ptr<XMLHandler>(handler);
}

// It runs on the way out of a failed parse, too, where a second exception would end the process.
void ResetQuietly(XMLHandler& handler) noexcept {
    try {
        handler.Reset();
    } catch (...) {  // a handler that cannot forget its document keeps it to itself
    }
}

TokenizerHandle CreateTokenizer() {
    TokenizerHandle tokenizer(XML_ParserCreate_MM(nullptr, nullptr, nullptr));
    if (!tokenizer) throw std::bad_alloc();
    return tokenizer;
}

int ReadChunk(Reader& input, std::array<char, kChunkSize>& chunk) {
    const int count = input.Read(chunk.data(), kChunkSize);
    if (count > kChunkSize || count < kEndOfInput) throw InvalidArgumentException(kBrokenReader);
    return count;
}

XMLParseException Failure(XML_Parser tokenizer, XML_Error code) {
    const char* const text = XML_ErrorString(code);
    return {text != nullptr ? text : kUnknownFailure,
            static_cast<std::uint32_t>(XML_GetCurrentLineNumber(tokenizer))};
}

void Feed(XML_Parser tokenizer, const TokenizerEvents& events, const char* data, int size,
          bool isEnd) {
    const XML_Status status = XML_Parse(tokenizer, data, size, isEnd);
    // Expat may tell a stop only at its next call: at a CDATA section that begins where a chunk
    // ends.
    if (events.Stopped()) throw Failure(tokenizer, XML_ERROR_ABORTED);
    if (status != XML_STATUS_OK) throw Failure(tokenizer, XML_GetErrorCode(tokenizer));
}

/// Feeds the tokenizer to the end of `input`.
/// \return How many bytes there were.
std::size_t FeedAll(XML_Parser tokenizer, const TokenizerEvents& events, Reader& input) {
    std::array<char, kChunkSize> chunk;
    std::size_t total = 0;
    for (;;) {
        const int count = ReadChunk(input, chunk);
        const bool isEnd = count == kEndOfInput;
        Feed(tokenizer, events, chunk.data(), isEnd ? 0 : count, isEnd);
        if (isEnd) return total;
        total += static_cast<std::size_t>(count);
    }
}

}  // namespace

XMLParserImpl::XMLParserImpl(XMLHandler* handler)
    : handler_(RequireHandler(handler)), idleTokenizer_(CreateTokenizer()) {}

void XMLParserImpl::SetHandler(XMLHandler* handler) {
    handler_ = RequireHandler(handler);
}

// A text that is there already is tokenized where it stands.
void XMLParserImpl::Parse(const std::string& text, bool enforceLimits,
                          boost::intrusive_ptr<Node>& document) {
    // A narrowed length would have a part of the text parsed, and the caller keep all of it.
    if (!FitsIn<std::int32_t>(text.size())) throw InvalidArgumentException(kTextTooLong);
    Run(enforceLimits, document, [&text](XML_Parser tokenizer, TokenizerEvents& events) {
        events.ExpectWhole(text);
        Feed(tokenizer, events, text.data(), static_cast<int>(text.size()), true);
        return text.size();
    });
}

void XMLParserImpl::Parse(const std::string& text, boost::intrusive_ptr<Node>& document) {
    Parse(text, false, document);
}

void XMLParserImpl::Parse(Reader& input, boost::intrusive_ptr<Node>& document) {
    Parse(input, false, document);
}

void XMLParserImpl::Parse(Reader& input, bool enforceLimits, boost::intrusive_ptr<Node>& document) {
    Run(enforceLimits, document, [&input](XML_Parser tokenizer, const TokenizerEvents& events) {
        return FeedAll(tokenizer, events, input);
    });
}

template <class FeedTo>
void XMLParserImpl::Run(bool enforceLimits, boost::intrusive_ptr<Node>& document, FeedTo feed) {
    // Both are held here: the handler may replace itself or start another parse from an event.
    const boost::intrusive_ptr<XMLHandler> handler = handler_;
    TokenizerHandle tokenizer = TakeTokenizer();

    TokenizerEvents events(tokenizer.get(), *handler, enforceLimits);
    boost::intrusive_ptr<Node> built;
    handler->StartDocument(enforceLimits, built);
    std::size_t size = 0;
    {
        const ScopeGuard reset([&handler] { ResetQuietly(*handler); });
        size = feed(tokenizer.get(), events);
    }
    document = std::move(built);
    if (size <= kReusableUpTo) idleTokenizer_ = std::move(tokenizer);
}

TokenizerHandle XMLParserImpl::TakeTokenizer() {
    TokenizerHandle tokenizer = std::move(idleTokenizer_);
    const bool isNew = std::exchange(idleTokenizerIsNew_, false);
    if (!tokenizer || (!isNew && XML_ParserReset(tokenizer.get(), nullptr) != XML_TRUE))
        return CreateTokenizer();
    return tokenizer;
}

XMLParser* CreateXMLParser(XMLHandler* handler) {
    return new XMLParserImpl(handler);
}

}  // namespace Saml::Xml
