#pragma once

#include <saml/token.h>

#include <string>

/// How a token is signed.
struct SigningMethods {
    std::string signature = Saml::Xml::Security::Algorithm::RsaSha256;
    std::string digest = Saml::Xml::Security::Algorithm::Sha256;
    bool sendsCertificate = true;
};

/// Issues tokens as an identity provider would, with a key of its own and nothing but the public
/// interface: examples/data/assertion.xml.in filled, changed, signed and written.
class TokenService {
  public:
    /// Makes an RSA key and a self-signed certificate with the openssl command line.
    explicit TokenService(int bits = 2048);

    /// A token that is valid for an hour from now. `change` is replaced by `by` before it is
    /// signed; the empty text changes nothing.
    std::string Issue(const std::string& change = "", const std::string& by = "") const;
    std::string Issue(const SigningMethods& methods) const;

    const std::string& certificatePem() const { return certificatePem_; }
    const Saml::ByteBlob& certificate() const { return certificate_; }
    const Saml::ByteBlob& privateKey() const { return privateKey_; }

  private:
    std::string Sign(const std::string& assertion, const SigningMethods& methods) const;

    std::string certificatePem_;
    Saml::ByteBlob certificate_;
    Saml::ByteBlob privateKey_;
};

/// Parses a text into a document.
boost::intrusive_ptr<Saml::Xml::Document> ParseDocument(const std::string& xml);
