#pragma once

#include "saml/foundations.h"

#include <string>

/// Keys and certificates for tests. The keys stand in tests/support/keys, so that every run sees
/// the same bytes; certificates are made of them by the openssl command line when they are first
/// asked for and kept until the program ends; then their folder is removed.
///
/// Nothing here comes from the library: what it reads and writes can be compared with this.
/// A step that fails throws `std::runtime_error` with what openssl said. Not for several threads.
namespace Saml::TestKeys {

/// A file in the folder of this program's keys, by its whole path.
std::string PathOf(const std::string& fileName);
/// The bytes of a file.
std::string ReadFile(const std::string& path);
void WriteFile(const std::string& path, const std::string& bytes);
/// Runs `openssl` with these arguments and gives what it writes to its standard output.
std::string OpenSsl(const std::string& arguments);
/// As `OpenSsl`, for text: its lines end with a newline alone on every platform.
std::string OpenSslText(const std::string& arguments);

ByteBlob ToBlob(const std::string& bytes);

/// A key pair. The forms are openssl's own: for RSA PKCS #1, for others the type's traditional form
/// of a private key and no bytes for the public key.
struct Key {
    std::string pemPath;
    std::string pem;        ///< PKCS #8.
    std::string publicPem;  ///< SubjectPublicKeyInfo, "PUBLIC KEY".
    ByteBlob privateKey;    ///< DER, PKCS #1 RSAPrivateKey.
    ByteBlob publicKey;     ///< DER, PKCS #1 RSAPublicKey.
};

/// The key with this name: that of a file in tests/support/keys, whose page tells of each.
const Key& KeyNamed(const std::string& name);

struct Certificate {
    std::string pemPath;
    std::string pem;
    ByteBlob der;
    const Key* key;  ///< The one that the certificate is about.
};

enum class Validity { Current, Expired, NotYetValid };

/// What a certificate shall say.
struct CertificateForm {
    const char* name;     ///< By which tests know it.
    const char* subject;  ///< Its common name.
    const char* key;      ///< Whose public key it holds.
    const char* issuer;   ///< Name of another certificate; null for a self-signed one.
    const char*
        extensions;  ///< Lines of openssl's configuration; null for a version 1 certificate.
    Validity validity = Validity::Current;
    const char* serial = nullptr;  ///< Hexadecimal; null for one made from the name.
};

/// The certificate of the table in test_keys.cpp with this name.
const Certificate& CertificateNamed(const std::string& name);
/// Makes the certificate of a form that stands elsewhere; afterwards others can name it as their
/// issuer. A name that is taken gives what it has.
const Certificate& Issue(const CertificateForm& form);

}  // namespace Saml::TestKeys
