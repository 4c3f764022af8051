#include "support/documents.h"
#include "support/laws.h"
#include "support/signature_oracle.h"
#include "support/signing_key.h"

#include <optional>

// A signature that verifies is one for libxml2 and OpenSSL, too; verifying changes nothing and says
// the same again.

namespace {

using namespace Saml::Xml;
using namespace Saml::Xml::Security;

const std::string kRequired = "#_1";  // the ID in most of the seeds

std::string Written(Document& document) {
    Saml::StringWriter out;
    document.GetRootElement()->Write(out);
    return out.data;
}

/// Nothing when the signature cannot be verified at all.
std::optional<bool> Verdict(Signature& signature, const std::set<std::string>& required) {
    try {
        return signature.Verify(&Fuzz::TrustingTheSigner(), required);
    } catch (const XmlSecurityException&) {
        return std::nullopt;
    }
}

}  // namespace

void Fuzz::CheckLaws(std::string_view input) {
    const DocumentPtr document = Parsed(input);
    if (!document) return;
    const std::string before = Written(*document);
    const auto signature = FirstSignature(*document);
    Require(Written(*document) == before, "reading a signature changes no document");
    if (!signature) return;
    const std::optional<bool> verdict = Verdict(*signature, {});
    Require(Verdict(*signature, {}) == verdict, "a signature verifies again as it did");
    Require(Written(*document) == before, "verifying changes no document");
    if (Verdict(*signature, {kRequired}) == true)
        Require(verdict == true, "to require a part never makes a signature hold");
    if (verdict == true) RequireThatOthersVerify(std::string(input), *document, *signature);
}
