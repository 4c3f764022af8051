#include "support/hand_signed.h"

namespace Saml::Xml::Security::HandSigned {
namespace {

std::string Quoted(const std::string& path) {
    return '"' + path + '"';
}

std::string Stored(const std::string& name, const std::string& bytes) {
    const std::string path = TestKeys::PathOf(name);
    TestKeys::WriteFile(path, bytes);
    return Quoted(path);
}

std::string Base64Of(const std::string& bytes) {
    return TestKeys::OpenSsl("base64 -A -in " + Stored("to-base64", bytes));
}

std::string Transform(const char* algorithm, const std::string& content = {}) {
    return std::string("<ds:Transform Algorithm=\"") + algorithm + "\">" + content +
           "</ds:Transform>";
}

std::string InclusiveNamespaces(const std::string& prefixList) {
    if (prefixList.empty()) return {};
    return "<c:InclusiveNamespaces xmlns:c=\"http://www.w3.org/2001/10/xml-exc-c14n#\" "
           "PrefixList=\"" +
           prefixList + "\"></c:InclusiveNamespaces>";
}

std::string Method(const std::string& localName, const std::string& algorithm) {
    return "<ds:" + localName + " Algorithm=\"" + algorithm + "\"></ds:" + localName + ">";
}

}  // namespace

std::string DigestValue(const std::string& digestName, const std::string& bytes) {
    return Base64Of(
        TestKeys::OpenSsl("dgst -binary -" + digestName + " " + Stored("to-digest", bytes)));
}

std::string SignatureValue(const std::string& digestName, const TestKeys::Key& key,
                           const std::string& bytes) {
    return Base64Of(TestKeys::OpenSsl("dgst -" + digestName + " -sign " + Quoted(key.pemPath) +
                                      " " + Stored("to-sign", bytes)));
}

std::string Reference(const ReferenceForm& form) {
    return "<ds:Reference URI=\"" + form.uri + "\"><ds:Transforms>" +
           (form.enveloped ? Transform("http://www.w3.org/2000/09/xmldsig#enveloped-signature")
                           : std::string()) +
           Transform(Algorithm::ExclusiveC14N, InclusiveNamespaces(form.prefixList)) +
           "</ds:Transforms>" + Method("DigestMethod", form.digestMethod) + "<ds:DigestValue>" +
           DigestValue(form.digestName, form.canonicalReferent) +
           "</ds:DigestValue></ds:Reference>";
}

std::string SignedInfo(const std::string& references, const std::string& signatureMethod,
                       const std::string& canonicalizationMethod) {
    return "<ds:SignedInfo xmlns:ds=\"http://www.w3.org/2000/09/xmldsig#\">" +
           Method("CanonicalizationMethod", canonicalizationMethod) +
           Method("SignatureMethod", signatureMethod) + references + "</ds:SignedInfo>";
}

std::string SignatureElement(const std::string& signedInfo, const std::string& signatureValue,
                             const std::string& keyInfo) {
    return "<ds:Signature xmlns:ds=\"http://www.w3.org/2000/09/xmldsig#\">" + signedInfo +
           "<ds:SignatureValue>" + signatureValue + "</ds:SignatureValue>" + keyInfo +
           "</ds:Signature>";
}

const TestKeys::Key& UsualKey() {
    return TestKeys::KeyNamed("root");
}

std::string Signed(const std::string& references, const std::string& keyInfo) {
    const std::string signedInfo = SignedInfo(references);
    return SignatureElement(signedInfo, SignatureValue("sha256", UsualKey(), signedInfo), keyInfo);
}

}  // namespace Saml::Xml::Security::HandSigned
