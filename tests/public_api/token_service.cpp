#include "token_service.h"

#include <array>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <iterator>
#include <stdexcept>

using namespace Saml;
using namespace Saml::Xml;
using namespace Saml::Xml::Security;

namespace {

#if defined(_WIN32)
constexpr char kNowhere[] = "NUL";
#else
constexpr char kNowhere[] = "/dev/null";
#endif

std::string OutputOf(const std::string& command) {
    std::FILE* const pipe = popen(command.c_str(), "r");
    if (!pipe) throw std::runtime_error("cannot run: " + command);
    std::string output;
    std::array<char, 4096> buffer{};
    while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe))
        output.append(buffer.data(), count);
    if (pclose(pipe) != 0) throw std::runtime_error("failed: " + command);
    return output;
}

std::string AssertionTemplate() {
    std::ifstream file(ASSERTION_TEMPLATE, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void ReplaceAll(std::string& text, const std::string& what, const std::string& by) {
    if (what.empty()) return;
    if (text.find(what) == std::string::npos) throw std::runtime_error("not there: " + what);
    for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size())
        text.replace(at, what.size(), by);
}

std::string Instant(std::int64_t seconds) {
    DateTime instant;
    if (!DateTime::Create(seconds, instant)) throw std::runtime_error("no such instant");
    return instant.value();
}

/// An assertion to be signed, valid for an hour from now.
std::string Assertion(const std::string& change, const std::string& by) {
    std::string xml = AssertionTemplate();
    const std::int64_t now = std::time(nullptr);
    ReplaceAll(xml, "@ID@", "_token");
    ReplaceAll(xml, "@ISSUED@", Instant(now));
    ReplaceAll(xml, "@EXPIRES@", Instant(now + 3600));
    ReplaceAll(xml, change, by);
    return xml;
}

std::string Canonical(ElementNode* element) {
    boost::intrusive_ptr<Canonicalizer> canonicalizer;
    CreateCanonicalizer(Algorithm::InclusiveC14N, canonicalizer);
    StringWriter out;
    canonicalizer->Canonicalize(element, out);
    return out.data;
}

}  // namespace

boost::intrusive_ptr<Document> ParseDocument(const std::string& xml) {
    const boost::intrusive_ptr<XMLHandler> handler(CreateXMLDocumentHandler(100000, 1000, 100));
    const boost::intrusive_ptr<XMLParser> parser(CreateXMLParser(handler.get()));
    boost::intrusive_ptr<Node> document;
    parser->Parse(xml, true, document);
    return dynamic_cast<Document*>(document.get());
}

TokenService::TokenService(int bits) {
    const std::string pem = OutputOf("openssl req -x509 -newkey rsa:" + std::to_string(bits) +
                                     " -nodes -keyout - -days 2 "
                                     "-subj \"/CN=Token service\" 2>" +
                                     kNowhere);
    certificatePem_ = pem.substr(pem.find("-----BEGIN CERTIFICATE"));
    CertificatePEMToBlob(certificatePem_, certificate_);
    PrivateKeyPEMToBlob(pem, privateKey_);
}

std::string TokenService::Issue(const std::string& change, const std::string& by) const {
    return Sign(Assertion(change, by), {});
}

std::string TokenService::Issue(const SigningMethods& methods) const {
    return Sign(Assertion("", ""), methods);
}

std::string TokenService::Sign(const std::string& xml, const SigningMethods& methods) const {
    const boost::intrusive_ptr<Document> document = ParseDocument(xml);
    ElementNode* const assertion = document->GetRootElement();
    ElementNode* const placeholder = assertion->GetFirstChildElement("Signature");

    boost::intrusive_ptr<Signature> signature;
    CreateBlankSignature(assertion, Algorithm::ExclusiveC14N, methods.signature, "ds", signature);
    assertion->InsertBefore(signature->GetElement(), placeholder);
    assertion->RemoveChild(placeholder);

    boost::intrusive_ptr<SignatureReference> reference;
    signature->AddReference("#_token", methods.digest, reference);
    reference->AddEnvelopedSignatureTransform();
    reference->SetCanonicalizationMethod(Algorithm::ExclusiveC14N);
    if (methods.sendsCertificate) signature->SetKeyInfo({certificate_});
    signature->Sign(privateKey_);
    return Canonical(assertion);
}
