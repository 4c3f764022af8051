#include "oracle/signatures/xmlsec1.h"

#include "support/test_keys.h"

#include <cstdlib>
#include <stdexcept>
#include <sys/wait.h>

namespace XmlSec1 {
namespace {

using Saml::TestKeys::CertificateNamed;
using Saml::TestKeys::PathOf;
using Saml::TestKeys::ReadFile;
using Saml::TestKeys::WriteFile;

constexpr char kIdentifiers[] = " --id-attr:ID urn:oasis:names:tc:SAML:2.0:assertion:Assertion ";

/// What `std::system` gives for the program; what it said stands in the file xmlsec1.log. It trusts
/// nobody beside those whom the arguments name: there are no authorities of the system's for it.
int StatusOf(const std::string& arguments) {
    const std::string none = PathOf("none");
    const std::string command = "SSL_CERT_FILE=" + none + " SSL_CERT_DIR=" + none + " " +
                                SAMLTOKEN_XMLSEC1 + " " + arguments + " >" + PathOf("xmlsec1.log") +
                                " 2>&1";
    return std::system(command.c_str());
}

bool Runs(const std::string& arguments) {
    return StatusOf(arguments) == 0;
}

/// The arguments for verifying `xml`.
std::string Verification(const std::string& xml) {
    WriteFile(PathOf("to-verify.xml"), xml);
    return "--verify" + std::string(kIdentifiers) + "--trusted-pem " +
           CertificateNamed("root").pemPath + " " + PathOf("to-verify.xml");
}

}  // namespace

std::string Template(const TemplateForm& form) {
    const std::string p = form.prefix.empty() ? "" : form.prefix + ":";
    const std::string declaration =
        form.declaresPrefix ? (form.prefix.empty() ? " xmlns" : " xmlns:" + form.prefix) +
                                  std::string("=\"http://www.w3.org/2000/09/xmldsig#\"")
                            : "";
    const std::string exclusive = "http://www.w3.org/2001/10/xml-exc-c14n#";
    const auto element = [&p](const std::string& name, const std::string& algorithm,
                              const std::string& content = {}) {
        return "<" + p + name + " Algorithm=\"" + algorithm + "\">" + content + "</" + p + name +
               ">";
    };
    const auto value = [&p, &form](const std::string& name) {
        return "<" + p + name + ">" + form.value + "</" + p + name + ">";
    };
    const std::string parameter = form.prefixList.empty()
                                      ? ""
                                      : "<ec:InclusiveNamespaces xmlns:ec=\"" + exclusive +
                                            "\" PrefixList=\"" + form.prefixList + "\"/>";
    return "<" + p + "Signature" + declaration + ">\n  <" + p + "SignedInfo>\n    " +
           element("CanonicalizationMethod", exclusive) + "\n    " +
           element("SignatureMethod", form.signatureMethod) + "\n    <" + p + "Reference URI=\"" +
           form.uri + "\"><" + p + "Transforms>" +
           element("Transform", "http://www.w3.org/2000/09/xmldsig#enveloped-signature") +
           element("Transform", exclusive, parameter) + "</" + p + "Transforms>" +
           element("DigestMethod", form.digestMethod) + value("DigestValue") + "</" + p +
           "Reference>\n  </" + p + "SignedInfo>\n  " + value("SignatureValue") +
           (form.hasKeyInfo ? "<" + p + "KeyInfo><" + p + "X509Data/></" + p + "KeyInfo>" : "") +
           "</" + p + "Signature>";
}

std::string Sign(const std::string& xml, const std::string& signer) {
    WriteFile(PathOf("template.xml"), xml);
    const auto& leaf = CertificateNamed(signer);
    const std::string arguments = "--sign" + std::string(kIdentifiers) + "--privkey-pem " +
                                  leaf.key->pemPath + "," + leaf.pemPath + "," +
                                  CertificateNamed("intermediate").pemPath + " --output " +
                                  PathOf("signed.xml") + " " + PathOf("template.xml");
    if (!Runs(arguments)) throw std::runtime_error(ReadFile(PathOf("xmlsec1.log")));
    return ReadFile(PathOf("signed.xml"));
}

bool Verifies(const std::string& xml) {
    if (Runs(Verification(xml))) return true;
    const std::string said = ReadFile(PathOf("xmlsec1.log"));
    // Any other failure would pass for a verdict.
    if (said.find("SignedInfo References (ok/all)") == std::string::npos)
        throw std::runtime_error(said);
    return false;
}

bool Accepts(const std::string& xml) {
    const int status = StatusOf(Verification(xml));
    // Ended by a signal, or not even started, it has given no verdict.
    if (!WIFEXITED(status) || WEXITSTATUS(status) > 1)
        throw std::runtime_error(ReadFile(PathOf("xmlsec1.log")));
    return status == 0;
}

}  // namespace XmlSec1
