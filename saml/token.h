/// \file
/// The SAML token: an immutable account of who is calling, made only from an assertion (SAML core
/// 2.3.3) that was read, validated and verified.
#pragma once

#include "saml/foundations.h"
#include "saml/security.h"
#include "saml/xml.h"

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace Saml {

/// The URIs by which this deployment's identity provider names things. Each has a CMake cache
/// variable of its own (see saml/token/CMakeLists.txt), so that a build can serve another provider.
namespace ProfileUri {
/// `Format` of every `NameID` that names a principal.
SAMLTOKEN_API extern const char* const UpnNameFormat;
/// Name of the attribute whose values are the subject's groups.
SAMLTOKEN_API extern const char* const GroupIdentity;
/// Name of the attribute that marks a solution user.
SAMLTOKEN_API extern const char* const IsSolution;
/// Name of the attribute that holds the subject's first name.
SAMLTOKEN_API extern const char* const GivenName;
/// Name of the attribute that holds the subject's last name.
SAMLTOKEN_API extern const char* const Surname;
/// Namespace of `RSAAdvice` and of the renew restriction's type.
SAMLTOKEN_API extern const char* const ExtensionNamespace;
}  // namespace ProfileUri

/// The clock difference, in seconds, that the functions without a tolerance allow.
constexpr std::int64_t DefaultClockTolerance = 600;

/// Names a user, a group or a delegate.
struct PrincipalId {
    std::string Name;    ///< Without the domain.
    std::string Domain;  ///< Whose name it is.

    /// Compares both fields without regard to case, character by character under the process's
    /// global `std::locale`. Note that the delegation rules compare names exactly instead.
    SAMLTOKEN_API bool operator==(const PrincipalId& other) const;
};

/// How the subject is confirmed (SAML core 2.4.1.1, SAML profiles 3).
enum class ConfirmationType : std::int32_t {
    Bearer = 0,       ///< Whoever presents the token is the subject.
    HolderOfKey = 1,  ///< Who proves possession of a key is; proving it is the caller's business.
};

/// The subject's names; each is empty when the token does not give it.
struct PersonName {
    std::string FirstName;  ///< The given name.
    std::string LastName;   ///< The family name.
};

/// One link of the delegation chain.
struct DelegateInfo {
    PrincipalId Delegate;        ///< Who acts for the subject.
    DateTime DelegationInstant;  ///< Since when.
};

/// One `Attribute` (SAML core 2.7.3.1).
struct SamlAttribute {
    std::string Name;                 ///< Usually a URI.
    std::string NameFormat;           ///< How the name is to be read, a URI, too.
    std::string FriendlyName;         ///< Empty when absent.
    std::vector<std::string> Values;  ///< In document order.
};

/// One advice entry of the identity provider's extension namespace.
struct Advice {
    std::string AdviceSource;               ///< Who gives the advice.
    std::vector<SamlAttribute> Attributes;  ///< In document order.
};

/// A verified assertion.
/// Threads: immutable; any number of threads may read one object.
class SAMLTOKEN_API SamlToken {
  public:
    virtual ~SamlToken();

    /// The assertion's `ID`, which begins with an underscore: the key for a replay cache.
    virtual const std::string& GetId() const = 0;
    /// `NotBefore` of the conditions.
    virtual const DateTime& GetStartTime() const = 0;
    /// `NotOnOrAfter` of the conditions.
    virtual const DateTime& GetExpirationTime() const = 0;
    /// Who the token speaks of.
    virtual const PrincipalId& GetSubject() const = 0;
    /// True when the issuer renews this token: the renew restriction has a count above 0.
    virtual bool IsRenewable() const = 0;
    /// True when the token may be passed on: the proxy restriction has a count above 0.
    virtual bool IsDelegable() const = 0;
    /// True when the subject is a solution user.
    virtual bool IsSolution() const = 0;
    /// How the caller shows that it is the subject; see `ConfirmationType`.
    virtual ConfirmationType GetConfirmationType() const = 0;
    /// Assigns both names to `name`.
    virtual void GetPersonName(PersonName& name) const = 0;
    /// A copy, in document order.
    virtual std::vector<PrincipalId> GetGroups() const = 0;
    /// A copy, in document order: the last entry is the most recent delegate.
    virtual std::vector<DelegateInfo> GetDelegationChain() const = 0;
    /// Replaces `audience` by the audiences; none means that the token is not restricted to any.
    /// Whether the caller is among them is for the caller to check.
    virtual void GetAudience(std::set<std::string>& audience) const = 0;
    /// A copy, in document order.
    virtual std::vector<Advice> GetAdvice() const = 0;
    /// DER of the certificate whose key the presenter must prove to hold; null for bearer tokens.
    virtual const ByteBlob& GetHolderOfKeyCertificate() const = 0;
    /// The text given to `CreateSamlToken`, byte for byte, or the inclusive canonical form of the
    /// element given to `CreateSamlTokenFromDom`.
    virtual const std::string& GetXml() const = 0;

    SamlToken(const SamlToken&) = delete;
    SamlToken& operator=(const SamlToken&) = delete;

  protected:
    SamlToken();
};

/// Parses, validates and verifies one SAML 2.0 assertion.
///
/// The clock is checked before the signature: an expired token with a broken signature reports the
/// expiry. Names are judged after it: a tampered token with a bad name reports the tampering. A
/// token is never handed out half-checked. The parser's limits and its ban on entity declarations
/// are off here: bound the size of what you pass in, or parse with limits yourself and call
/// `CreateSamlTokenFromDom`.
///
/// \param xml        Text whose root is an `Assertion`, at most 2^31 - 1 bytes; kept byte for byte.
/// \param resolver   Decides whom to trust. Borrowed for the call, not null.
/// \param tolerance  Seconds of clock difference allowed at both ends of the validity window; any
///                   number, a negative one narrows the window.
/// \return An immutable token that refers to nothing the caller passed in.
/// \throws Xml::XMLParseException     `xml` is not well-formed.
/// \throws ParseException             The structure, the window, the delegation chain or a name is
///                                    refused.
/// \throws InvalidSignatureException  The signature does not hold or cannot be checked.
/// \throws ParseException* (a pointer to an object on the heap, for the catcher to delete)
///         The solution-user attribute does not have exactly one value. Callers that catch by
///         reference do not see it: add a `catch (ParseException* refusal)`.
/// \throws InvalidArgumentException   `resolver` is null or `xml` is too long.
/// \throws Xml::Security::CryptoException  OpenSSL failed while digesting.
/// \throws Whatever the resolver throws, unless it is an `Xml::Security::XmlSecurityException`,
///         which becomes an `InvalidSignatureException`.
/// Threads: calls share nothing but `resolver`. Source: SAML core 2.3.3, 2.5.1; xmldsig-core 3.2.
SAMLTOKEN_API std::shared_ptr<const SamlToken> CreateSamlToken(
    const std::string& xml, Xml::Security::KeyInfoResolver* resolver, std::int64_t tolerance);
/// The same with `DefaultClockTolerance`.
SAMLTOKEN_API std::shared_ptr<const SamlToken> CreateSamlToken(
    const std::string& xml, Xml::Security::KeyInfoResolver* resolver);

/// Validates and verifies an `Assertion` element that was parsed already. The signature may refer
/// to it or to elements below it, not to what surrounds it; namespace declarations around it count.
///
/// \param assertion  Borrowed and not changed; not null.
/// The other parameters, the result and the exceptions are those of `CreateSamlToken`.
/// \throws TypeMismatchException  `assertion` is not of the library's own classes.
SAMLTOKEN_API std::shared_ptr<const SamlToken> CreateSamlTokenFromDom(
    Xml::ElementNode* assertion, Xml::Security::KeyInfoResolver* resolver, std::int64_t tolerance);
/// The same with `DefaultClockTolerance`.
SAMLTOKEN_API std::shared_ptr<const SamlToken> CreateSamlTokenFromDom(
    Xml::ElementNode* assertion, Xml::Security::KeyInfoResolver* resolver);

}  // namespace Saml
