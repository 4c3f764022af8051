#pragma once

#include "saml/token.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// Makes assertions for tests: writes them from a description, signs them with the library's own
/// building blocks, spoils them.
namespace Forge {

struct Name {
    std::string format = Saml::ProfileUri::UpnNameFormat;
    std::string value;
};

struct Attribute {
    std::string name;
    std::vector<std::string> values;
    std::string nameFormat = "urn:oasis:names:tc:SAML:2.0:attrname-format:uri";
    std::optional<std::string> friendlyName = std::nullopt;
};

struct AdviceEntry {
    std::string source;
    std::vector<Attribute> attributes;
};

struct Delegate {
    Name name;
    std::string instant = "2020-01-01T00:00:00.000Z";
};

/// The text of the instant that lies `seconds` after the present one.
std::string FromNow(std::int64_t seconds);

/// What an assertion says. As it is made, it is a bearer token of jdoe@corp that began a minute ago
/// and lasts an hour, without anything that is optional. Texts are written as they are: a test may
/// put markup or entities into them.
struct TokenSpec {
    std::string prefix = "saml";  ///< Of SAML's elements; empty: a default declaration.
    std::string version = "2.0";
    std::string id = "_4f1c0d7e";
    std::string issueInstant = FromNow(-60);
    Name issuer{"urn:oasis:names:tc:SAML:2.0:nameid-format:entity", "https://idp.example/"};
    Name subject{Saml::ProfileUri::UpnNameFormat, "jdoe@corp"};
    std::string notBefore = FromNow(-60);
    std::string notOnOrAfter = FromNow(3600);
    /// Of the confirmation; for bearers the end of the window when not given.
    std::optional<std::string> confirmationNotOnOrAfter;
    /// Base64; given, the confirmation is holder-of-key.
    std::optional<std::string> holderOfKeyCertificate;
    std::optional<Name> delegateId;
    std::vector<Delegate> delegates;
    std::vector<std::string> audience;
    std::optional<std::string> proxyCount;
    bool renewRestriction = false;
    std::optional<std::string> renewCount;  ///< Only with `renewRestriction`.
    std::vector<AdviceEntry> advice;
    std::string authnInstant = FromNow(-60);
    std::string contextClass = "urn:oasis:names:tc:SAML:2.0:ac:classes:Password";
    std::vector<Attribute> attributes;
    std::string signature;  ///< Markup that stands behind the issuer.
};

/// The text of the assertion.
std::string Write(const TokenSpec& spec);

/// A signature of the accepted structure that no key verifies, with one reference to `uri`.
std::string HollowSignature(const std::string& uri);

struct Signer {
    Saml::ByteBlob privateKey;
    std::list<Saml::ByteBlob> certificates;  ///< For the signature's `KeyInfo`.
};

/// Which choices a signature makes.
struct SignatureSpec {
    /// Not given: "#" and the `ID` of the assertion.
    std::optional<std::string> uri;
    std::string signatureMethod = Saml::Xml::Security::Algorithm::RsaSha256;
    std::string digestMethod = Saml::Xml::Security::Algorithm::Sha256;
    std::string prefix = "ds";
};

/// The assertion `xml`, which has no signature yet, with an enveloped one behind its issuer.
std::string Sign(const std::string& xml, const Signer& signer, const SignatureSpec& choices = {});

/// `text` with `to` in the place of `from`, which must occur exactly once, or the test fails.
std::string Replaced(const std::string& text, const std::string& from, const std::string& to);

/// The document that `xml` says.
boost::intrusive_ptr<Saml::Xml::Document> Parse(const std::string& xml);

}  // namespace Forge
