#include "saml/security/decoded_key.h"

#include <memory>
#include <utility>

namespace Saml::Xml::Security {
namespace {
using Bytes = std::vector<unsigned char>;

/// Frees the bytes at their end, and until then holds the key that they encode.
struct DeleteWithKey {
    KeyHandle key;
    const Bytes* encoded = nullptr;

    void operator()(const Bytes* bytes) const noexcept {
        std::default_delete<const Bytes>()(bytes);
    }
};
}  // namespace

ByteBlob WithDecodedKey(Bytes der, EVP_PKEY& key) {
    std::unique_ptr<const Bytes> bytes = std::make_unique<const Bytes>(std::move(der));
    DeleteWithKey deleter{Share(key), bytes.get()};
    return std::unique_ptr<const Bytes, DeleteWithKey>(bytes.release(), std::move(deleter));
}

KeyHandle DecodedKeyOf(const ByteBlob& der) noexcept {
    const DeleteWithKey* const keeper = std::get_deleter<DeleteWithKey>(der);
    // A pointer may share the ownership of these bytes and point to others.
    if (keeper == nullptr || keeper->encoded != der.get()) return nullptr;
    return Share(*keeper->key);
}

}  // namespace Saml::Xml::Security
