#pragma once

/// Identifiers of W3C xmldsig-core that callers do not pass in; see `Algorithm` for those they do.
namespace Saml::Xml::Security {

constexpr char kSignatureNamespace[] = "http://www.w3.org/2000/09/xmldsig#";
constexpr char kEnvelopedSignatureTransform[] =
    "http://www.w3.org/2000/09/xmldsig#enveloped-signature";
/// Namespace of `InclusiveNamespaces`; the same text as the algorithm's identifier.
constexpr char kExclusiveC14NNamespace[] = "http://www.w3.org/2001/10/xml-exc-c14n#";
/// A spelling of SHA-384 that no standard has and that deployed signers write.
constexpr char kSha384XmlDsigSpelling[] = "http://www.w3.org/2000/09/xmldsig#sha384";

}  // namespace Saml::Xml::Security
