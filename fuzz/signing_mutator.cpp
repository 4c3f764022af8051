#include "support/token_signing.h"
#include "support/tree_mutation.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

// A changed assertion has no valid signature, and all that the library does behind the signature
// would never be reached: what was changed is signed again.

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

constexpr unsigned kAttempts = 4;  // a change of single bytes often leaves no well-formed text

std::string WithBytesChanged(const std::string& text, std::size_t maxSize) {
    std::string changed = text;
    changed.resize(maxSize);
    changed.resize(LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(changed.data()),
                                    std::min(text.size(), maxSize), maxSize));
    return changed;
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::string plain = Fuzz::WithoutSignature(text);
    // One in eight changes what was signed, or the signature itself, and leaves it so.
    for (unsigned attempt = 0; seed % 8 != 0 && attempt != kAttempts; ++attempt) {
        const unsigned choices = seed / 8 + attempt;
        const std::string changed = choices % 2 == 0 ? WithBytesChanged(plain, maxSize)
                                                     : Fuzz::WithTreeChanged(plain, choices);
        const auto again = Fuzz::WithSignature(changed, choices / 2);
        if (!again || again->size() > maxSize) continue;
        std::copy(again->begin(), again->end(), data);
        return again->size();
    }
    return LLVMFuzzerMutate(data, size, maxSize);
}
