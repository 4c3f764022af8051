#include "support/our_works.h"

#include "saml/token.h"
#include "support/bench_tokens.h"

namespace Bench::Ours {

using namespace Saml;
using namespace Saml::Xml;
using namespace Saml::Xml::Security;

KeyInfoResolver* TrustSet() {
    static const boost::intrusive_ptr<KeyInfoResolver> resolver = [] {
        boost::intrusive_ptr<KeyInfoResolver> made;
        CreateTrustSetKeyResolver({TheProvider().leaf}, made);
        return made;
    }();
    return resolver.get();
}

KeyInfoResolver* TrustChain() {
    static const boost::intrusive_ptr<KeyInfoResolver> resolver = [] {
        boost::intrusive_ptr<KeyInfoResolver> made;
        CreateTrustChainKeyResolver({TheProvider().root}, made);
        return made;
    }();
    return resolver.get();
}

bool Accepts(const std::string& xml, KeyInfoResolver* resolver) {
    try {
        return CreateSamlToken(xml, resolver) != nullptr;
    } catch (const InvalidTokenException&) {
        return false;
    }
}

Peer AsPeer() {
    return {"samltoken", [](const std::string& xml) { return Accepts(xml, TrustSet()); },
            [](const std::string& xml) { return Accepts(xml, TrustChain()); }};
}

boost::intrusive_ptr<Document> Parse(const std::string& xml) {
    const boost::intrusive_ptr<XMLHandler> handler(CreateXMLDocumentHandler(0, 0, 0));
    const boost::intrusive_ptr<XMLParser> parser(CreateXMLParser(handler.get()));
    boost::intrusive_ptr<Node> document;
    parser->Parse(xml, document);
    return boost::intrusive_ptr<Document>(&dynamic_cast<Document&>(*document));
}

std::string ExclusiveForm(Node* apex) {
    boost::intrusive_ptr<Canonicalizer> canonicalizer;
    CreateCanonicalizer(Algorithm::ExclusiveC14N, canonicalizer);
    StringWriter out;
    canonicalizer->Canonicalize(apex, out);
    return std::move(out.data);
}

Signing SigningOf(const std::string& unsignedXml) {
    const boost::intrusive_ptr<Document> document = Parse(unsignedXml);
    ElementNode* const assertion = document->GetRootElement();
    std::string id;
    assertion->GetAttribute("ID", id);
    return [document, assertion, uri = "#" + id](std::string* text) {
        const Provider& provider = TheProvider();
        boost::intrusive_ptr<Signature> signature;
        CreateBlankSignature(assertion, Algorithm::ExclusiveC14N, Algorithm::RsaSha256, "ds",
                             signature);
        assertion->InsertAfter(signature->GetElement(), assertion->GetFirstChild());
        boost::intrusive_ptr<SignatureReference> reference;
        signature->AddReference(uri, Algorithm::Sha256, reference);
        reference->AddEnvelopedSignatureTransform();
        reference->SetCanonicalizationMethod(Algorithm::ExclusiveC14N);
        signature->SetKeyInfo({provider.leaf, provider.intermediate});
        signature->Sign(provider.privateKey);
        if (text != nullptr) {
            StringWriter out;
            assertion->Write(out);
            *text = std::move(out.data);
        }
        assertion->RemoveChild(signature->GetElement());
    };
}

}  // namespace Bench::Ours
