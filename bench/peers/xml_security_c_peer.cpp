#include "peers/peer.h"

#include <openssl/pem.h>
#include <openssl/x509.h>

#include <cstdio>
#include <memory>
#include <stdexcept>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xsec/dsig/DSIGConstants.hpp>
#include <xsec/dsig/DSIGSignature.hpp>
#include <xsec/enc/OpenSSL/OpenSSLCryptoKeyRSA.hpp>
#include <xsec/framework/XSECException.hpp>
#include <xsec/framework/XSECProvider.hpp>
#include <xsec/utils/XSECPlatformUtils.hpp>

namespace Bench {
namespace {

using namespace xercesc;

template <class Object>
using Owned = std::unique_ptr<Object, void (*)(Object*)>;

std::shared_ptr<XSECCryptoKey> KeyOf(const std::string& certificatePath) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(
        std::fopen(certificatePath.c_str(), "r"), &std::fclose);
    if (!file) throw std::runtime_error("cannot read " + certificatePath);
    const Owned<X509> certificate(PEM_read_X509(file.get(), nullptr, nullptr, nullptr), &X509_free);
    if (!certificate) throw std::runtime_error("no certificate: " + certificatePath);
    const Owned<EVP_PKEY> key(X509_get_pubkey(certificate.get()), &EVP_PKEY_free);
    return std::make_shared<OpenSSLCryptoKeyRSA>(key.get());
}

/// Everything of a UTF-16 literal that the calls below need.
class Names {
  public:
    Names() : id_(XMLString::transcode("ID")), signature_(XMLString::transcode("Signature")) {}
    ~Names() {
        XMLString::release(&id_);
        XMLString::release(&signature_);
    }
    Names(const Names&) = delete;
    Names& operator=(const Names&) = delete;

    const XMLCh* Id() const { return id_; }
    const XMLCh* Signature() const { return signature_; }

  private:
    XMLCh* id_;
    XMLCh* signature_;
};

/// Made ready once: the library, its provider of signatures, the key.
struct Ready {
    explicit Ready(const std::string& certificatePath) {
        XMLPlatformUtils::Initialize();
        XSECPlatformUtils::Initialise();
        key = KeyOf(certificatePath);
        provider = std::make_unique<XSECProvider>();
        names = std::make_unique<Names>();
    }

    std::shared_ptr<XSECCryptoKey> key;
    std::unique_ptr<XSECProvider> provider;
    std::unique_ptr<Names> names;
};

bool Verifies(Ready& ready, const std::string& xml) {
    XercesDOMParser parser;
    HandlerBase throwing;  // by default, errors go unnoticed
    parser.setErrorHandler(&throwing);
    parser.setDoNamespaces(true);
    parser.setCreateEntityReferenceNodes(false);
    parser.setLoadExternalDTD(false);
    const MemBufInputSource source(reinterpret_cast<const XMLByte*>(xml.data()), xml.size(),
                                   "token", false);
    parser.parse(source);
    DOMDocument* const document = parser.getDocument();
    document->getDocumentElement()->setIdAttribute(ready.names->Id(), true);
    DOMNode* const element =
        document
            ->getElementsByTagNameNS(DSIGConstants::s_unicodeStrURIDSIG, ready.names->Signature())
            ->item(0);
    if (element == nullptr) return false;

    const auto release = [&ready](DSIGSignature* signature) {
        ready.provider->releaseSignature(signature);
    };
    const std::unique_ptr<DSIGSignature, decltype(release)> signature(
        ready.provider->newSignatureFromDOM(document, element), release);
    signature->load();
    signature->setSigningKey(ready.key->clone());
    return signature->verify();
}

}  // namespace

Peer XmlSecurityCPeer(const ProviderFiles& files) {
    const auto ready = std::make_shared<Ready>(files.leaf);
    return {"xml-security-c",
            [ready](const std::string& xml) {
                try {
                    return Verifies(*ready, xml);
                } catch (const XSECException&) {
                    return false;
                } catch (const SAXException&) {
                    return false;
                }
            },
            {}};
}

}  // namespace Bench
