#pragma once

#include <string>
#include <vector>

/// The choices that a signed token makes, one table each, and the combinations of them that are
/// tried. Every two choices of different tables meet in some combination.
namespace SignatureMatrix {

struct Method {
    const char* name;
    const char* identifier;
};
constexpr Method kMethods[] = {{"RsaSha1", "http://www.w3.org/2000/09/xmldsig#rsa-sha1"},
                               {"RsaSha256", "http://www.w3.org/2001/04/xmldsig-more#rsa-sha256"},
                               {"RsaSha384", "http://www.w3.org/2001/04/xmldsig-more#rsa-sha384"},
                               {"RsaSha512", "http://www.w3.org/2001/04/xmldsig-more#rsa-sha512"}};

struct Digest {
    const char* name;
    const char* identifier;
    const char* openSslName;
};
/// The digests that xmlsec1 1.2 knows. SHA-384 has only its RFC 4051 name there.
constexpr Digest kDigests[] = {
    {"Sha1", "http://www.w3.org/2000/09/xmldsig#sha1", "SHA1"},
    {"Sha256", "http://www.w3.org/2001/04/xmlenc#sha256", "SHA256"},
    {"Sha384Rfc4051", "http://www.w3.org/2001/04/xmldsig-more#sha384", "SHA384"},
    {"Sha512", "http://www.w3.org/2001/04/xmlenc#sha512", "SHA512"}};
/// The names of SHA-384 that xmlsec1 does not know: that of XML Encryption 1.1, and one that stands
/// in no standard. What bears them is read by the library alone.
constexpr Digest kOwnDigests[] = {
    {"Sha384XmlEnc", "http://www.w3.org/2001/04/xmlenc#sha384", "SHA384"},
    {"Sha384XmlDsig", "http://www.w3.org/2000/09/xmldsig#sha384", "SHA384"}};

struct KeySize {
    const char* name;
    const char* signer;  ///< The name of a test certificate.
};
constexpr KeySize kKeySizes[] = {{"Rsa1024", "leaf-1024"},
                                 {"Rsa2048", "leaf-2048"},
                                 {"Rsa3072", "leaf-3072"},
                                 {"Rsa4096", "leaf-4096"}};

struct Uri {
    const char* name;
    bool namesTheAssertion;  ///< Else it is empty and means the whole document.
};
constexpr Uri kUris[] = {{"NamedReferent", true}, {"WholeDocument", false}};

struct Style {
    const char* name;
    const char* samlPrefix;
    const char* dsigPrefix;
    bool declaredAbove;  ///< By an element around the assertion.
};
constexpr Style kStyles[] = {{"DefaultDeclarations", "", "", false},
                             {"UsualPrefixes", "saml2", "ds", false},
                             {"DeclaredByAnAncestor", "saml2", "ds", true},
                             {"OddPrefixes", "_.-9", "\xC3\xA9\xC2\xB7x", false},
                             {"OnePrefixForAll", "p", "p", false}};

/// A list's "@" stands for the prefix of the assertion, which is "#default" for a default
/// declaration. Where the apex declares or inherits all that the list names, it is the same whether
/// a list counts at the apex only or, as exclusive C14N has it, everywhere.
struct PrefixList {
    const char* name;
    const char* words;
};
constexpr PrefixList kPrefixLists[] = {{"NoList", ""},
                                       {"UsedAtTheApex", "@"},
                                       {"DeclaredAtTheApex", "ext xsi del"},
                                       {"OfAllKinds", "e xsi ds nobody ext @"}};

/// What the token says beside.
struct Kind {
    const char* name;
    bool holderOfKey;
    bool delegated;
};
constexpr Kind kKinds[] = {{"Bearer", false, false},
                           {"DelegatedBearer", false, true},
                           {"HolderOfKey", true, false},
                           {"DelegatedHolderOfKey", true, true}};

/// One combination.
struct Cell {
    Method method;
    Digest digest;
    KeySize size;
    Uri uri;
    Style style;
    PrefixList list;
    Kind kind;

    std::vector<std::string> Names() const;  ///< Of the choices, in the order of the members.
    std::string Name() const;
    std::string Prefixes() const;  ///< The words of the list, "@" replaced.
};

/// An empty URI makes no sense below an ancestor: it would mean the ancestor's document.
bool CanMeet(const Uri& uri, const Style& style);

/// The combinations with this method and key size whose digest xmlsec1 knows, and the others.
std::vector<Cell> CellsForXmlSec1(const Method& method, const KeySize& size);
std::vector<Cell> CellsForOurselves(const Method& method, const KeySize& size);

}  // namespace SignatureMatrix
