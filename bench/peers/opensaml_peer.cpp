#include "peers/peer.h"
#include <saml/SAMLConfig.h>
#include <saml/saml2/core/Assertions.h>
#include <saml/signature/SignatureProfileValidator.h>

#include <memory>
#include <sstream>
#include <stdexcept>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/framework/Wrapper4InputSource.hpp>
#include <xmltooling/XMLToolingConfig.h>
#include <xmltooling/exceptions.h>
#include <xmltooling/security/Credential.h>
#include <xmltooling/security/CredentialResolver.h>
#include <xmltooling/security/SecurityHelper.h>
#include <xmltooling/security/SignatureTrustEngine.h>
#include <xmltooling/signature/Signature.h>
#include <xmltooling/signature/SignatureValidator.h>
#include <xmltooling/util/ParserPool.h>
#include <xmltooling/util/XMLHelper.h>
#include <xsec/enc/XSECCryptoKey.hpp>
#include <xsec/enc/XSECCryptoX509.hpp>

namespace Bench {
namespace {

using namespace xmltooling;

void Initialize() {
    static const bool done = [] {
        XMLToolingConfig::getConfig().log_config("FATAL");
        if (!opensaml::SAMLConfig::getConfig().init())
            throw std::runtime_error("opensaml failed: initialization");
        return true;
    }();
    static_cast<void>(done);
}

std::unique_ptr<XMLObject> ObjectOf(const std::string& xml) {
    xercesc::MemBufInputSource bytes(reinterpret_cast<const XMLByte*>(xml.data()), xml.size(),
                                     "token", false);
    const xercesc::Wrapper4InputSource source(&bytes, false);
    xercesc::DOMDocument* const document = XMLToolingConfig::getConfig().getParser().parse(
        const_cast<xercesc::Wrapper4InputSource&>(source));
    XercesJanitor<xercesc::DOMDocument> owned(document);
    std::unique_ptr<XMLObject> object(
        XMLObjectBuilder::buildOneFromElement(document->getDocumentElement(), true));
    owned.release();  // the object has it now
    return object;
}

/// Whether the token has a signature of SAML's profile that `holds`.
template <class Holds>
bool Accepts(const std::string& xml, const Holds& holds) {
    try {
        const std::unique_ptr<XMLObject> object = ObjectOf(xml);
        const auto* const assertion = dynamic_cast<opensaml::saml2::Assertion*>(object.get());
        if (assertion == nullptr || assertion->getSignature() == nullptr) return false;
        opensaml::SignatureProfileValidator().validateSignature(*assertion->getSignature());
        return holds(*assertion->getSignature());
    } catch (const XMLToolingException&) {
        return false;
    }
}

Peer::Accepts KnownKey(const ProviderFiles& files) {
    std::vector<XSECCryptoX509*> certificates;
    SecurityHelper::loadCertificatesFromFile(certificates, files.leaf.c_str());
    if (certificates.size() != 1) throw std::runtime_error("opensaml failed: " + files.leaf);
    const std::unique_ptr<XSECCryptoX509> certificate(certificates.front());
    const std::shared_ptr<XSECCryptoKey> key(certificate->clonePublicKey());
    return [key](const std::string& xml) {
        return Accepts(xml, [&key](xmlsignature::Signature& signature) {
            xmlsignature::SignatureValidator(key.get()).validate(&signature);
            return true;
        });
    };
}

Peer::Accepts Chain(const ProviderFiles& files) {
    std::istringstream configuration(R"(<TrustEngine type="StaticPKIX" certificate=")" +
                                     files.root + R"("/>)");
    xercesc::DOMDocument* const document =
        XMLToolingConfig::getConfig().getParser().parse(configuration);
    const XercesJanitor<xercesc::DOMDocument> owned(document);
    const std::shared_ptr<TrustEngine> engine(
        XMLToolingConfig::getConfig().TrustEngineManager.newPlugin(
            STATIC_PKIX_TRUSTENGINE, document->getDocumentElement(), false));
    const std::shared_ptr<CredentialResolver> nobody(
        XMLToolingConfig::getConfig().CredentialResolverManager.newPlugin(DUMMY_CREDENTIAL_RESOLVER,
                                                                          nullptr, false));
    return [engine, nobody](const std::string& xml) {
        return Accepts(xml, [&](xmlsignature::Signature& signature) {
            Locker locked(nobody.get());
            return dynamic_cast<const SignatureTrustEngine&>(*engine).validate(signature, *nobody);
        });
    };
}

}  // namespace

Peer OpensamlPeer(const ProviderFiles& files) {
    Initialize();
    return {"opensaml", KnownKey(files), Chain(files)};
}

}  // namespace Bench
