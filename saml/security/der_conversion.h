#pragma once

#include "saml/foundations.h"
#include "saml/foundations/checked_narrowing.h"
#include "saml/security/openssl_handles.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace Saml::Xml::Security {

/// Calls `decode(input, length)`, which runs one of OpenSSL's `d2i` functions, on the whole blob
/// and gives what it gives: an owning raw pointer, null when the bytes are refused. Bytes behind
/// the first complete structure are ignored, as those functions do. Without bytes the answer is
/// null; so it is for more bytes than the functions can count.
template <class Decode>
auto DecodeDer(const ByteBlob& der, Decode&& decode) -> decltype(decode(nullptr, 0L)) {
    if (der == nullptr || der->empty() || !FitsIn<long>(der->size())) return nullptr;
    const unsigned char* input = der->data();
    return decode(&input, static_cast<long>(der->size()));
}

/// The bytes that `encode(output)`, which runs one of OpenSSL's `i2d` functions, gives; null when
/// it fails.
///
/// OpenSSL makes the room for them. It is not asked for the length first, with a buffer of ours
/// afterwards: a private key may come out longer the second time, in another form, when OpenSSL was
/// short of memory in between, and it would write all of it.
template <class Encode>
ByteBlob EncodeDer(Encode&& encode) {
    unsigned char* output = nullptr;
    const int length = encode(&output);
    if (length < 0) return nullptr;
    const AllocationHandle room(output);
    auto der = std::make_shared<const std::vector<unsigned char>>(output, output + length);
    OPENSSL_cleanse(output, static_cast<std::size_t>(length));  // it may be a private key
    return der;
}

}  // namespace Saml::Xml::Security
