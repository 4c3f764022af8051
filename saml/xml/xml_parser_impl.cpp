#include "saml/xml/xml_parser_impl.h"

#include "saml/foundations/checked_narrowing.h"
#include "saml/foundations/scope_guard.h"
#include "saml/xml/tokenizer_events.h"

#include <array>
#include <cstring>
#include <new>
#include <string_view>
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

/// Reads a text that outlives it, without a copy.
class BorrowedTextReader final : public Reader {
  public:
    /// A narrowed length would have the parser read only a part of what the caller keeps.
    explicit BorrowedTextReader(std::string_view text) : rest_(text) {
        if (!FitsIn<std::int32_t>(text.size())) throw InvalidArgumentException(kTextTooLong);
    }

    int Read(char* buffer, int size) override {
        if (rest_.empty()) return kEndOfInput;
        const std::string_view piece = rest_.substr(0, static_cast<std::size_t>(size));
        std::memcpy(buffer, piece.data(), piece.size());
        rest_.remove_prefix(piece.size());
        return static_cast<int>(piece.size());
    }

  private:
    std::string_view rest_;
};

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

/// Feeds the tokenizer to the end of `input`.
/// \return How many bytes there were.
std::size_t Tokenize(XML_Parser tokenizer, const TokenizerEvents& events, Reader& input) {
    std::array<char, kChunkSize> chunk;
    std::size_t total = 0;
    for (;;) {
        const int count = ReadChunk(input, chunk);
        const bool isEnd = count == kEndOfInput;
        const XML_Status status = XML_Parse(tokenizer, chunk.data(), isEnd ? 0 : count, isEnd);
        // Expat may tell a stop only at its next call: at a CDATA section that begins where a chunk
        // ends.
        if (events.Stopped()) throw Failure(tokenizer, XML_ERROR_ABORTED);
        if (status != XML_STATUS_OK) throw Failure(tokenizer, XML_GetErrorCode(tokenizer));
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

void XMLParserImpl::Parse(const std::string& text, bool enforceLimits,
                          boost::intrusive_ptr<Node>& document) {
    BorrowedTextReader reader(text);
    Parse(reader, enforceLimits, document);
}

void XMLParserImpl::Parse(const std::string& text, boost::intrusive_ptr<Node>& document) {
    Parse(text, false, document);
}

void XMLParserImpl::Parse(Reader& input, boost::intrusive_ptr<Node>& document) {
    Parse(input, false, document);
}

void XMLParserImpl::Parse(Reader& input, bool enforceLimits, boost::intrusive_ptr<Node>& document) {
    // Both are held here: the handler may replace itself or start another parse from an event.
    const boost::intrusive_ptr<XMLHandler> handler = handler_;
    TokenizerHandle tokenizer = TakeTokenizer();

    TokenizerEvents events(tokenizer.get(), *handler, enforceLimits);
    boost::intrusive_ptr<Node> built;
    handler->StartDocument(enforceLimits, built);
    std::size_t size = 0;
    {
        const ScopeGuard reset([&handler] { ResetQuietly(*handler); });
        size = Tokenize(tokenizer.get(), events, input);
    }
    document = std::move(built);
    if (size <= kReusableUpTo) idleTokenizer_ = std::move(tokenizer);
}

TokenizerHandle XMLParserImpl::TakeTokenizer() {
    TokenizerHandle tokenizer = std::move(idleTokenizer_);
    if (!tokenizer || XML_ParserReset(tokenizer.get(), nullptr) != XML_TRUE)
        return CreateTokenizer();
    return tokenizer;
}

XMLParser* CreateXMLParser(XMLHandler* handler) {
    return new XMLParserImpl(handler);
}

}  // namespace Saml::Xml
