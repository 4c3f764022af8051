#include "peers/peer.h"
#include "peers/xmlsec_handles.h"

#include <xmlsec/templates.h>

namespace Bench {
namespace {

/// The bare signature, below no parent yet, as `Forge::Sign` makes it.
xmlNode* Template(xmlDoc* document, const std::string& uri) {
    xmlNode* const signature = xmlSecTmplSignatureCreateNsPref(
        document, xmlSecTransformExclC14NId, xmlSecTransformRsaSha256Id, nullptr, BAD_CAST "ds");
    RequireXmlsec(signature != nullptr, "xmlSecTmplSignatureCreateNsPref");
    xmlNode* const reference = xmlSecTmplSignatureAddReference(
        signature, xmlSecTransformSha256Id, nullptr, BAD_CAST uri.c_str(), nullptr);
    RequireXmlsec(reference != nullptr &&
                      xmlSecTmplReferenceAddTransform(reference, xmlSecTransformEnvelopedId) &&
                      xmlSecTmplReferenceAddTransform(reference, xmlSecTransformExclC14NId),
                  "the template's reference");
    xmlNode* const keyInfo = xmlSecTmplSignatureEnsureKeyInfo(signature, nullptr);
    xmlNode* const x509 = xmlSecTmplKeyInfoAddX509Data(keyInfo);
    RequireXmlsec(x509 != nullptr && xmlSecTmplX509DataAddCertificate(x509) != nullptr,
                  "the template's key information");
    return signature;
}

/// A key with leaf and intermediate, which `KeyInfo` will hold.
std::shared_ptr<xmlSecKey> KeyOf(const ProviderFiles& files) {
    std::shared_ptr<xmlSecKey> key = XmlsecKey(xmlSecCryptoAppKeyLoad(
        files.privateKey.c_str(), xmlSecKeyDataFormatPem, nullptr, nullptr, nullptr));
    RequireXmlsec(key != nullptr, "xmlSecCryptoAppKeyLoad");
    for (const std::string& certificate : {files.leaf, files.intermediate})
        RequireXmlsec(
            xmlSecCryptoAppKeyCertLoad(key.get(), certificate.c_str(), xmlSecKeyDataFormatPem) == 0,
            "xmlSecCryptoAppKeyCertLoad");
    return key;
}

/// Decodes the private key anew; the certificates stay as they are.
void DecodeAgain(xmlSecKey* key, const std::vector<unsigned char>& privateKey) {
    const XmlsecKey decoded(
        xmlSecCryptoAppKeyLoadMemory(privateKey.data(), static_cast<xmlSecSize>(privateKey.size()),
                                     xmlSecKeyDataFormatDer, nullptr, nullptr, nullptr));
    RequireXmlsec(decoded != nullptr, "xmlSecCryptoAppKeyLoadMemory");
    RequireXmlsec(
        xmlSecKeySetValue(key, xmlSecKeyDataDuplicate(xmlSecKeyGetValue(decoded.get()))) == 0,
        "xmlSecKeySetValue");
}

std::string Text(xmlDoc* document) {
    xmlChar* text = nullptr;
    int size = 0;
    xmlDocDumpMemory(document, &text, &size);
    const std::unique_ptr<xmlChar, void (*)(void*)> owned(text, xmlFree);
    return {reinterpret_cast<const char*>(text), static_cast<std::size_t>(size)};
}

}  // namespace

Signing XmlsecSigning(const ProviderFiles& files, const std::string& unsignedXml,
                      const std::vector<unsigned char>& privateKey) {
    InitializeXmlsec();
    const std::shared_ptr<xmlDoc> document = Libxml2DocumentOf(unsignedXml);
    RegisterRootId(document.get());
    const std::shared_ptr<xmlSecKey> key = KeyOf(files);
    const std::unique_ptr<xmlChar, void (*)(void*)> id(
        xmlGetProp(xmlDocGetRootElement(document.get()), BAD_CAST "ID"), xmlFree);
    const std::string uri = "#" + std::string(reinterpret_cast<const char*>(id.get()));

    return [document, key, uri, privateKey](std::string* text) {
        if (!privateKey.empty()) DecodeAgain(key.get(), privateKey);
        xmlNode* const issuer = xmlFirstElementChild(xmlDocGetRootElement(document.get()));
        xmlNode* const signature = Template(document.get(), uri);
        xmlAddNextSibling(issuer, signature);
        const XmlsecContext context(xmlSecDSigCtxCreate(nullptr));
        RequireXmlsec(context != nullptr, "xmlSecDSigCtxCreate");
        context->signKey = key.get();  // borrowed: handed back before the context is destroyed
        const int outcome = xmlSecDSigCtxSign(context.get(), signature);
        context->signKey = nullptr;
        RequireXmlsec(outcome == 0, "xmlSecDSigCtxSign");
        if (text != nullptr) *text = Text(document.get());
        xmlUnlinkNode(signature);
        xmlFreeNode(signature);
    };
}

}  // namespace Bench
