/// \file
/// Foundations of the library: the exception tree, byte blobs, Base64, the UTC date-time value and
/// the two byte-stream interfaces. Every other header of the library builds on this one.
#pragma once

#include <boost/chrono/system_clocks.hpp>
#include <boost/date_time/posix_time/posix_time_types.hpp>

#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <typeinfo>
#include <vector>

/// Marks what the shared library exports; everything else stays invisible to callers. On Windows it
/// says at the same time where to look: whoever links the library's objects themselves, without a
/// DLL, defines `SAMLTOKEN_LINKED_AS_OBJECTS`.
#if defined(_WIN32)
#if defined(SAMLTOKEN_BUILDING_LIBRARY)
#define SAMLTOKEN_API __declspec(dllexport)
#elif defined(SAMLTOKEN_LINKED_AS_OBJECTS)
#define SAMLTOKEN_API
#else
#define SAMLTOKEN_API __declspec(dllimport)
#endif
#elif defined(__GNUC__)
#define SAMLTOKEN_API __attribute__((visibility("default")))
#else
#define SAMLTOKEN_API
#endif

namespace Saml {

/// Bytes that several owners share and nobody changes: a DER certificate, a DER public key (for RSA
/// the PKCS #1 `RSAPublicKey` structure) or a DER private key (for RSA PKCS #1 `RSAPrivateKey`,
/// RFC 8017 appendix A.1). Where the library takes a list of blobs, a null blob counts as an empty
/// one. Threads: may be read from any number of threads.
using ByteBlob = std::shared_ptr<const std::vector<unsigned char>>;

/// Root of everything that the library throws on its own account. Where memory runs out, the
/// standard library's `std::bad_alloc` or `std::length_error` passes unchanged, but for a document
/// handler's: like all that a handler throws, it stops the parse ("parsing aborted").
/// Threads: exceptions are values, nothing is shared.
class SAMLTOKEN_API Exception : public std::exception {
  public:
    /// \param message  Returned by `what()` unchanged.
    explicit Exception(const std::string& message);
    /// Copies the message.
    Exception(const Exception&) = default;
    /// Copies the message.
    Exception& operator=(const Exception&) = default;
    ~Exception() override;

    /// The message; never null, an empty message gives an empty string. Valid as long as this
    /// object is neither assigned to nor destroyed.
    const char* what() const noexcept override;

  private:
    std::string message_;
};

/// Root of the failures of token processing.
class SAMLTOKEN_API SsoException : public Exception {
  public:
    /// From a message that `what()` returns unchanged.
    using Exception::Exception;
    /// Copies the message.
    SsoException(const SsoException&) = default;
    /// Copies the message.
    SsoException& operator=(const SsoException&) = default;
    ~SsoException() override;
};

/// The token is not acceptable. Catching this class catches every rejection of a token by value.
class SAMLTOKEN_API InvalidTokenException : public SsoException {
  public:
    /// From a message that `what()` returns unchanged.
    using SsoException::SsoException;
    /// Copies the message.
    InvalidTokenException(const InvalidTokenException&) = default;
    /// Copies the message.
    InvalidTokenException& operator=(const InvalidTokenException&) = default;
    ~InvalidTokenException() override;
};

/// The token's signature does not verify, or its verification could not be carried out.
class SAMLTOKEN_API InvalidSignatureException : public InvalidTokenException {
  public:
    /// From a message that `what()` returns unchanged.
    using InvalidTokenException::InvalidTokenException;
    /// Copies the message.
    InvalidSignatureException(const InvalidSignatureException&) = default;
    /// Copies the message.
    InvalidSignatureException& operator=(const InvalidSignatureException&) = default;
    ~InvalidSignatureException() override;
};

/// The token's XML does not have the required SAML structure, or its validity window, delegation or
/// names are refused.
class SAMLTOKEN_API ParseException : public InvalidTokenException {
  public:
    /// From a message that `what()` returns unchanged.
    using InvalidTokenException::InvalidTokenException;
    /// Copies the message.
    ParseException(const ParseException&) = default;
    /// Copies the message.
    ParseException& operator=(const ParseException&) = default;
    ~ParseException() override;
};

/// An object was to be converted to a class that it does not have.
class SAMLTOKEN_API TypeMismatchException : public Exception {
  public:
    /// The message is "Type Mismatch: expected: " + name of `expected` + ", found: " + name of
    /// `found`. The names are the platform's human-readable ones; where the platform cannot give
    /// one, its raw name stands in.
    TypeMismatchException(const std::type_info& expected, const std::type_info& found);
    /// Copies the message.
    TypeMismatchException(const TypeMismatchException&) = default;
    /// Copies the message.
    TypeMismatchException& operator=(const TypeMismatchException&) = default;
    ~TypeMismatchException() override;
};

/// A caller passed an argument that the operation refuses; the document model's child rules, too.
class SAMLTOKEN_API InvalidArgumentException : public Exception {
  public:
    /// From a message that `what()` returns unchanged.
    using Exception::Exception;
    /// Copies the message.
    InvalidArgumentException(const InvalidArgumentException&) = default;
    /// Copies the message.
    InvalidArgumentException& operator=(const InvalidArgumentException&) = default;
    ~InvalidArgumentException() override;
};

/// An internal consistency failure.
class SAMLTOKEN_API InternalErrorException : public Exception {
  public:
    /// From a message that `what()` returns unchanged.
    using Exception::Exception;
    /// Copies the message.
    InternalErrorException(const InternalErrorException&) = default;
    /// Copies the message.
    InternalErrorException& operator=(const InternalErrorException&) = default;
    ~InternalErrorException() override;
};

namespace Xml {

/// The XML text is not well-formed, or its parsing was stopped by a limit or a rule of the tree.
class SAMLTOKEN_API XMLParseException : public Exception {
  public:
    /// Stores both arguments unchanged.
    XMLParseException(const std::string& message, std::uint32_t line);
    /// Copies the message.
    XMLParseException(const XMLParseException&) = default;
    /// Copies the message.
    XMLParseException& operator=(const XMLParseException&) = default;
    ~XMLParseException() override;

    /// The line at which the tokenizer stopped, counted from 1.
    std::uint32_t line;
};

/// A parse limit was exceeded. A document handler throws it to its parser, which stops and reports
/// an `XMLParseException`: callers of a parser do not see this class.
class SAMLTOKEN_API ParsingAbortedException : public Exception {
  public:
    /// The message is empty: the class itself is the information.
    ParsingAbortedException();
    /// Copies the message.
    ParsingAbortedException(const ParsingAbortedException&) = default;
    /// Copies the message.
    ParsingAbortedException& operator=(const ParsingAbortedException&) = default;
    ~ParsingAbortedException() override;
};

namespace Security {

/// A failure inside the cryptographic library. It is no `XmlSecurityException`: the signature layer
/// converts it where a signature is verified or made.
class SAMLTOKEN_API CryptoException : public Exception {
  public:
    /// The message is "Crypto Exception: " followed by `detail`.
    explicit CryptoException(const std::string& detail);
    /// Copies the message.
    CryptoException(const CryptoException&) = default;
    /// Copies the message.
    CryptoException& operator=(const CryptoException&) = default;
    ~CryptoException() override;
};

/// Root of the failures of XML signatures (W3C xmldsig-core).
class SAMLTOKEN_API XmlSecurityException : public Exception {
  public:
    /// From a message that `what()` returns unchanged.
    using Exception::Exception;
    /// Copies the message.
    XmlSecurityException(const XmlSecurityException&) = default;
    /// Copies the message.
    XmlSecurityException& operator=(const XmlSecurityException&) = default;
    ~XmlSecurityException() override;
};

/// A canonicalization identifier is not supported where it is used.
class SAMLTOKEN_API UnsupportedCanonicalizationException : public XmlSecurityException {
  public:
    /// From a message that `what()` returns unchanged.
    using XmlSecurityException::XmlSecurityException;
    /// Copies the message.
    UnsupportedCanonicalizationException(const UnsupportedCanonicalizationException&) = default;
    /// Copies the message.
    UnsupportedCanonicalizationException& operator=(const UnsupportedCanonicalizationException&) =
        default;
    ~UnsupportedCanonicalizationException() override;
};

/// A digest identifier is not supported.
class SAMLTOKEN_API UnsupportedHashAlgorithmException : public XmlSecurityException {
  public:
    /// From a message that `what()` returns unchanged.
    using XmlSecurityException::XmlSecurityException;
    /// Copies the message.
    UnsupportedHashAlgorithmException(const UnsupportedHashAlgorithmException&) = default;
    /// Copies the message.
    UnsupportedHashAlgorithmException& operator=(const UnsupportedHashAlgorithmException&) =
        default;
    ~UnsupportedHashAlgorithmException() override;
};

/// A signature method identifier is not supported.
class SAMLTOKEN_API UnsupportedSignAlgorithmException : public XmlSecurityException {
  public:
    /// From a message that `what()` returns unchanged.
    using XmlSecurityException::XmlSecurityException;
    /// Copies the message.
    UnsupportedSignAlgorithmException(const UnsupportedSignAlgorithmException&) = default;
    /// Copies the message.
    UnsupportedSignAlgorithmException& operator=(const UnsupportedSignAlgorithmException&) =
        default;
    ~UnsupportedSignAlgorithmException() override;
};

/// A `Signature` element does not have the accepted structure.
class SAMLTOKEN_API SignatureSyntaxException : public XmlSecurityException {
  public:
    /// From a message that `what()` returns unchanged.
    using XmlSecurityException::XmlSecurityException;
    /// Copies the message.
    SignatureSyntaxException(const SignatureSyntaxException&) = default;
    /// Copies the message.
    SignatureSyntaxException& operator=(const SignatureSyntaxException&) = default;
    ~SignatureSyntaxException() override;
};

/// The cryptographic library failed while a signature was made.
class SAMLTOKEN_API SignatureGenerationException : public XmlSecurityException {
  public:
    /// From a message that `what()` returns unchanged.
    using XmlSecurityException::XmlSecurityException;
    /// Copies the message.
    SignatureGenerationException(const SignatureGenerationException&) = default;
    /// Copies the message.
    SignatureGenerationException& operator=(const SignatureGenerationException&) = default;
    ~SignatureGenerationException() override;
};

/// A signature could not be checked: no key was offered, or the cryptographic library failed.
class SAMLTOKEN_API SignatureVerificationException : public XmlSecurityException {
  public:
    /// From a message that `what()` returns unchanged.
    using XmlSecurityException::XmlSecurityException;
    /// Copies the message.
    SignatureVerificationException(const SignatureVerificationException&) = default;
    /// Copies the message.
    SignatureVerificationException& operator=(const SignatureVerificationException&) = default;
    ~SignatureVerificationException() override;
};

/// A reference's URI names no element.
class SAMLTOKEN_API MissingReferentException : public XmlSecurityException {
  public:
    /// From a message that `what()` returns unchanged.
    using XmlSecurityException::XmlSecurityException;
    /// Copies the message.
    MissingReferentException(const MissingReferentException&) = default;
    /// Copies the message.
    MissingReferentException& operator=(const MissingReferentException&) = default;
    ~MissingReferentException() override;
};

/// A reference's URI names more than one element.
class SAMLTOKEN_API DuplicateURIException : public XmlSecurityException {
  public:
    /// From a message that `what()` returns unchanged.
    using XmlSecurityException::XmlSecurityException;
    /// Copies the message.
    DuplicateURIException(const DuplicateURIException&) = default;
    /// Copies the message.
    DuplicateURIException& operator=(const DuplicateURIException&) = default;
    ~DuplicateURIException() override;
};

}  // namespace Security
}  // namespace Xml

/// Codec between bytes and Base64 text (RFC 4648 section 4).
/// Threads: no state; any number of threads may call it.
class SAMLTOKEN_API Base64 {
  public:
    Base64() = default;
    /// Copies nothing: there is no state.
    Base64(const Base64&) = default;
    /// Does nothing: there is no state to assign.
    Base64& operator=(const Base64& other);

    /// The padded Base64 text of `data`, without line breaks; empty for no bytes.
    static std::string Encode(const std::vector<unsigned char>& data);

    /// The bytes of `text`, never throwing for bad text.
    ///
    /// ASCII blanks are skipped between groups of four characters and nowhere else. Two deviations
    /// from RFC 4648 are kept because stored signatures decode through them: unused trailing bits
    /// are not required to be zero, and the character after the first of two padding characters is
    /// not examined.
    ///
    /// \param error  Pass an empty string. A failure appends its text to it: "Truncated Base64!",
    ///               "Invalid Padding in Base 64!" or "Non-Valid Character in Base 64!". Success
    ///               leaves it untouched. An empty result alone is not a failure, since an empty or
    ///               blank text has no bytes.
    /// \return The bytes; none at all on failure.
    static std::vector<unsigned char> Decode(const std::string& text, std::string& error);
};

/// A UTC instant as SAML carries it (XML Schema `dateTime` in UTC): its exact text next to its
/// seconds since the Unix epoch.
///
/// The seconds are narrowed to 32 bits and widened again: instants after 2038-01-19T03:14:07Z wrap
/// to other seconds while their text stays right. Threads: a plain value.
class SAMLTOKEN_API DateTime {
  public:
    /// The epoch: text "1970-01-01T00:00:00.000Z", 0 seconds.
    DateTime();
    /// The same text and the same seconds.
    DateTime(const DateTime& other);
    /// Takes over text and seconds.
    DateTime& operator=(const DateTime& other);
    ~DateTime();

    /// Compares the texts, byte by byte, not the instants: "...:00Z" and "...:00.000Z" of the same
    /// second differ.
    bool operator==(const DateTime& other) const;
    /// Orders by the texts, byte by byte as unsigned characters, a proper prefix first:
    /// "...:00.000Z" comes before "...:00Z".
    bool operator<(const DateTime& other) const;

    /// Seconds since 1970-01-01T00:00:00Z, after the narrowing to 32 bits.
    std::int64_t timeT() const;
    /// A copy of the text.
    std::string value();

    /// The system clock's present instant; the text has milliseconds.
    static DateTime GetUtcDateTime();

    /// Makes a value from `source`; false means that there is none. Any other argument type than
    /// those of the four specialisations below does not compile.
    template <class T>
    static bool Create(const T& source, DateTime& out) = delete;

  private:
    std::string text_;
    std::int64_t seconds_;
};

/// Parses "yyyy-mm-ddThh:mm:ssZ" (20 characters) or "yyyy-mm-ddThh:mm:ss.fffZ" (24 characters),
/// keeping the text as it is. A 24-character text with 'Z' as its 20th character is taken too,
/// whatever its last four characters are.
/// \return False when `text` is no such date or the year lies below 1400. `out` is then untouched,
///         except that a date of the years 1 to 1399 replaces its text and leaves its seconds.
template <>
SAMLTOKEN_API bool DateTime::Create<std::string>(const std::string& text, DateTime& out);

/// Formats `time` as "yyyy-mm-ddThh:mm:ss.fffZ", the fraction truncated to milliseconds.
/// \return False, with `out` untouched, when `time` is not a date-time or infinite.
template <>
SAMLTOKEN_API bool DateTime::Create<boost::posix_time::ptime>(const boost::posix_time::ptime& time,
                                                              DateTime& out);

/// Formats seconds since the Unix epoch.
/// \return False, with `out` untouched, when the instant lies outside the years 1400 to 9999.
template <>
SAMLTOKEN_API bool DateTime::Create<std::int64_t>(const std::int64_t& seconds, DateTime& out);

/// Formats a system clock's time point; what is below a millisecond is dropped.
/// \return False, with `out` untouched, when the instant lies outside the years 1400 to 9999.
template <>
SAMLTOKEN_API bool DateTime::Create<boost::chrono::system_clock::time_point>(
    const boost::chrono::system_clock::time_point& time, DateTime& out);

/// A source of bytes from which a parser pulls. The caller owns it; whoever takes one borrows it
/// for the length of a call.
struct SAMLTOKEN_API Reader {
    /// Copies up to `size` bytes into `buffer`.
    /// \return How many bytes were copied; -1 when no byte is left. 0 means none now, not the end.
    virtual int Read(char* buffer, int size) = 0;
    virtual ~Reader();
};

/// A sink of bytes into which canonicalization and serialization push. The caller owns it; whoever
/// takes one borrows it for the length of a call.
struct SAMLTOKEN_API Writer {
    /// Takes exactly `length` bytes of any value; `data` is not terminated.
    virtual void Write(const char* data, int length) = 0;
    virtual ~Writer();
};

/// Reads a string of at most 2^31 - 1 bytes.
struct SAMLTOKEN_API StringReader : Reader {
    /// Starts at the first byte of a copy of `text`.
    explicit StringReader(const std::string& text);
    /// As `Reader::Read`; a `size` below 1 gives 0.
    int Read(char* buffer, int size) override;
    ~StringReader() override;

    /// The whole input.
    std::string data;
    /// Index of the next unread byte.
    std::int32_t position;
};

/// Collects everything written to it.
struct SAMLTOKEN_API StringWriter : Writer {
    StringWriter();
    void Write(const char* data, int length) override;
    ~StringWriter() override;

    /// All bytes written so far.
    std::string data;
};

}  // namespace Saml
