#include "oracle/values/openssl_key_kinds.h"

#include "support/test_keys.h"

#include <map>
#include <stdexcept>

namespace OpenSslKeys {
namespace {

using Saml::TestKeys::OpenSsl;
using Saml::TestKeys::PathOf;

Key Create(const Kind& kind) {
    const Key key{PathOf(std::string(kind.name) + ".key"), PathOf(std::string(kind.name) + ".pub"),
                  PathOf(std::string(kind.name) + ".crt")};
    OpenSsl(std::string("genpkey -algorithm ") + kind.generation + " -out " + key.path);
    OpenSsl("pkey -pubout -in " + key.path + " -out " + key.publicPath);
    OpenSsl("req -x509 -new -subj /CN=" + std::string(kind.name) + " -key " + key.path + " -out " +
            key.certificatePath);
    return key;
}

}  // namespace

const std::vector<Kind>& Kinds() {
    constexpr Family kRsa = Family::Rsa;
    static const std::vector<Kind> kinds = {
        {"Rsa512", kRsa, "RSA -pkeyopt rsa_keygen_bits:512"},
        {"Rsa1024With3", kRsa, "RSA -pkeyopt rsa_keygen_bits:1024 -pkeyopt rsa_keygen_pubexp:3"},
        {"Rsa1024With17", kRsa, "RSA -pkeyopt rsa_keygen_bits:1024 -pkeyopt rsa_keygen_pubexp:17"},
        {"Rsa1024With65537", kRsa, "RSA -pkeyopt rsa_keygen_bits:1024"},
        {"Rsa1031With17", kRsa, "RSA -pkeyopt rsa_keygen_bits:1031 -pkeyopt rsa_keygen_pubexp:17"},
        {"Rsa1536With3", kRsa, "RSA -pkeyopt rsa_keygen_bits:1536 -pkeyopt rsa_keygen_pubexp:3"},
        {"Rsa2048With3", kRsa, "RSA -pkeyopt rsa_keygen_bits:2048 -pkeyopt rsa_keygen_pubexp:3"},
        {"Rsa2048With17", kRsa, "RSA -pkeyopt rsa_keygen_bits:2048 -pkeyopt rsa_keygen_pubexp:17"},
        {"Rsa2048With65537", kRsa, "RSA -pkeyopt rsa_keygen_bits:2048"},
        {"Rsa2048WithALongExponent", kRsa,
         "RSA -pkeyopt rsa_keygen_bits:2048 -pkeyopt rsa_keygen_pubexp:1208925819614629174706189"},
        {"Rsa2048OfThreePrimes", kRsa,
         "RSA -pkeyopt rsa_keygen_bits:2048 -pkeyopt rsa_keygen_primes:3"},
        {"Rsa3072With65537", kRsa, "RSA -pkeyopt rsa_keygen_bits:3072"},
        {"Rsa4096With65537", kRsa, "RSA -pkeyopt rsa_keygen_bits:4096"},
        {"RsaPss1024", Family::RsaPss, "RSA-PSS -pkeyopt rsa_keygen_bits:1024"},
        {"EcP224", Family::EllipticCurve, "EC -pkeyopt ec_paramgen_curve:P-224"},
        {"EcP256", Family::EllipticCurve, "EC -pkeyopt ec_paramgen_curve:P-256"},
        {"EcP384", Family::EllipticCurve, "EC -pkeyopt ec_paramgen_curve:P-384"},
        {"EcP521", Family::EllipticCurve, "EC -pkeyopt ec_paramgen_curve:P-521"},
        {"EcSecp256k1", Family::EllipticCurve, "EC -pkeyopt ec_paramgen_curve:secp256k1"},
        {"EcOfExplicitParameters", Family::EllipticCurve,
         "EC -pkeyopt ec_paramgen_curve:P-256 -pkeyopt ec_param_enc:explicit"},
        {"Ed25519", Family::Edwards, "ED25519"},
        {"Ed448", Family::Edwards, "ED448"},
    };
    return kinds;
}

const Kind& KindNamed(const std::string& name) {
    for (const Kind& kind : Kinds())
        if (name == kind.name) return kind;
    throw std::runtime_error("no kind is called " + name);
}

const Key& KeyOf(const Kind& kind) {
    static std::map<std::string, Key> keys;
    const auto found = keys.find(kind.name);
    return found != keys.end() ? found->second
                               : keys.emplace(kind.name, Create(kind)).first->second;
}

}  // namespace OpenSslKeys
