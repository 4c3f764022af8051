#include "trusted_certificates.h"

#include <cstdint>
#include <fstream>
#include <list>
#include <stdexcept>
#include <sys/stat.h>

namespace {

constexpr std::streamsize kMaxFileSize = 1 << 20;

std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string content(kMaxFileSize, '\0');
    file.read(content.data(), kMaxFileSize);
    content.resize(static_cast<std::size_t>(file.gcount()));
    if (content.empty()) throw std::runtime_error(path + ": there is nothing to read");
    return content;
}

}  // namespace

TrustedCertificates::TrustedCertificates(std::vector<std::string> paths)
    : paths_(std::move(paths)) {
    Reload();
}

TrustedCertificates::Resolver TrustedCertificates::Current() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return resolver_;
}

void TrustedCertificates::Reload() {
    stamps_ = Stamps();  // first: a file that changes while it is read is read again
    std::list<Saml::ByteBlob> certificates;
    for (const std::string& path : paths_) {
        const std::string pem = ReadFile(path);
        try {
            Saml::Xml::Security::CertificatePEMToBlob(pem, certificates.emplace_back());
        } catch (const std::exception& error) {
            throw std::runtime_error(path + ": " + error.what());
        }
    }
    Resolver replacement;
    Saml::Xml::Security::CreateTrustChainKeyResolver(certificates, replacement);
    const std::lock_guard<std::mutex> lock(mutex_);
    resolver_.swap(replacement);
}

bool TrustedCertificates::HaveChanged() const {
    return Stamps() != stamps_;
}

std::vector<TrustedCertificates::Stamp> TrustedCertificates::Stamps() const {
    std::vector<Stamp> stamps;
    for (const std::string& path : paths_) {
        struct stat status {};
        if (stat(path.c_str(), &status) != 0)
            stamps.emplace_back();
        else
            stamps.push_back({status.st_mtim.tv_sec, status.st_mtim.tv_nsec,
                              static_cast<std::int64_t>(status.st_dev),
                              static_cast<std::int64_t>(status.st_ino), status.st_size});
    }
    return stamps;
}
