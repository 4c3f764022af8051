#include "support/token_signing.h"

#include "support/documents.h"
#include "support/signing_key.h"

namespace Fuzz {
namespace {

using namespace Saml::Xml;
using namespace Saml::Xml::Security;

constexpr std::string_view kSignatureStart = "<ds:Signature ";
constexpr std::string_view kSignatureEnd = "</ds:Signature>";
constexpr std::string_view kEndTag = "</";
constexpr std::string_view kIssuerEnd = "Issuer>";

const Saml::ByteBlob& Key() {
    static const Saml::ByteBlob key = PrivateKey();
    return key;
}

std::size_t PlaceForSignature(const std::string& text) {
    const std::size_t issuer = text.find(kIssuerEnd, text.find(kEndTag));
    return issuer != std::string::npos ? issuer + kIssuerEnd.size() : text.rfind(kEndTag);
}

void AddReference(Signature& signature, const std::string& uri, const char* digestMethod) {
    boost::intrusive_ptr<SignatureReference> reference;
    signature.AddReference(uri, digestMethod, reference);
    reference->AddEnvelopedSignatureTransform();
    reference->SetCanonicalizationMethod(Algorithm::ExclusiveC14N);
}

/// The markup of a signature of `root`.
std::string SignatureOf(ElementNode& root, std::uint32_t choices) {
    const bool isWholeDocument = (choices & 1) != 0;
    const bool sendsCertificate = (choices & 2) != 0;
    const bool isSha1 = (choices & 28) == 0;
    const bool hasSecondReference = (choices & 96) == 0;
    const char* const digestMethod = isSha1 ? Algorithm::Sha1 : Algorithm::Sha256;
    boost::intrusive_ptr<Signature> signature;
    CreateBlankSignature(&root, Algorithm::ExclusiveC14N,
                         isSha1 ? Algorithm::RsaSha1 : Algorithm::RsaSha256, "ds", signature);
    root.AppendChild(signature->GetElement());

    std::string id;
    root.GetAttribute("ID", id);
    AddReference(*signature, isWholeDocument ? "" : "#" + id, digestMethod);
    if (hasSecondReference) AddReference(*signature, "#_2", digestMethod);
    if (sendsCertificate) signature->SetKeyInfo({Certificate()});
    signature->Sign(Key());
    Saml::StringWriter out;
    signature->GetElement()->Write(out);
    return out.data;
}

}  // namespace

std::string WithoutSignature(std::string_view text) {
    const std::size_t start = text.find(kSignatureStart);
    const std::size_t end = text.find(kSignatureEnd, start);
    if (start == std::string_view::npos || end == std::string_view::npos) return std::string(text);
    return std::string(text).erase(start, end + kSignatureEnd.size() - start);
}

// The signature is put into the text, not the text written anew: comments, CDATA sections and the
// prolog, which writing loses, stay where they are.
std::optional<std::string> WithSignature(const std::string& text, std::uint32_t choices) {
    const std::size_t place = PlaceForSignature(text);
    if (place == std::string::npos) return std::nullopt;
    const DocumentPtr document = Parsed(text);
    if (!document) return std::nullopt;
    try {
        const std::string signature = SignatureOf(*document->GetRootElement(), choices);
        return std::string(text).insert(place, signature);
    } catch (const XmlSecurityException&) {  // no element, or several, have an ID
        return std::nullopt;
    }
}

}  // namespace Fuzz
