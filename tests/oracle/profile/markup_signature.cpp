#include "oracle/profile/markup_signature.h"

#include "oracle/profile/assertion_grammar.h"
#include "oracle/profile/exclusive_form.h"
#include "oracle/profile/grammar_reading.h"
#include "oracle/profile/plain_values.h"
#include "saml/security/openssl_handles.h"

#include <openssl/evp.h>

#include <stdexcept>
#include <string>

namespace Oracle {
namespace {

using Bytes = std::vector<unsigned char>;
using Saml::Xml::Security::DigestContextHandle;
using Saml::Xml::Security::KeyHandle;

constexpr char kBeforeReason[] = "Signature verification error. ";

[[noreturn]] void Refuse(const std::string& message) {
    throw Refusal{"Saml::InvalidSignatureException", message};
}

[[noreturn]] void RefuseTampering() {
    Refuse(kTampered);
}

void Require(bool done) {
    if (!done) throw std::runtime_error("OpenSSL failed");
}

/// OpenSSL's digest for an identifier; null for an unknown one (xmlenc-core1 5.7, RFC 4051).
const EVP_MD* DigestOf(const std::string& identifier) {
    static const std::map<std::string, const EVP_MD* (*)()> digests = {
        {"http://www.w3.org/2000/09/xmldsig#sha1", EVP_sha1},
        {"http://www.w3.org/2001/04/xmlenc#sha256", EVP_sha256},
        {"http://www.w3.org/2001/04/xmlenc#sha384", EVP_sha384},
        {"http://www.w3.org/2001/04/xmldsig-more#sha384", EVP_sha384},
        {"http://www.w3.org/2001/04/xmlenc#sha512", EVP_sha512},
        {"http://www.w3.org/2000/09/xmldsig#rsa-sha1", EVP_sha1},
        {"http://www.w3.org/2001/04/xmldsig-more#rsa-sha256", EVP_sha256},
        {"http://www.w3.org/2001/04/xmldsig-more#rsa-sha384", EVP_sha384},
        {"http://www.w3.org/2001/04/xmldsig-more#rsa-sha512", EVP_sha512}};
    const auto found = digests.find(identifier);
    return found == digests.end() ? nullptr : found->second();
}

Bytes Digested(const EVP_MD* method, const std::string& bytes) {
    Bytes digest(static_cast<std::size_t>(EVP_MD_size(method)));
    Require(EVP_Digest(bytes.data(), bytes.size(), digest.data(), nullptr, method, nullptr) == 1);
    return digest;
}

KeyHandle PrivateKey(const Saml::TestKeys::Key& key) {
    const unsigned char* der = key.privateKey->data();
    EVP_PKEY* const parsed =
        d2i_AutoPrivateKey(nullptr, &der, static_cast<long>(key.privateKey->size()));
    Require(parsed != nullptr);
    return KeyHandle(parsed);
}

Bytes SignedBytes(const Saml::TestKeys::Key& key, const EVP_MD* method, const std::string& bytes) {
    const KeyHandle pair = PrivateKey(key);
    const DigestContextHandle context(EVP_MD_CTX_new());
    Bytes value(512);
    std::size_t length = value.size();
    Require(EVP_DigestSignInit(context.get(), nullptr, method, nullptr, pair.get()) == 1 &&
            EVP_DigestSign(context.get(), value.data(), &length,
                           reinterpret_cast<const unsigned char*>(bytes.data()),
                           bytes.size()) == 1);
    value.resize(length);
    return value;
}

/// The element children with this local name; of a tree that the grammar accepts.
template <class Node>
std::vector<Node*> ChildrenNamed(Node& element, const std::string& localName) {
    std::vector<Node*> named;
    for (Node& child : element.children)
        if (child.IsElement() && child.LocalName() == localName) named.push_back(&child);
    return named;
}

template <class Node>
Node& ChildNamed(Node& element, const std::string& localName) {
    return *ChildrenNamed(element, localName).at(0);
}

/// What a `Reference` says.
struct ReferenceTerms {
    std::string uri;
    bool enveloped = false;
    std::string canonicalization;
    std::string prefixList;
    std::string digestMethod;
};

ReferenceTerms TermsOf(const Markup& reference) {
    ReferenceTerms terms;
    if (const std::string* const uri = reference.Find("URI")) terms.uri = *uri;
    for (const Markup* const transforms : ChildrenNamed(reference, "Transforms")) {
        for (const Markup* const transform : ChildrenNamed(*transforms, "Transform")) {
            const std::string algorithm = *transform->Find("Algorithm");
            if (algorithm == Grammar::kEnvelopedSignature) {
                terms.enveloped = true;
                continue;
            }
            terms.canonicalization = algorithm;
            const std::vector<const Markup*> parameters = Visible(*transform);
            if (parameters.empty() || parameters[0]->LocalName() != "InclusiveNamespaces") continue;
            std::string uri;  // the parameter declares its prefix itself in these trees
            Resolve(ScopeIn({}, *parameters[0]), parameters[0]->Prefix(), uri);
            if (uri == Grammar::kExclusiveC14N)
                terms.prefixList = *parameters[0]->Find("PrefixList");
        }
    }
    terms.digestMethod = *ChildNamed(reference, "DigestMethod").Find("Algorithm");
    return terms;
}

bool IsIdentified(const Markup& element, const std::string& id) {
    for (const Attribute& attribute : element.attributes) {
        const std::string name = LocalNameOf(attribute.name);
        if ((name == "id" || name == "Id" || name == "ID") && attribute.value == id) return true;
    }
    return false;
}

struct Referent {
    const Markup* element;
    Scope outer;
};

void FindIdentified(const Markup& element, const Scope& outer, const std::string& id,
                    std::vector<Referent>& found) {
    if (IsIdentified(element, id)) found.push_back({&element, outer});
    const Scope scope = ScopeIn(outer, element);
    for (const Markup& child : element.children)
        if (child.IsElement()) FindIdentified(child, scope, id, found);
}

Referent ReferentOf(const Markup& assertion, const std::string& uri) {
    if (uri.empty()) return {&assertion, {}};
    std::vector<Referent> found;
    if (uri[0] == '#') FindIdentified(assertion, {}, uri.substr(1), found);
    if (found.empty()) Refuse(kBeforeReason + ("The URI could not be resolved: " + uri));
    if (found.size() > 1) Refuse(kBeforeReason + ("Duplicate URI found: " + uri.substr(1)));
    return found[0];
}

Bytes DigestOfReferent(const Markup& assertion, const Markup& signature, const Markup& reference) {
    const ReferenceTerms terms = TermsOf(reference);
    const Referent referent = ReferentOf(assertion, terms.uri);
    if (terms.canonicalization != Grammar::kExclusiveC14N)
        Refuse(kBeforeReason +
               ("The following canonicalization method is unsupported: " + terms.canonicalization));
    const EVP_MD* const method = DigestOf(terms.digestMethod);
    if (method == nullptr || terms.digestMethod.find("#rsa-") != std::string::npos)
        Refuse(kBeforeReason +
               ("The following hash algorithm is unsupported: " + terms.digestMethod));
    return Digested(method,
                    ExclusiveForm(*referent.element, referent.outer,
                                  terms.enveloped ? &signature : nullptr, terms.prefixList));
}

/// In the order of xmldsig-core 3.2.1: every reference is checked, then they are judged together.
void ExpectDigests(const Markup& assertion, const Markup& signature) {
    bool all = true;
    for (const Markup* const reference :
         ChildrenNamed(ChildNamed(signature, "SignedInfo"), "Reference")) {
        const Bytes digest = DigestOfReferent(assertion, signature, *reference);
        const auto sent = FromBase64(TextIn(ChildNamed(*reference, "DigestValue")));
        all = all && sent == digest;
    }
    if (!all) RefuseTampering();
}

/// The first certificate sent that is one; null when there is none.
const Saml::TestKeys::Certificate* FirstSent(const Markup& assertion, const Markup& signature,
                                             const Trust& trust) {
    for (const Markup* const keyInfo : ChildrenNamed(signature, "KeyInfo")) {
        const Scope outer = ScopeIn(ScopeIn(ScopeIn({}, assertion), signature), *keyInfo);
        for (const Markup* const data : ChildrenNamed(*keyInfo, "X509Data"))
            for (const Markup* const certificate : ChildrenNamed(*data, "X509Certificate")) {
                std::string uri;  // X509Data may hold anything else, too
                Resolve(ScopeIn(ScopeIn(outer, *data), *certificate), certificate->Prefix(), uri);
                if (uri != Grammar::kSignatureNamespace) continue;
                const auto bytes = FromBase64(TextIn(*certificate));
                for (const Saml::TestKeys::Certificate* const known : trust.known)
                    if (bytes == *known->der) return known;
            }
    }
    return nullptr;
}

void ExpectTrust(const Markup& assertion, const Markup& signature, const Trust& trust) {
    const Saml::TestKeys::Certificate* const sent = FirstSent(assertion, signature, trust);
    if (sent != nullptr && sent != trust.trusted)
        Refuse(kBeforeReason + std::string("No verification key available."));
}

std::string CanonicalSignedInfo(const Markup& assertion, const Markup& signature) {
    return ExclusiveForm(ChildNamed(signature, "SignedInfo"),
                         ScopeIn(ScopeIn({}, assertion), signature), nullptr, {});
}

std::string MethodOf(const Markup& signature, const std::string& localName) {
    return *ChildNamed(ChildNamed(signature, "SignedInfo"), localName).Find("Algorithm");
}

bool Verifies(const Saml::TestKeys::Key& key, const EVP_MD* method, const Bytes& value,
              const std::string& bytes) {
    const KeyHandle pair = PrivateKey(key);
    const DigestContextHandle context(EVP_MD_CTX_new());
    Require(EVP_DigestVerifyInit(context.get(), nullptr, method, nullptr, pair.get()) == 1);
    return EVP_DigestVerify(context.get(), value.data(), value.size(),
                            reinterpret_cast<const unsigned char*>(bytes.data()),
                            bytes.size()) == 1;
}

/// Puts the characters of `value` into the places of those that stand there.
void Overwrite(Markup& element, const std::string& value) {
    std::vector<char*> places;
    for (Markup& child : element.children)
        if (child.kind == MarkupKind::Text)
            for (char& c : child.text)
                if (!IsBlank(std::string(1, c))) places.push_back(&c);
    if (places.size() != value.size()) return;
    for (std::size_t i = 0; i < value.size(); ++i)
        *places[i] = value[i];
}

}  // namespace

void SignAfresh(Markup& document, const Saml::TestKeys::Key& key) {
    Markup& assertion = ChildNamed(document, "Assertion");
    Markup& signature = ChildNamed(assertion, "Signature");
    for (Markup* const reference : ChildrenNamed(ChildNamed(signature, "SignedInfo"), "Reference"))
        Overwrite(ChildNamed(*reference, "DigestValue"),
                  ToBase64(DigestOfReferent(assertion, signature, *reference)));
    const EVP_MD* const method = DigestOf(MethodOf(signature, "SignatureMethod"));
    if (method == nullptr) return;
    Overwrite(ChildNamed(signature, "SignatureValue"),
              ToBase64(SignedBytes(key, method, CanonicalSignedInfo(assertion, signature))));
}

void ExpectSignature(const Markup& assertion, const Trust& trust) {
    const Markup& signature = ChildNamed(assertion, "Signature");
    ExpectDigests(assertion, signature);
    ExpectTrust(assertion, signature, trust);
    const auto value = FromBase64(TextIn(ChildNamed(signature, "SignatureValue")));
    if (!value) RefuseTampering();
    const std::string canonicalization = MethodOf(signature, "CanonicalizationMethod");
    if (canonicalization != Grammar::kExclusiveC14N)
        Refuse(kBeforeReason +
               ("The following canonicalization method is unsupported: " + canonicalization));
    const std::string identifier = MethodOf(signature, "SignatureMethod");
    const EVP_MD* const method = DigestOf(identifier);
    if (method == nullptr || identifier.find("#rsa-") == std::string::npos)
        Refuse(kBeforeReason + ("The signature algorithm is not supported: " + identifier));
    if (!Verifies(*trust.trusted->key, method, *value, CanonicalSignedInfo(assertion, signature)))
        RefuseTampering();
}

}  // namespace Oracle
