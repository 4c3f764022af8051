#pragma once

#include "saml/token.h"
#include "saml/token/attribute_value.h"

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace Saml {

/// An element that names somebody: its `Format` and its text.
struct NameRecord {
    std::string format;
    std::string value;
};

struct ParsedConfirmation {
    ConfirmationType method = ConfirmationType::Bearer;
    std::optional<NameRecord> delegateId;  ///< The `NameID` of whoever acts for the subject.
    DateTime notOnOrAfter;  ///< Always given for bearers; else the epoch when absent.
    ByteBlob certificate;   ///< Null for bearers.
};

struct ParsedSubject {
    NameRecord nameId;
    ParsedConfirmation confirmation;
};

struct ParsedDelegate {
    DateTime instant;
    NameRecord nameId;
};

struct ParsedRenewal {
    std::optional<std::uint64_t> count;
};

/// Each restriction is absent when the `Conditions` do not have it.
struct ParsedConditions {
    DateTime notBefore;
    DateTime notOnOrAfter;
    std::optional<ParsedRenewal> renewal;
    std::optional<std::vector<ParsedDelegate>> delegation;  ///< Never empty when present.
    std::optional<std::set<std::string>> audience;
    std::optional<std::uint64_t> proxyCount;
};

struct ParsedAuthentication {
    DateTime instant;
    std::string contextClass;
};

/// Its values still stand in the tree.
struct ParsedAttribute {
    std::string name;
    std::string nameFormat;
    std::string friendlyName;
    std::vector<AttributeValue> values;
};

/// What the reader found in an `Assertion`, in document order. Nothing in it was judged yet: not
/// the times, not the delegation, not the names, and the signature was read but not verified.
struct ParsedAssertion {
    std::string version;
    std::string id;
    DateTime issueInstant;
    NameRecord issuer;
    boost::intrusive_ptr<Xml::Security::Signature> signature;
    ParsedSubject subject;
    ParsedConditions conditions;
    std::optional<std::vector<Advice>> advice;
    ParsedAuthentication authentication;
    std::optional<std::vector<ParsedAttribute>> attributes;
};

}  // namespace Saml
