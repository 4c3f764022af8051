#include "oracle/chains/openssl_verify.h"

#include "support/test_keys.h"

#include <cstdlib>
#include <numeric>
#include <stdexcept>

namespace OpenSslVerify {
namespace {

using Saml::TestKeys::PathOf;
using Saml::TestKeys::ReadFile;
using Saml::TestKeys::WriteFile;

/// Writes the certificates into one file and gives the option that names it; no option for none.
std::string Option(const char* name, const std::vector<std::string>& certificates) {
    if (certificates.empty()) return {};
    const std::string path = PathOf(std::string(name) + ".pem");
    WriteFile(path, std::accumulate(certificates.begin(), certificates.end(), std::string()));
    return std::string(" -") + name + " " + path;
}

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

}  // namespace

Verdict Judge(const std::string& signer, const std::vector<std::string>& sent,
              const std::vector<std::string>& trusted) {
    const std::string path = PathOf("signer.pem");
    const std::string log = PathOf("verify.log");
    WriteFile(path, signer);
    const std::string command =
        std::string(SAMLTOKEN_OPENSSL) +
        " verify -partial_chain -trusted_first -no-CAfile -no-CApath -no-CAstore" +
        Option("trusted", trusted) + Option("untrusted", sent) + " " + path;
    const bool endedWell = std::system((command + " >" + log + " 2>&1").c_str()) == 0;

    Verdict verdict{endedWell, ReadFile(log)};
    // Any other failure, such as a file that cannot be read, would pass for a verdict.
    const bool isVerdict = endedWell ? verdict.said == path + ": OK\n"
                                     : Contains(verdict.said, " depth lookup: ") &&
                                           Contains(verdict.said, path + ": verification failed");
    if (!isVerdict) throw std::runtime_error(command + "\n" + verdict.said);
    return verdict;
}

}  // namespace OpenSslVerify
