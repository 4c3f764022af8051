#pragma once

#include <saml/token.h>

#include <string>

/// Issues tokens as an identity provider would, with a key of its own and nothing but the public
/// interface: examples/data/assertion.xml.in filled, changed, signed and written.
class TokenService {
  public:
    /// Makes a key and a self-signed certificate with the openssl command line.
    TokenService();

    /// A token that is valid for an hour from now. `change` is replaced by `by` before it is
    /// signed; the empty text changes nothing.
    std::string Issue(const std::string& change = "", const std::string& by = "") const;

    const std::string& certificatePem() const { return certificatePem_; }
    const Saml::ByteBlob& certificate() const { return certificate_; }
    const Saml::ByteBlob& privateKey() const { return privateKey_; }

  private:
    std::string certificatePem_;
    Saml::ByteBlob certificate_;
    Saml::ByteBlob privateKey_;
};

/// Parses a text into a document.
boost::intrusive_ptr<Saml::Xml::Document> ParseDocument(const std::string& xml);
