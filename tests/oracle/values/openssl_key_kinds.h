#pragma once

#include <string>
#include <vector>

/// Keys and certificates of many kinds, made by the openssl command line with random numbers.
namespace OpenSslKeys {

enum class Family { Rsa, RsaPss, EllipticCurve, Edwards };

struct Kind {
    const char* name;
    Family family;
    const char* generation;  ///< Arguments of `openssl genpkey`.
};

const std::vector<Kind>& Kinds();
/// The kind with this name.
const Kind& KindNamed(const std::string& name);

/// Files of one key.
struct Key {
    std::string path;  ///< PEM, PKCS #8.
    std::string publicPath;
    std::string certificatePath;  ///< Self-signed.
};
/// The key of this kind, made when it is first asked for.
const Key& KeyOf(const Kind& kind);

}  // namespace OpenSslKeys
