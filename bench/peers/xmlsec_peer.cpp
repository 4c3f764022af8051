#include "peers/peer.h"
#include "peers/xmlsec_handles.h"

namespace Bench {
namespace {

Libxml2Document Parsed(const std::string& xml) {
    Libxml2Document document = Libxml2DocumentOf(xml);
    RegisterRootId(document.get());
    return document;
}

bool Verifies(xmlDoc* document, xmlSecDSigCtx* context) {
    xmlNode* const signature =
        xmlSecFindNode(xmlDocGetRootElement(document), xmlSecNodeSignature, xmlSecDSigNs);
    return signature != nullptr && xmlSecDSigCtxVerify(context, signature) == 0 &&
           context->status == xmlSecDSigStatusSucceeded;
}

Peer::Accepts KnownKey(const ProviderFiles& files) {
    const std::shared_ptr<xmlSecKey> key = XmlsecKey(xmlSecCryptoAppKeyLoad(
        files.leaf.c_str(), xmlSecKeyDataFormatCertPem, nullptr, nullptr, nullptr));
    RequireXmlsec(key != nullptr, "xmlSecCryptoAppKeyLoad");
    return [key](const std::string& xml) {
        const Libxml2Document document = Parsed(xml);
        const XmlsecContext context(xmlSecDSigCtxCreate(nullptr));
        RequireXmlsec(context != nullptr, "xmlSecDSigCtxCreate");
        context->signKey = key.get();  // borrowed: handed back before the context is destroyed
        const bool verifies = Verifies(document.get(), context.get());
        context->signKey = nullptr;
        return verifies;
    };
}

Peer::Accepts Chain(const ProviderFiles& files) {
    const std::shared_ptr<xmlSecKeysMngr> keys = XmlsecKeys(xmlSecKeysMngrCreate());
    RequireXmlsec(keys != nullptr && xmlSecCryptoAppDefaultKeysMngrInit(keys.get()) == 0,
                  "xmlSecCryptoAppDefaultKeysMngrInit");
    RequireXmlsec(
        xmlSecCryptoAppKeysMngrCertLoad(keys.get(), files.root.c_str(), xmlSecKeyDataFormatPem,
                                        xmlSecKeyDataTypeTrusted) == 0,
        "xmlSecCryptoAppKeysMngrCertLoad");
    return [keys](const std::string& xml) {
        const Libxml2Document document = Parsed(xml);
        const XmlsecContext context(xmlSecDSigCtxCreate(keys.get()));
        RequireXmlsec(context != nullptr, "xmlSecDSigCtxCreate");
        // Nothing but certificates may say which key it is.
        RequireXmlsec(xmlSecPtrListAdd(&context->keyInfoReadCtx.enabledKeyData,
                                       const_cast<_xmlSecKeyDataKlass*>(  // as its macros do in C
                                           xmlSecKeyDataX509Id)) == 0,
                      "xmlSecPtrListAdd");
        return Verifies(document.get(), context.get());
    };
}

}  // namespace

Peer XmlsecPeer(const ProviderFiles& files) {
    InitializeXmlsec();
    return {"xmlsec1", KnownKey(files), Chain(files)};
}

}  // namespace Bench
