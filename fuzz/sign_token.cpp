#include "support/token_signing.h"

#include <cstdlib>
#include <iostream>
#include <iterator>

// Signs the document on its standard input with the key of the fuzz targets, for a new seed. A
// number as argument is what `Fuzz::WithSignature` takes for its choices.

namespace {

constexpr std::uint32_t kPlain = 4 | 32;  // by the root's ID, with SHA-256, without certificate

}  // namespace

int main(int argc, char** argv) {
    const std::uint32_t choices =
        argc > 1 ? static_cast<std::uint32_t>(std::strtoul(argv[1], nullptr, 10)) : kPlain;
    const std::string text{std::istreambuf_iterator<char>(std::cin), {}};
    const auto again = Fuzz::WithSignature(text, choices);
    if (!again) {
        std::cerr << "cannot be signed\n";
        return 1;
    }
    std::cout << *again;
    return 0;
}
