#pragma once

/// Identifiers that SAML and the standards it builds on assign; what a deployment chooses stands in
/// `ProfileUri`.
namespace Saml::SamlUri {

constexpr char AssertionNamespace[] = "urn:oasis:names:tc:SAML:2.0:assertion";
constexpr char DelegationNamespace[] = "urn:oasis:names:tc:SAML:2.0:conditions:delegation";
constexpr char SchemaInstanceNamespace[] = "http://www.w3.org/2001/XMLSchema-instance";

/// Confirmation methods (SAML profiles 3.1 and 3.3).
constexpr char BearerMethod[] = "urn:oasis:names:tc:SAML:2.0:cm:bearer";
constexpr char HolderOfKeyMethod[] = "urn:oasis:names:tc:SAML:2.0:cm:holder-of-key";

}  // namespace Saml::SamlUri
