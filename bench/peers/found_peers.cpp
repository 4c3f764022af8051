#include "peers/peer.h"

namespace Bench {

std::vector<Peer> FoundPeers([[maybe_unused]] const ProviderFiles& files) {
    std::vector<Peer> peers;
#ifdef BENCH_HAS_XMLSEC
    peers.push_back(XmlsecPeer(files));
#endif
#ifdef BENCH_HAS_XML_SECURITY_C
    peers.push_back(XmlSecurityCPeer(files));
#endif
#ifdef BENCH_HAS_OPENSAML
    peers.push_back(OpensamlPeer(files));
#endif
    return peers;
}

std::function<void(const std::string& xml)> FoundParser() {
#ifdef BENCH_HAS_LIBXML2
    return Libxml2Parse;
#else
    return {};
#endif
}

std::function<std::string()> FoundCanonicalization([[maybe_unused]] const std::string& xml) {
#ifdef BENCH_HAS_LIBXML2
    return Libxml2Canonicalization(xml);
#else
    return {};
#endif
}

Signing FoundSigning([[maybe_unused]] const ProviderFiles& files,
                     [[maybe_unused]] const std::string& unsignedXml,
                     [[maybe_unused]] const std::vector<unsigned char>& privateKey) {
#ifdef BENCH_HAS_XMLSEC
    return XmlsecSigning(files, unsignedXml, privateKey);
#else
    return {};
#endif
}

std::vector<std::string> MissingPeers() {
    std::vector<std::string> missing;
#ifndef BENCH_HAS_LIBXML2
    missing.emplace_back("libxml2 (libxml2-dev)");
#endif
#ifndef BENCH_HAS_XMLSEC
    missing.emplace_back("xmlsec1 (libxmlsec1-dev)");
#endif
#ifndef BENCH_HAS_XML_SECURITY_C
    missing.emplace_back("xml-security-c (libxml-security-c-dev)");
#endif
#ifndef BENCH_HAS_OPENSAML
    missing.emplace_back("opensaml (libsaml-dev)");
#endif
    return missing;
}

}  // namespace Bench
