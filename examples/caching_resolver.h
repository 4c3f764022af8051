/// \file
/// A key resolver of a caller's own: remembers what another one offered.
///
/// With a trust chain, most of what a small token costs is decoding certificates and checking their
/// chain, and one identity provider sends the same certificates with every token. Here they are
/// looked at once in a while. What that costs in trust:
///
/// - A certificate that expires, or that the inner resolver would refuse from now on for any other
///   reason, stays accepted until its entry is too old: choose the age as the time for which that
///   is bearable, minutes rather than hours. Use does not make an entry younger.
/// - Whom to trust is changed by making a new resolver around a new inner one and swapping the
///   pointer under a lock. The new one is empty: nothing that the old one offered survives it. The
///   inner resolver of an existing one cannot be changed, since an answer that it is giving at that
///   time would be remembered after the change.
/// - Signatures are verified as before, with the keys that are remembered; a key is never offered
///   unless the inner resolver offered it for the same key information within that age.
/// - Refusals are not remembered, nor is what the inner resolver throws: anybody can send new
///   certificates without end, and they would push out those of the honest signers. Somebody who
///   repeats a trusted signer's certificates with changes that do not matter (blanks, another
///   authority behind them) still can: memory stays bounded, what is in use stays in, and at worst
///   tokens cost what they cost without this class.
#pragma once

#include <saml/security.h>

#include <openssl/evp.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <functional>
#include <iterator>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

/// Threads: any number may use one object; the inner resolver is asked without a lock, by several
/// at a time when they miss together, and must allow that as the library's resolvers do.
class CachingKeyInfoResolver final : public Saml::Xml::Security::KeyInfoResolver {
  public:
    using Keys = std::list<Saml::ByteBlob>;
    using Clock = std::chrono::steady_clock;  // nobody sets it back

    struct Bounds {
        std::size_t entries = 64;  ///< Signers, that is, unless somebody plays. 0: none.
        Clock::duration age = std::chrono::minutes(5);
    };

    /// \param inner  Decides whom to trust; not null.
    /// \param now    The present time, asked by all threads; tests give another one.
    CachingKeyInfoResolver(boost::intrusive_ptr<KeyInfoResolver> inner, Bounds bounds,
                           std::function<Clock::time_point()> now = Clock::now)
        : inner_(std::move(inner)), bounds_(bounds), now_(std::move(now)) {
        using namespace Saml::Xml::Security;
        if (!inner_) throw Saml::InvalidArgumentException("A cache needs a resolver to ask.");
        CreateCanonicalizer(Algorithm::ExclusiveC14N, canonicalizer_);
    }

    void Resolve(Saml::Xml::Security::KeyInfo* keyInfo, Keys& keys) override {
        const std::optional<Name> name = NameOf(keyInfo);
        if (!name) return inner_->Resolve(keyInfo, keys);
        const Clock::time_point asked = now_();  // before the answer: it is no younger than this
        if (Recall(*name, asked, keys)) return;
        inner_->Resolve(keyInfo, keys);
        if (!keys.empty()) Remember(*name, asked, keys);
    }

  private:
    using Name = std::array<unsigned char, 32>;
    struct Entry {
        Name name;
        Clock::time_point asked;
        Keys keys;
    };
    using Entries = std::list<Entry>;

    /// SHA-256 of the whole key information: certificates, their number and order, and whatever
    /// else a resolver may look at. In canonical form, which tells what prefixes stand for, and as
    /// it is written, which tells `xmlns` from the odd spellings that readers do not take for the
    /// same. What a resolver is given must be what the element says, as in everything that is
    /// parsed.
    ///
    /// Without certificates there is no name: the answer then rests on something else than what was
    /// sent, such as a single trusted key, a directory or the time, and it is cheap.
    std::optional<Name> NameOf(Saml::Xml::Security::KeyInfo* keyInfo) const {
        if (keyInfo == nullptr || !keyInfo->IsX509()) return std::nullopt;
        boost::intrusive_ptr<Saml::Xml::ElementNode> element;
        keyInfo->GetElement(element);
        if (!element) return std::nullopt;
        Saml::Xml::ElementNode* const data = element->GetFirstChildElement("X509Data");
        if (data == nullptr || data->GetFirstChildElement("X509Certificate") == nullptr)
            return std::nullopt;

        Saml::StringWriter out;
        canonicalizer_->Canonicalize(element.get(), out);
        element->Write(out);
        Name name{};
        const std::string& text = out.data;
        if (EVP_Digest(text.data(), text.size(), name.data(), nullptr, EVP_sha256(), nullptr) != 1)
            return std::nullopt;
        return name;
    }

    bool Recall(const Name& name, Clock::time_point now, Keys& keys) {
        const std::lock_guard<std::mutex> lock(mutex_);
        const auto found = index_.find(name);
        if (found == index_.end()) return false;
        if (now - found->second->asked >= bounds_.age) {
            Forget(found->second);
            return false;
        }
        entries_.splice(entries_.begin(), entries_, found->second);
        keys = found->second->keys;
        return true;
    }

    void Remember(const Name& name, Clock::time_point asked, const Keys& keys) {
        if (bounds_.entries == 0) return;
        const std::lock_guard<std::mutex> lock(mutex_);
        const auto found = index_.find(name);
        if (found != index_.end()) Forget(found->second);  // another thread was quicker
        if (entries_.size() == bounds_.entries) Forget(std::prev(entries_.end()));
        entries_.push_front({name, asked, keys});
        index_[name] = entries_.begin();
    }

    void Forget(Entries::iterator entry) {
        index_.erase(entry->name);
        entries_.erase(entry);
    }

    const boost::intrusive_ptr<KeyInfoResolver> inner_;
    const Bounds bounds_;
    const std::function<Clock::time_point()> now_;
    boost::intrusive_ptr<Saml::Xml::Security::Canonicalizer> canonicalizer_;
    std::mutex mutex_;
    Entries entries_;  ///< The one used last comes first.
    std::map<Name, Entries::iterator> index_;
};
