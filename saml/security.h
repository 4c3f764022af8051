/// \file
/// XML signatures (W3C xmldsig-core): canonicalization, signatures, key information, the two
/// trust-store key resolvers, and conversions of keys and certificates.
///
/// OpenSSL's error queue is neither read nor cleared by anything declared here.
#pragma once

#include "saml/foundations.h"
#include "saml/xml.h"

#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <boost/smart_ptr/intrusive_ref_counter.hpp>

#include <list>
#include <set>
#include <string>

namespace Saml::Xml::Security {

/// The identifiers that a caller hands to the functions below (xmldsig-core 6, xmlenc-core 5.7,
/// RFC 4051).
namespace Algorithm {
/// Canonical XML 1.0 without comments. The trailing number sign is required; only
/// `CreateCanonicalizer` knows this form, signatures do not.
constexpr char InclusiveC14N[] = "http://www.w3.org/TR/2001/REC-xml-c14n-20010315#";
/// Exclusive XML Canonicalization 1.0 without comments; the only form that signatures may use.
constexpr char ExclusiveC14N[] = "http://www.w3.org/2001/10/xml-exc-c14n#";

/// SHA-1; accepted since old signatures need it. A resolver of your own can refuse it.
constexpr char Sha1[] = "http://www.w3.org/2000/09/xmldsig#sha1";
/// SHA-256 (xmlenc-core).
constexpr char Sha256[] = "http://www.w3.org/2001/04/xmlenc#sha256";
/// SHA-384, in a spelling of the same family as its neighbours.
constexpr char Sha384[] = "http://www.w3.org/2001/04/xmlenc#sha384";
/// SHA-512 (xmlenc-core).
constexpr char Sha512[] = "http://www.w3.org/2001/04/xmlenc#sha512";
/// SHA-384 as RFC 4051 names it; the spelling that other signers use.
constexpr char Sha384Rfc4051[] = "http://www.w3.org/2001/04/xmldsig-more#sha384";

/// RSA with PKCS #1 v1.5 padding (RFC 8017, section 8.2) and SHA-1.
constexpr char RsaSha1[] = "http://www.w3.org/2000/09/xmldsig#rsa-sha1";
/// The same with SHA-256 (RFC 4051); the one to choose.
constexpr char RsaSha256[] = "http://www.w3.org/2001/04/xmldsig-more#rsa-sha256";
/// The same with SHA-384.
constexpr char RsaSha384[] = "http://www.w3.org/2001/04/xmldsig-more#rsa-sha384";
/// The same with SHA-512.
constexpr char RsaSha512[] = "http://www.w3.org/2001/04/xmldsig-more#rsa-sha512";
}  // namespace Algorithm

/// Writes the canonical form of a subtree: the bytes that are digested and signed.
///
/// Deliberately narrower than the W3C recommendations, since existing signatures depend on these
/// bytes: CDATA sections contribute nothing, processing instructions and comments neither, `xml:`
/// attributes of ancestors are not inherited, `>` is escaped in attribute values, too.
/// Threads: no mutable state; one object serves any number of threads at once.
class SAMLTOKEN_API Canonicalizer
    : public boost::intrusive_ref_counter<Canonicalizer, boost::thread_safe_counter> {
  public:
    virtual ~Canonicalizer();

    /// Writes the canonical form of the element `node`, which may stand inside a larger tree: the
    /// namespace declarations of its ancestors count.
    /// \throws TypeMismatchException  `node` is no element of the library's own classes.
    /// \throws XmlSecurityException   Repeated namespace declarations would be more than 8 MiB
    ///                                and more than a hundred times what was met in the tree.
    /// What `out` throws passes unchanged; what was written stays written.
    virtual void Canonicalize(Node* node, Writer& out) = 0;

    Canonicalizer(const Canonicalizer&) = delete;
    Canonicalizer& operator=(const Canonicalizer&) = delete;

  protected:
    Canonicalizer();
};

/// Makes the canonicalizer named by `uri`, `Algorithm::InclusiveC14N` or
/// `Algorithm::ExclusiveC14N`.
///
/// \param result  Replaced on success, unchanged on failure.
/// \throws UnsupportedCanonicalizationException  Any other identifier; compared exactly.
SAMLTOKEN_API void CreateCanonicalizer(const std::string& uri,
                                       boost::intrusive_ptr<Canonicalizer>& result);

/// One `Reference` of a signature (xmldsig-core 4.4.3): which part of the document is signed, how
/// it is transformed and what its digest is. Threads: used by one thread at a time, together with
/// its signature and its document.
class SAMLTOKEN_API SignatureReference
    : public boost::intrusive_ref_counter<SignatureReference, boost::thread_safe_counter> {
  public:
    virtual ~SignatureReference();

    /// The `Reference` element; borrowed, alive as long as this object.
    virtual ElementNode* GetElement() = 0;
    /// The `URI` attribute; empty without one.
    virtual const std::string& GetURI() = 0;
    /// The referenced element: the root for an empty URI, the one element below (or at) the root
    /// whose `id`, `Id` or `ID` attribute, whatever its prefix, equals the URI without its "#".
    /// \throws MissingReferentException  There is none, or the URI has another form.
    /// \throws DuplicateURIException     There are several.
    virtual ElementNode* GetReferent() = 0;
    /// The identifier as it is written; not checked until a digest is made.
    virtual const std::string& GetDigestMethod() = 0;
    /// Empty when the reference has no canonicalization transform.
    virtual const std::string& GetCanonicalizationMethod() = 0;
    /// True when the enclosing signature is left out of the digest input.
    virtual bool IsEnveloped() = 0;
    /// Adds the enveloped-signature transform as the first one, unless it is there already.
    virtual void AddEnvelopedSignatureTransform() = 0;
    /// Adds the canonicalization transform as the last one, or changes the one that is there. The
    /// identifier is not validated before the digest is made.
    virtual void SetCanonicalizationMethod(const std::string& algorithm) = 0;
    /// True when `DigestValue` is the referent's digest; false also when it is no Base64.
    /// \throws MissingReferentException, DuplicateURIException  As `GetReferent`.
    /// \throws UnsupportedCanonicalizationException  No transform names exclusive canonicalization.
    /// \throws UnsupportedHashAlgorithmException     The digest method is unknown.
    /// \throws CryptoException                       OpenSSL failed.
    virtual bool VerifyDigest() = 0;
    /// Computes the referent's digest and stores it in `DigestValue`; nothing changes on failure.
    /// \throws As `VerifyDigest`.
    virtual void UpdateDigest() = 0;

    SignatureReference(const SignatureReference&) = delete;
    SignatureReference& operator=(const SignatureReference&) = delete;

  protected:
    SignatureReference();
};

/// What a signature's `KeyInfo` element says about the signing key (xmldsig-core 4.5).
class SAMLTOKEN_API KeyInfo
    : public boost::intrusive_ref_counter<KeyInfo, boost::thread_safe_counter> {
  public:
    virtual ~KeyInfo();

    /// True for certificates, false for content of the caller's own.
    virtual bool IsX509() = 0;
    /// Gives the `KeyInfo` element, or the caller's own content element.
    virtual void GetElement(boost::intrusive_ptr<ElementNode>& out) = 0;

    KeyInfo(const KeyInfo&) = delete;
    KeyInfo& operator=(const KeyInfo&) = delete;

  protected:
    KeyInfo();
};

/// Decides which public keys may verify a signature: the place where trust is. Callers may derive
/// their own.
/// Threads: the library's resolvers are read-only after construction; one object may serve any
/// number of threads that verify different signatures.
class SAMLTOKEN_API KeyInfoResolver
    : public boost::intrusive_ref_counter<KeyInfoResolver, boost::thread_safe_counter> {
  public:
    virtual ~KeyInfoResolver();

    /// Replaces `keys` by the public keys to try, in order of preference, each DER as
    /// `ExtractCertPubKey` gives it. No key is the answer for a signer that is not trusted.
    /// \param keyInfo  Null when the signature has no `KeyInfo`. Borrowed for the call. Neither it
    ///                 nor the document around its element may be changed, here or by another
    ///                 thread, before the verification or the making of the token that asked has
    ///                 returned: digests were compared by now, and the document is read again.
    /// \throws Whatever an implementation likes; it passes through `Signature::Verify` unchanged.
    ///         The library's resolvers throw for failures of OpenSSL and of memory only.
    virtual void Resolve(KeyInfo* keyInfo, std::list<ByteBlob>& keys) = 0;

    KeyInfoResolver(const KeyInfoResolver&) = delete;
    KeyInfoResolver& operator=(const KeyInfoResolver&) = delete;

  protected:
    KeyInfoResolver();
};

/// Accepts a signing certificate from which a chain of the sent certificates leads to a trusted
/// one.
///
/// A trusted certificate is an anchor whether it is self-signed or not, an intermediate or the
/// signer itself. Validity periods are checked at the present time, every signature on the path is
/// checked, revocation is not. The first certificate sent is the signer; of the others, only
/// certificate authorities are used. When no certificate that can be read was sent and exactly one
/// is trusted, its key is offered without any check of its validity period.
///
/// \param trustedCertificates  DER certificates; duplicates are accepted.
/// \param result               Replaced on success, unchanged on failure.
/// \throws InvalidArgumentException  The list is empty ("No trusted certificates provided") or an
///                                   entry is no certificate ("Invalid X.509 Certificate").
/// \throws CryptoException, InternalErrorException  OpenSSL failed to build its store.
SAMLTOKEN_API void CreateTrustChainKeyResolver(const std::list<ByteBlob>& trustedCertificates,
                                               boost::intrusive_ptr<KeyInfoResolver>& result);

/// Accepts a signing certificate that is itself one of the trusted certificates and is within its
/// validity period. No chain is built. The first certificate sent that can be parsed is the signer.
/// When none was sent and exactly one is trusted and within its validity period, its key is
/// offered.
///
/// \param trustedCertificates  DER certificates.
/// \param result               Replaced on success, unchanged on failure.
/// \throws InvalidArgumentException  As `CreateTrustChainKeyResolver`.
SAMLTOKEN_API void CreateTrustSetKeyResolver(const std::list<ByteBlob>& trustedCertificates,
                                             boost::intrusive_ptr<KeyInfoResolver>& result);

/// One `Signature` element (xmldsig-core 4), read from a document to be verified or built to be
/// signed. It keeps its nodes alive; the document stays the caller's.
/// Threads: used by one thread at a time, together with its references and its document.
class SAMLTOKEN_API Signature
    : public boost::intrusive_ref_counter<Signature, boost::thread_safe_counter> {
  public:
    virtual ~Signature();

    /// The `Signature` element; borrowed, alive as long as this object.
    virtual ElementNode* GetElement() = 0;
    /// That of `SignedInfo`, as it is written.
    virtual const std::string& GetCanonicalizationMethod() = 0;
    /// The identifier as it is written.
    virtual const std::string& GetSignatureMethod() = 0;
    /// Replaces `out` by the references in document order.
    virtual void GetReferences(std::list<boost::intrusive_ptr<SignatureReference>>& out) = 0;

    /// Reference validation, then signature validation (xmldsig-core 3.2): all digests first, then
    /// the resolver's keys in turn until one verifies the signature value.
    ///
    /// \param resolver      Whom to trust; borrowed for the call, not null. Not asked when a digest
    ///                      or a required URI fails.
    /// \param requiredURIs  Each must name an element that lies inside some reference's referent.
    /// \return False when a digest differs, a required URI is not covered, the signature value is
    ///         empty or no Base64, or no key verifies it.
    /// \throws MissingReferentException, DuplicateURIException  A reference's or required URI.
    /// \throws UnsupportedCanonicalizationException, UnsupportedHashAlgorithmException,
    ///         UnsupportedSignAlgorithmException  An identifier is not supported.
    /// \throws SignatureVerificationException  The resolver offers no key ("No verification key
    ///         available."), or OpenSSL refused a key or failed; the keys after it are not tried.
    /// \throws CryptoException           OpenSSL failed while digesting.
    /// \throws InvalidArgumentException  `resolver` is null.
    virtual bool Verify(KeyInfoResolver* resolver, const std::set<std::string>& requiredURIs) = 0;

    /// Computes every digest and the signature value; may be repeated.
    /// \param privateKey  DER of an RSA private key, as `PrivateKeyPEMToBlob` gives it.
    /// \throws As `SignatureReference::UpdateDigest`; UnsupportedSignAlgorithmException.
    /// \throws SignatureGenerationException  OpenSSL refused the key or failed.
    virtual void Sign(ByteBlob privateKey) = 0;

    /// Adds a reference without transforms; the caller adds those it wants, exclusive
    /// canonicalization always among them.
    /// \param uri  "" for the root, or "#" and an identifier.
    /// \param out  Receives the new reference.
    virtual void AddReference(const std::string& uri, const std::string& digestMethod,
                              boost::intrusive_ptr<SignatureReference>& out) = 0;
    /// Replaces the key information by DER certificates, the signer's first.
    virtual void SetKeyInfo(const std::list<ByteBlob>& certificates) = 0;
    /// Puts an element of the caller's own into the key information, in the place of its first
    /// child; the signature gets a `KeyInfo` when it has none.
    /// \throws InvalidArgumentException  `content` is null or cannot stand there; nothing changes.
    /// \throws TypeMismatchException     `content` is not of the library's own classes.
    virtual void SetKeyInfo(ElementNode* content) = 0;

    Signature(const Signature&) = delete;
    Signature& operator=(const Signature&) = delete;

  protected:
    Signature();
};

/// Reads a `Signature` element for verification; the document is not changed.
///
/// \param root              Reference URIs are resolved at and below it; usually what is signed.
/// \param signatureElement  The element to read.
/// \param result            Replaced on success, unchanged on failure.
/// \throws SignatureSyntaxException  The structure is not the accepted one: `SignedInfo` with at
///                                   least one `Reference`, `SignatureValue`, optional `KeyInfo`
///                                   with at most one `X509Data`.
/// \throws InvalidArgumentException  `root` is null.
/// \throws TypeMismatchException     An element is not of the library's own classes.
SAMLTOKEN_API void CreateSignatureFromDom(ElementNode* root, ElementNode* signatureElement,
                                          boost::intrusive_ptr<Signature>& result);

/// Builds an unsigned signature whose element stands nowhere yet: insert `GetElement()`, add
/// references with their transforms, set key information if wanted, then sign.
///
/// \param root                    Reference URIs are resolved at and below it.
/// \param canonicalizationMethod  For `SignedInfo`; not validated before signing.
/// \param signatureMethod         Not validated before signing.
/// \param namespacePrefix         Of every element created; empty for a default namespace.
/// \param result                  Replaced on success, unchanged on failure.
/// \throws InvalidArgumentException  `root` is null.
/// \throws TypeMismatchException     `root` is not of the library's own classes.
SAMLTOKEN_API void CreateBlankSignature(ElementNode* root,
                                        const std::string& canonicalizationMethod,
                                        const std::string& signatureMethod,
                                        const std::string& namespacePrefix,
                                        boost::intrusive_ptr<Signature>& result);

/// The DER of the first certificate in a PEM text.
/// \param result  Replaced on success, unchanged on failure; so for the next two.
/// \throws InvalidArgumentException  "Wrong or unsupported X.509 Certificate format"
/// \throws CryptoException           The same text, when the certificate cannot be encoded.
SAMLTOKEN_API void CertificatePEMToBlob(const std::string& pem, ByteBlob& result);

/// The DER of a private key in PEM (for RSA PKCS #1). Never prompts: an encrypted key is refused.
/// \throws CryptoException  "Invalid or unsupported private key"
SAMLTOKEN_API void PrivateKeyPEMToBlob(const std::string& pem, ByteBlob& result);

/// The DER (PKCS #1) of an RSA public key in PEM with the label "PUBLIC KEY".
/// \throws CryptoException  "Invalid or unsupported public key"
SAMLTOKEN_API void PublicKeyPEMToBlob(const std::string& pem, ByteBlob& result);

/// The DER of the public key (for RSA PKCS #1) of a DER certificate.
/// \throws InvalidArgumentException  "Invalid X.509 Certificate" when it cannot be parsed, "Invalid
///                                   x509 certificate" when its key cannot be decoded.
/// \throws CryptoException           "Invalid or unsupported public key"
SAMLTOKEN_API ByteBlob ExtractCertPubKey(const ByteBlob& certificate);

/// The public key, as PEM with the label "PUBLIC KEY", of a certificate given as the Base64 of its
/// DER; empty when the key cannot be written.
/// \throws InvalidArgumentException  "Invalid X.509 Certificate"
SAMLTOKEN_API std::string ExtractX509PublicKeyFromCertificateBase64(const std::string& base64);

}  // namespace Saml::Xml::Security
