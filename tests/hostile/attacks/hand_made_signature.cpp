#include "hostile/attacks/hand_made_signature.h"

#include "hostile/attacks/refusals.h"
#include "saml/security/openssl_handles.h"
#include "support/test_keys.h"

#include <cstddef>
#include <stdexcept>

namespace Saml::Attacks {
namespace {

using Xml::Security::DigestContextHandle;
using Xml::Security::KeyHandle;

const unsigned char* BytesOf(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}
unsigned char* BytesOf(std::string& text) {
    return reinterpret_cast<unsigned char*>(text.data());
}

KeyHandle PrivateKey(const std::string& name) {
    const ByteBlob der = TestKeys::KeyNamed(name).privateKey;
    const unsigned char* input = der->data();
    return KeyHandle(d2i_AutoPrivateKey(nullptr, &input, static_cast<long>(der->size())));
}

/// The canonical form of the root of `xml`, or else of this child of its signature.
std::string CanonicalForm(const std::string& xml, const char* child = nullptr) {
    const boost::intrusive_ptr<Xml::Document> document = Forge::Parse(xml);
    boost::intrusive_ptr<Xml::Security::Canonicalizer> canonicalizer;
    Xml::Security::CreateCanonicalizer(Xml::Security::Algorithm::ExclusiveC14N, canonicalizer);
    StringWriter canonical;
    Xml::Node* apex = document->GetRootElement();
    if (child != nullptr)
        apex = document->GetRootElement()
                   ->GetFirstChildElement("Signature")
                   ->GetFirstChildElement(child);
    canonicalizer->Canonicalize(apex, canonical);
    return canonical.data;
}

std::string Element(const std::string& name, const std::string& content) {
    return "<ds:" + name + ">" + content + "</ds:" + name + ">";
}

std::string SignatureElement(const std::string& content) {
    return "<ds:Signature xmlns:ds=\"http://www.w3.org/2000/09/xmldsig#\">" + content +
           "</ds:Signature>";
}

}  // namespace

std::string Base64Text(const std::string& bytes) {
    std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');
    text.resize(static_cast<std::size_t>(
        EVP_EncodeBlock(BytesOf(text), BytesOf(bytes), static_cast<int>(bytes.size()))));
    return text;
}

std::string DigestOf(const std::string& digest, const std::string& bytes) {
    std::string value(EVP_MAX_MD_SIZE, '\0');
    unsigned int size = 0;
    if (EVP_Digest(bytes.data(), bytes.size(), BytesOf(value), &size,
                   EVP_get_digestbyname(digest.c_str()), nullptr) != 1)
        throw std::runtime_error("cannot digest with " + digest);
    value.resize(size);
    return value;
}

Signing SigningWith(const std::string& key, const std::string& digest) {
    return [key, digest](const std::string& signedInfo) {
        const KeyHandle privateKey = PrivateKey(key);
        const DigestContextHandle context(EVP_MD_CTX_new());
        const EVP_MD* const method =
            digest.empty() ? nullptr : EVP_get_digestbyname(digest.c_str());
        std::size_t size = 0;
        std::string value;
        if (EVP_DigestSignInit(context.get(), nullptr, method, nullptr, privateKey.get()) != 1 ||
            EVP_DigestSign(context.get(), nullptr, &size, BytesOf(signedInfo), signedInfo.size()) !=
                1)
            throw std::runtime_error("cannot sign with " + key);
        value.resize(size);
        if (EVP_DigestSign(context.get(), BytesOf(value), &size, BytesOf(signedInfo),
                           signedInfo.size()) != 1)
            throw std::runtime_error("cannot sign with " + key);
        value.resize(size);
        return value;
    };
}

std::string Method(const std::string& element, const std::string& algorithm,
                   const std::string& content) {
    return "<ds:" + element + " Algorithm=\"" + algorithm + "\">" + content + "</ds:" + element +
           ">";
}

std::string Transform(const std::string& algorithm, const std::string& content) {
    return Method("Transform", algorithm, content);
}
std::string EnvelopedTransform() {
    return Transform("http://www.w3.org/2000/09/xmldsig#enveloped-signature");
}
std::string ExclusiveTransform() {
    return Transform(Xml::Security::Algorithm::ExclusiveC14N);
}
std::string Transforms(const std::string& content) {
    return Element("Transforms", content);
}

std::string X509Certificates(const std::vector<std::string>& names) {
    std::string elements;
    for (const std::string& name : names) {
        const ByteBlob der = TestKeys::CertificateNamed(name).der;
        elements += Element("X509Certificate", Base64Text({der->begin(), der->end()}));
    }
    return elements;
}

std::string X509Data(const std::string& content) {
    return Element("X509Data", content);
}
std::string KeyInfo(const std::string& content) {
    return Element("KeyInfo", content);
}
std::string Sending(const std::vector<std::string>& names) {
    return KeyInfo(X509Data(X509Certificates(names)));
}

std::string TokenWith(const HandMadeSignature& signature, const Forge::TokenSpec& spec) {
    HandMadeSignature ofThis = signature;
    ofThis.uri = "#" + spec.id;
    return TokenWith(ofThis, Forge::Write(spec));
}

std::string TokenWith(const HandMadeSignature& signature, const std::string& assertion) {
    const std::string digest = DigestOf(signature.digest, CanonicalForm(assertion));
    const std::string signedInfo =
        Element("SignedInfo", signature.canonicalizationMethod + signature.signatureMethod +
                                  "<ds:Reference URI=\"" + signature.uri + "\">" +
                                  signature.transforms + signature.digestMethod +
                                  Element("DigestValue", signature.digestText(digest)) +
                                  "</ds:Reference>" + signature.furtherReferences);
    // What the assertion declares is in scope, too.
    const auto inserted = [&assertion](const std::string& element) {
        constexpr char kIssuerEnd[] = "</saml:Issuer>";
        return Forge::Replaced(assertion, kIssuerEnd, kIssuerEnd + element);
    };
    const std::string value =
        signature.sign(CanonicalForm(inserted(SignatureElement(signedInfo)), "SignedInfo"));
    return inserted(SignatureElement(signedInfo +
                                     Element("SignatureValue", signature.signatureText(value)) +
                                     signature.keyInfo));
}

std::string RefusedWithoutKey() {
    return RefusedVerification("No verification key available.");
}

}  // namespace Saml::Attacks
