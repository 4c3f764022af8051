#include "oracle/profile/value_faults.h"

#include "oracle/profile/neighbour_making.h"

namespace Oracle {
namespace {

using Values = std::vector<std::string>;

const Values kDates = {"",
                       "yesterday",
                       "2020-01-01",
                       "2020-01-01T00:00:00",
                       "2020-01-01T00:00:00+00:00",
                       "2020-01-01T00:00:00.5Z",
                       "2020-01-01T00:00:00.5000Z",
                       "2020-01-01t00:00:00Z",
                       "2020-01-01T00:00:00z",
                       " 2020-01-01T00:00:00Z",
                       "2020-01-01T00:00:00Z ",
                       "2020-13-01T00:00:00Z",
                       "2020-00-01T00:00:00Z",
                       "2020-02-30T00:00:00Z",
                       "1900-02-29T00:00:00Z",
                       "2020-01-01T24:00:00Z",
                       "2020-01-01T00:60:00Z",
                       "2020-01-01T00:00:60Z",
                       "1399-12-31T00:00:00Z",
                       "2020-02-29T00:00:00Z",
                       "2020-01-01T00:00:00.999Z",
                       "2020-01-01T00:00:00Zabcd",
                       "2037-12-31T23:59:59Z"};
const Values kCounts = {"",
                        " 1",
                        "1 ",
                        "abc",
                        "-1",
                        "1.0",
                        "0x1",
                        "1e1",
                        "--1",
                        "+",
                        "9223372036854775808",
                        "-9223372036854775809",
                        "99999999999999999999999",
                        "0",
                        "-0",
                        "+1",
                        "007",
                        "9223372036854775807"};
const Values kMethods = {"",
                         "bearer",
                         "urn:oasis:names:tc:SAML:2.0:cm:sender-vouches",
                         "urn:oasis:names:tc:SAML:2.0:cm:Bearer",
                         "urn:oasis:names:tc:SAML:2.0:cm:bearer ",
                         "urn:oasis:names:tc:SAML:2.0:cm:bearer",
                         "urn:oasis:names:tc:SAML:2.0:cm:holder-of-key"};
const Values kAlgorithms = {"urn:example:none",
                            "http://www.w3.org/2001/10/xml-exc-c14n#WithComments",
                            "http://www.w3.org/TR/2001/REC-xml-c14n-20010315",
                            "http://www.w3.org/TR/2001/REC-xml-c14n-20010315#",
                            "http://www.w3.org/2001/10/xml-exc-c14n#",
                            "http://www.w3.org/2000/09/xmldsig#enveloped-signature",
                            "http://www.w3.org/TR/1999/REC-xpath-19991116",
                            "http://www.w3.org/2000/09/xmldsig#sha1",
                            "http://www.w3.org/2001/04/xmlenc#sha256",
                            "http://www.w3.org/2001/04/xmlenc#sha384",
                            "http://www.w3.org/2001/04/xmldsig-more#sha384",
                            "http://www.w3.org/2001/04/xmlenc#sha512",
                            "http://www.w3.org/2001/04/xmlenc#sha256 ",
                            "http://www.w3.org/2000/09/xmldsig#rsa-sha1",
                            "http://www.w3.org/2001/04/xmldsig-more#rsa-sha384",
                            "http://www.w3.org/2001/04/xmldsig-more#rsa-sha512",
                            "http://www.w3.org/2000/09/xmldsig#dsa-sha1",
                            "http://www.w3.org/2000/09/xmldsig#hmac-sha1"};

struct ValueFault {
    const char* attribute;
    Values values;
};

/// The identifiers are those of `FullAssertion` and what lies beside them.
const std::vector<ValueFault>& ValuesByAttribute() {
    static const std::vector<ValueFault> faults = {
        {"IssueInstant", kDates},
        {"NotBefore", kDates},
        {"NotOnOrAfter", kDates},
        {"DelegationInstant", kDates},
        {"AuthnInstant", kDates},
        {"Count", kCounts},
        {"Method", kMethods},
        {"Algorithm", kAlgorithms},
        {"Version", {"2", "1.1", "2.0 ", "02.0"}},
        {"ID", {"a", "4f1c0d7e", "_other", "_4f1c0d7e "}},
        {"Id", {"_4f1c0d7e", "_value", "other"}},
        {"URI",
         {"#", "#other", "#_info", "#_4F1C0D7E", "_4f1c0d7e", "#_4f1c0d7e", " ", "#xpointer(/)",
          "http://idp.example/"}},
        {"PrefixList", {" ", "saml", "#default", "xsi saml ext", "none", "del ds"}},
        {"Format", {"urn:oasis:names:tc:SAML:1.1:nameid-format:unspecified", "UPN"}},
        {"Name", {"urn:example:another"}},
        {"Postdatable", {"stray!"}},
        {"RenewExpired", {"stray!"}}};
    return faults;
}

struct TextFault {
    const char* localName;
    Values texts;
};

const std::vector<TextFault>& TextsByElement() {
    const Values base64 = {"AAA",  "A",    "AA*A",      "AA A",      "A===", "AA==AAAA", "AAA=AA",
                           "AAAA", "AAA=", "AAAA AAAA", "AAAAA AAA", "AA==", "\xC3\xA9"};
    static const std::vector<TextFault> faults = {
        {"X509Certificate", base64},
        {"DigestValue", base64},
        {"SignatureValue", base64},
        {"NameID", {"jdoe", "@corp", "jdoe@", "@", "a@b@c", "JDOE@CORP"}},
        {"AttributeValue", {"corp", "\\Staff", "corp\\", "\\", "a\\b\\c", "TRUE", "yes", "1"}},
        {"Audience", {"urn:example:another"}},
        {"Issuer", {"urn:example:another"}},
        {"AuthnContextClassRef", {"urn:example:another"}},
        {"X509SubjectName", {"CN=Another"}}};
    return faults;
}

/// Other qualified names in the place of `type`.
Values TypesBeside(const std::string& type) {
    const std::string prefix = PrefixOf(type);
    const std::string localName = LocalNameOf(type);
    return {localName,
            ":" + localName,
            prefix + ":",
            prefix,
            "none:" + localName,
            "xsi:" + localName,
            "saml:" + localName,
            "ext:" + localName,
            "del:" + localName,
            prefix + ":" + localName + "X",
            prefix + ":AnotherType",
            " " + type,
            type + " ",
            prefix + "::" + localName,
            "saml:KeyInfoConfirmationDataType",
            "ext:RenewRestrictionType",
            "del:DelegationRestrictionType"};
}

}  // namespace

void ValueFaults(const Markup& base, const Visit& visit) {
    const Making making(base, visit);
    for (const Place& place : ElementPlaces(base)) {
        const std::vector<Attribute>& attributes = At(base, place).attributes;
        for (std::size_t i = 0; i < attributes.size(); ++i) {
            const std::string name = attributes[i].name;
            const auto set = [&](const Values& values) {
                for (const std::string& value : values)
                    making.Make("another value of " + name, place, "'" + value + "'",
                                [&](Markup& element) { element.attributes[i].value = value; });
            };
            if (name == "xsi:type") set(TypesBeside(attributes[i].value));
            for (const ValueFault& fault : ValuesByAttribute())
                if (name == fault.attribute) set(fault.values);
        }
    }
}

void TextFaults(const Markup& base, const Visit& visit) {
    const Making making(base, visit);
    for (const Place& place : ElementPlaces(base))
        for (const TextFault& fault : TextsByElement())
            if (At(base, place).LocalName() == fault.localName)
                for (const std::string& text : fault.texts)
                    making.Make(std::string("another text of ") + fault.localName, place,
                                "'" + text + "'",
                                [&](Markup& element) { element.children = {TextOf(text)}; });
}

}  // namespace Oracle
