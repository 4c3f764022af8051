#include "support/laws.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace Fuzz {
namespace {

std::size_t sizeOfInput = 0;

}  // namespace

void Require(bool holds, std::string_view law) {
    if (holds) return;
    std::fprintf(stderr, "Law broken by an input of %zu bytes: %.*s\n", sizeOfInput,
                 static_cast<int>(law.size()), law.data());
    std::abort();
}

}  // namespace Fuzz

/// By this name libFuzzer and the replay program find the target.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::sizeOfInput = size;
    Fuzz::CheckLaws({reinterpret_cast<const char*>(data), size});
    return 0;
}
