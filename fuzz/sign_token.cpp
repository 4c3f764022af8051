#include "support/token_signing.h"

#include <iostream>
#include <iterator>

// Signs the assertion on its standard input with the key of the fuzz targets, for a new seed.
int main() {
    const std::string text{std::istreambuf_iterator<char>(std::cin), {}};
    const auto again = Fuzz::WithSignature(text, 4);
    if (!again) {
        std::cerr << "not well-formed, or without issuer\n";
        return 1;
    }
    std::cout << *again;
    return 0;
}
