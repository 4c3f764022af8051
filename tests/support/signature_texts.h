#pragma once

#include "saml/security.h"
#include "support/canonical_forms.h"

#include <list>
#include <stdexcept>
#include <string>

/// A document with a signature in it for readers to take apart: its structure is right, its digest
/// and its signature value are nobody's. Tests replace a piece of it.
namespace Saml::Xml::Security {

constexpr char kSignatureText[] =
    R"(<ds:Signature xmlns:ds="http://www.w3.org/2000/09/xmldsig#">)"
    R"(<ds:SignedInfo>)"
    R"(<ds:CanonicalizationMethod Algorithm="http://www.w3.org/2001/10/xml-exc-c14n#"/>)"
    R"(<ds:SignatureMethod Algorithm="http://www.w3.org/2001/04/xmldsig-more#rsa-sha256"/>)"
    R"(<ds:Reference URI="#r">)"
    R"(<ds:Transforms>)"
    R"(<ds:Transform Algorithm="http://www.w3.org/2000/09/xmldsig#enveloped-signature"/>)"
    R"(<ds:Transform Algorithm="http://www.w3.org/2001/10/xml-exc-c14n#"/>)"
    R"(</ds:Transforms>)"
    R"(<ds:DigestMethod Algorithm="http://www.w3.org/2001/04/xmlenc#sha256"/>)"
    R"(<ds:DigestValue>ZGlnZXN0</ds:DigestValue>)"
    R"(</ds:Reference>)"
    R"(</ds:SignedInfo>)"
    R"(<ds:SignatureValue>c2lnbmF0dXJl</ds:SignatureValue>)"
    R"(<ds:KeyInfo><ds:X509Data><ds:X509Certificate>Y2VydA==</ds:X509Certificate></ds:X509Data>)"
    R"(</ds:KeyInfo>)"
    R"(</ds:Signature>)";

/// `text` with its only `piece` replaced.
inline std::string Replaced(std::string text, const std::string& piece, const std::string& by) {
    const std::size_t found = text.find(piece);
    if (found == std::string::npos || text.find(piece, found + 1) != std::string::npos)
        throw std::runtime_error("not there exactly once: " + piece);
    return text.replace(found, piece.size(), by);
}

/// A root with the identifier "r" that holds a signature.
inline std::string DocumentText(const std::string& signature = kSignatureText) {
    return "<root ID=\"r\">" + signature + "</root>";
}

/// The signature of `document`, with the document's root as its root.
inline boost::intrusive_ptr<Signature> SignatureOf(Document& document) {
    boost::intrusive_ptr<Signature> signature;
    CreateSignatureFromDom(document.GetRootElement(), &ElementNamed(document, "Signature"),
                           signature);
    return signature;
}

inline std::list<boost::intrusive_ptr<SignatureReference>> ReferencesOf(Signature& signature) {
    std::list<boost::intrusive_ptr<SignatureReference>> references;
    signature.GetReferences(references);
    return references;
}

}  // namespace Saml::Xml::Security
