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

TokenService::TokenService() {
    const std::string pem = OutputOf(
        "openssl req -x509 -newkey rsa:2048 -nodes -keyout - -days 2 "
        "-subj '/CN=Token service' 2>/dev/null");
    certificatePem_ = pem.substr(pem.find("-----BEGIN CERTIFICATE"));
    CertificatePEMToBlob(certificatePem_, certificate_);
    PrivateKeyPEMToBlob(pem, privateKey_);
}

std::string TokenService::Issue(const std::string& change, const std::string& by) const {
    std::string xml = AssertionTemplate();
    const std::int64_t now = std::time(nullptr);
    ReplaceAll(xml, "@ID@", "_token");
    ReplaceAll(xml, "@ISSUED@", Instant(now));
    ReplaceAll(xml, "@EXPIRES@", Instant(now + 3600));
    ReplaceAll(xml, change, by);

    const boost::intrusive_ptr<Document> document = ParseDocument(xml);
    ElementNode* const assertion = document->GetRootElement();
    ElementNode* const placeholder = assertion->GetFirstChildElement("Signature");

    boost::intrusive_ptr<Signature> signature;
    CreateBlankSignature(assertion, Algorithm::ExclusiveC14N, Algorithm::RsaSha256, "ds",
                         signature);
    assertion->InsertBefore(signature->GetElement(), placeholder);
    assertion->RemoveChild(placeholder);

    boost::intrusive_ptr<SignatureReference> reference;
    signature->AddReference("#_token", Algorithm::Sha256, reference);
    reference->AddEnvelopedSignatureTransform();
    reference->SetCanonicalizationMethod(Algorithm::ExclusiveC14N);
    signature->SetKeyInfo({certificate_});
    signature->Sign(privateKey_);
    return Canonical(assertion);
}
