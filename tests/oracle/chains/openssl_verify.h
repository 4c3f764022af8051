#pragma once

#include <string>
#include <vector>

/// The `openssl verify` command as judge of certificate chains (RFC 5280 section 6).
namespace OpenSslVerify {

struct Verdict {
    bool accepted;
    std::string said;  ///< What the command wrote.
};

/// Whether a chain leads from `signer` through some of `sent` to one of `trusted`, self-signed or
/// not. All are PEM; nothing that the system trusts counts.
/// \throws std::runtime_error when the command ends without a verdict.
Verdict Judge(const std::string& signer, const std::vector<std::string>& sent,
              const std::vector<std::string>& trusted);

}  // namespace OpenSslVerify
