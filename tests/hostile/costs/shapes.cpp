#include "hostile/costs/shapes.h"

#include "hostile/attacks/hand_made_signature.h"
#include "support/big_documents.h"
#include "support/forged_certificate.h"
#include "support/test_keys.h"

#include <utility>

namespace Saml::Attacks {
namespace {

using namespace BigDocuments;
using Xml::Security::Algorithm::ExclusiveC14N;
using Xml::Security::Algorithm::Sha256;

/// Pieces of what is left of `bytes` when the token around them has its share.
using Piece = std::function<std::string(std::size_t index)>;
constexpr std::size_t kAround = 5200;

std::string Filled(std::size_t bytes, const Piece& piece) {
    std::string pieces;
    for (std::size_t i = 0; pieces.size() + kAround < bytes; ++i)
        pieces += piece(i);
    return pieces;
}

std::string FilledWith(std::size_t bytes, const std::string& piece) {
    return Filled(bytes, [&piece](std::size_t) { return piece; });
}

std::string WithUnsigned(const std::string& content) {
    HandMadeSignature signature;
    signature.keyInfo = KeyInfo(X509Data(X509Certificates({"leaf", "intermediate"}) + content));
    return TokenWith(signature);
}

std::string WithSigned(const std::string& content) {
    HandMadeSignature signature;
    signature.transforms = Transforms(EnvelopedTransform() + Transform(ExclusiveC14N, content));
    return TokenWith(signature);
}

std::string WithCertificates(const std::string& certificates) {
    HandMadeSignature signature;
    signature.keyInfo = KeyInfo(X509Data(certificates));
    return TokenWith(signature);
}

std::string Certificate(const ByteBlob& der) {
    return "<ds:X509Certificate>" + Base64Text({der->begin(), der->end()}) +
           "</ds:X509Certificate>";
}

std::string PrefixList(const std::string& prefixes) {
    return Transform(ExclusiveC14N,
                     "<c:InclusiveNamespaces xmlns:c=\"http://www.w3.org/2001/10/xml-exc-c14n#\" "
                     "PrefixList=\"" +
                         prefixes + "\"/>");
}

std::string Reference(const std::string& uri, const std::string& transforms) {
    return "<ds:Reference URI=\"" + uri + "\">" + Transforms(transforms) +
           Method("DigestMethod", Sha256) + "<ds:DigestValue>AAAA</ds:DigestValue></ds:Reference>";
}

std::string WithReferences(const std::string& references) {
    HandMadeSignature signature;
    signature.furtherReferences = references;
    return TokenWith(signature);
}

/// Elements one in the other, and a reference to each.
std::string DeepWithReferences(std::size_t bytes) {
    const auto element = [](std::size_t i) { return "<a ID=\"i" + Padded(i) + "\">"; };
    const auto reference = [](std::size_t i) {
        return Reference("#i" + Padded(i), ExclusiveTransform());
    };
    std::size_t count = 1;
    while (kAround + count * (element(0).size() + 4 + reference(0).size()) < bytes)
        ++count;
    std::string begins;
    std::string references;
    for (std::size_t i = 0; i != count; ++i) {
        begins += element(i);
        references += reference(i);
    }
    HandMadeSignature signature;
    signature.furtherReferences = references;
    signature.keyInfo = KeyInfo(X509Data(begins + Repeated("</a>", count)));
    return TokenWith(signature);
}

/// Authorities of the attacker's, each issued by the next.
std::string ChainOfAuthorities(std::size_t bytes) {
    const std::string key(TestKeys::KeyNamed("attacker").publicKey->begin(),
                          TestKeys::KeyNamed("attacker").publicKey->end());
    return Filled(bytes, [&key](std::size_t i) {
        TestKeys::ForgedCertificate form;
        form.keyBits = key;
        form.subject = "CA" + std::to_string(i);
        form.issuer = "CA" + std::to_string(i + 1);
        form.serial = static_cast<int>(i + 1);
        form.isAuthority = true;
        return Certificate(form.Der());
    });
}

/// The same with one name, so that each may be the issuer of each.
std::string AuthoritiesOfOneName(std::size_t bytes) {
    const std::string key(TestKeys::KeyNamed("attacker").publicKey->begin(),
                          TestKeys::KeyNamed("attacker").publicKey->end());
    return Filled(bytes, [&key](std::size_t i) {
        TestKeys::ForgedCertificate form;
        form.keyBits = key;
        form.serial = static_cast<int>(i + 1);
        form.isAuthority = true;
        return Certificate(form.Der());
    });
}

/// A long namespace and short elements that use it: what the canonical form repeats is limited to a
/// hundred times what was met.
std::string RepeatedNamespace(std::size_t bytes) {
    const std::size_t half = (bytes - kAround) / 2;
    HandMadeSignature signature;
    signature.furtherReferences = Reference("", ExclusiveTransform());
    signature.keyInfo = KeyInfo("<ds:X509Data xmlns:p=\"" + std::string(half, 'u') + "\">" +
                                Repeated("<p:a/>", half / 6) + "</ds:X509Data>");
    return TokenWith(signature);
}

/// Elements that give the attribute themselves: no default is supplied, each is looked for.
std::string DefaultsOverridden(std::size_t bytes) {
    const std::size_t half = (bytes - kAround) / 2;
    return "<!DOCTYPE saml:Assertion [<!ATTLIST a x CDATA '" + std::string(half, 'd') + "'>]>" +
           WithUnsigned(Repeated("<a x=\"\"/>", half / 9));
}

/// Somewhat below a hundred times the text, where the parser would refuse them.
std::string DefaultsSupplied(std::size_t bytes) {
    const std::size_t half = (bytes - kAround) / 2;
    constexpr std::size_t kTimes = 160;
    return "<!DOCTYPE saml:Assertion [<!ATTLIST a x CDATA '" + std::string(half, 'd') + "'>]>" +
           WithUnsigned("<!--" + std::string(half - kTimes * 4, 'c') + "-->" +
                        Repeated("<a/>", kTimes));
}

std::string Entities(std::size_t bytes) {
    const std::size_t half = (bytes - kAround) / 2;
    const std::string token = WithUnsigned("<later/>");
    return "<!DOCTYPE saml:Assertion [<!ENTITY e '" + std::string(half, 'e') + "'>]>" +
           Forge::Replaced(token, "<later/>",
                           "<!--" + std::string(half - 150, 'c') + "-->" + Repeated("&e;", 50));
}

std::string Declaring(const std::string& declarations, const HandMadeSignature& signature) {
    return TokenWith(signature,
                     Forge::Replaced(Forge::Write(Provider::CustomerSpec()), "<saml:Assertion ",
                                     "<saml:Assertion" + declarations + " "));
}

std::string NamespacesAndElements(std::size_t bytes) {
    const std::size_t count = (bytes - kAround) / 38;
    HandMadeSignature signature;
    signature.transforms =
        Transforms(EnvelopedTransform() + Transform(ExclusiveC14N, PrefixedElements(count)));
    return Declaring(DeclarationList(count), signature);
}

std::string Attributes(std::size_t bytes) {
    const std::string list =
        Filled(bytes, [](std::size_t i) { return " a" + Padded(i) + "=\"v\""; });
    return TokenWith(
        {}, Forge::Replaced(Forge::Write(Provider::CustomerSpec()), "<saml:AudienceRestriction>",
                            "<saml:AudienceRestriction" + list + ">"));
}

std::string WithSignatureText(const std::string& text) {
    HandMadeSignature signature;
    signature.signatureText = [text](const std::string&) { return text; };
    return TokenWith(signature);
}

}  // namespace

std::string PlainToken(std::size_t bytes) {
    constexpr char kValue[] = "a value of the usual length";
    Forge::TokenSpec spec = Provider::CustomerSpec();
    const std::size_t each = sizeof kValue + 46;
    spec.attributes.push_back({"urn:plain", {}});
    for (std::size_t size = kAround; size < bytes; size += each)
        spec.attributes.back().values.push_back(kValue);
    return TokenWith({}, spec);
}

std::vector<Shape> HostileShapes() {
    return {
        {"deep tree, not signed",
         [](std::size_t bytes) { return WithUnsigned(NestedElements((bytes - kAround) / 7)); }},
        {"deep tree, signed",
         [](std::size_t bytes) { return WithSigned(NestedElements((bytes - kAround) / 7)); }},
        {"wide tree, not signed",
         [](std::size_t bytes) { return WithUnsigned(FilledWith(bytes, "<a/>")); }},
        {"wide tree, signed",
         [](std::size_t bytes) { return WithSigned(FilledWith(bytes, "<a/>")); }},
        {"comments", [](std::size_t bytes) { return WithUnsigned(FilledWith(bytes, "<!---->")); }},
        {"many attributes", Attributes},
        {"escaped text", [](std::size_t bytes) { return WithSigned(FilledWith(bytes, "&#62;")); }},
        {"namespaces on one element, one child each", NamespacesAndElements},
        {"namespaces down the tree",
         [](std::size_t bytes) {
             return WithSigned(NamespacesDownTheTree((bytes - kAround) / 30, ""));
         }},
        {"one long namespace on many siblings", RepeatedNamespace},
        {"attribute defaults, overridden", DefaultsOverridden},
        {"attribute defaults, supplied", DefaultsSupplied},
        {"entities", Entities},
        {"many transforms",
         [](std::size_t bytes) {
             HandMadeSignature signature;
             signature.transforms = Transforms(FilledWith(bytes, ExclusiveTransform()));
             return TokenWith(signature);
         }},
        {"one long prefix list",
         [](std::size_t bytes) {
             HandMadeSignature signature;
             signature.transforms = Transforms(
                 EnvelopedTransform() +
                 PrefixList(Filled(bytes, [](std::size_t i) { return " p" + std::to_string(i); })));
             return TokenWith(signature);
         }},
        {"many equal references",
         [](std::size_t bytes) {
             return WithReferences(FilledWith(
                 bytes, Reference("#_genuine", EnvelopedTransform() + ExclusiveTransform())));
         }},
        {"references, each with a prefix list",
         [](std::size_t bytes) {
             return WithReferences(Filled(bytes, [](std::size_t i) {
                 return Reference("", PrefixList("p" + std::to_string(i)));
             }));
         }},
        {"references to each of nested elements", DeepWithReferences},
        {"garbage certificates",
         [](std::size_t bytes) {
             return WithCertificates(
                 FilledWith(bytes, "<ds:X509Certificate>AAAA</ds:X509Certificate>"));
         }},
        {"one certificate, repeated",
         [](std::size_t bytes) {
             return WithCertificates(FilledWith(bytes, X509Certificates({"attacker-root"})));
         }},
        {"chain of authorities",
         [](std::size_t bytes) { return WithCertificates(ChainOfAuthorities(bytes)); }},
        {"authorities of one name",
         [](std::size_t bytes) { return WithCertificates(AuthoritiesOfOneName(bytes)); }},
        {"one huge certificate",
         [](std::size_t bytes) {
             return WithCertificates("<ds:X509Certificate>" + FilledWith(bytes, "MAAA") +
                                     "</ds:X509Certificate>");
         }},
        {"huge signature value",
         [](std::size_t bytes) { return WithSignatureText(FilledWith(bytes, "AAAA")); }},
        {"blanks in the signature value",
         [](std::size_t bytes) { return WithSignatureText("AAAA" + FilledWith(bytes, " ")); }},
        {"strangers in X509Data",
         [](std::size_t bytes) { return WithUnsigned(FilledWith(bytes, "<u:X509Certificate/>")); }},
    };
}

}  // namespace Saml::Attacks
