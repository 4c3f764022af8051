// Runs under callgrind, as scripts/instructions does it: one dump for each way of accepting a token
// of each size, named after what was done. Everything is done once before it is counted. Says the
// sizes.
#include "support/bench_tokens.h"
#include "support/floor.h"
#include "support/our_works.h"
#include "support/sizes.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <iostream>
#include <stdexcept>
#include <string>
#include <sys/random.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <valgrind/callgrind.h>

namespace {

using namespace Bench;

bool isCounting = false;

long Random(void* bytes, std::size_t size) {
    if (!isCounting) return syscall(SYS_getrandom, bytes, size, 0U);
    std::memset(bytes, 0x5a, size);
    return static_cast<long>(size);
}

void Count(const std::string& name, const std::function<void()>& run) {
    run();
    CALLGRIND_START_INSTRUMENTATION;
    CALLGRIND_ZERO_STATS;
    isCounting = true;
    run();
    isCounting = false;
    CALLGRIND_DUMP_STATS_AT(name.c_str());
    CALLGRIND_STOP_INSTRUMENTATION;
}

void Accept(const std::string& xml, Saml::Xml::Security::KeyInfoResolver* resolver) {
    if (!Ours::Accepts(xml, resolver)) throw std::runtime_error("a token was refused");
}

void CountAll(std::size_t groups) {
    const Token token = MakeToken(groups);
    const std::string size = std::to_string(groups);
    std::cout << "groups " << size << " bytes " << token.xml.size() << '\n';
    Count("known key/floor/" + size, [&] { Floor::KnownKey(token); });
    Count("known key/samltoken/" + size, [&] { Accept(token.xml, Ours::TrustSet()); });
    Count("chain/floor/" + size, [&] { Floor::Chain(token); });
    Count("chain/samltoken/" + size, [&] { Accept(token.xml, Ours::TrustChain()); });
}

}  // namespace

// Expat salts its hash tables with what one of these gives; names that collide under one salt and
// not under the next would make the counts of two runs differ by one or two in a hundred.
extern "C" ssize_t getrandom(void* bytes, size_t size, unsigned) {
    return Random(bytes, size);
}
extern "C" void arc4random_buf(void* bytes, size_t size) noexcept {
    Random(bytes, size);
}

int main() {
    try {
        for (const std::size_t groups : kSizes)
            CountAll(groups);
        return 0;
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
        return 1;
    }
}
