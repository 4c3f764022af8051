// The certificates that decide whom to trust, read from files and exchanged while others verify.
#pragma once

#include <saml/token.h>

#include <ctime>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

class TrustedCertificates {
  public:
    using Resolver = boost::intrusive_ptr<Saml::Xml::Security::KeyInfoResolver>;

    // One certificate a file. Reads them: throws as Reload does.
    explicit TrustedCertificates(std::vector<std::string> paths);

    // What to verify with; keep it for the length of one verification.
    Resolver Current() const;

    // Reads them all anew. Throws and changes nothing when one cannot be read.
    void Reload();

    // Whether a file is another one than when they were last read, well or not.
    // Threads: Reload and HaveChanged are for one thread.
    bool HaveChanged() const;

  private:
    // Modification time in seconds and nanoseconds, device, file: a file that was moved into place
    // may be as old as the one before.
    using Stamp = std::vector<std::int64_t>;
    std::vector<Stamp> Stamps() const;

    const std::vector<std::string> paths_;
    std::vector<Stamp> stamps_;
    mutable std::mutex mutex_;
    Resolver resolver_;
};
