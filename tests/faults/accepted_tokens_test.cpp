#include "faults/faulty_tokens.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace Saml::Faults {
namespace {

struct Acceptance {
    const char* name;
    Trust trust;
    FaultyCall (*call)(Trust trust);
    bool parses = true;
};
void PrintTo(const Acceptance& row, std::ostream* out) {
    *out << row.name;
}

class AcceptedToken : public testing::TestWithParam<Acceptance> {};

TEST_P(AcceptedToken, IsAcceptedOrTheShortageOfMemoryReported) {
    Failures failures = FailuresUpTo(Stage::Verifying, GetParam().trust);
    if (!GetParam().parses) {
        failures.ours = {"bad_alloc"};
        failures.expat = {};
    }
    ExpectSoundInShortage(GetParam().call(GetParam().trust), kReturned, failures);
}

FaultyCall Bearer(Trust trust) {
    return CallOfText(BearerToken(), UsualResolver(trust));
}
FaultyCall HolderOfKey(Trust trust) {
    return CallOfText(HolderOfKeyToken(), NearResolver(trust));
}
/// OpenSSL finds things out about a certificate when they are first needed, and keeps them.
FaultyCall FirstBearer(Trust trust) {
    return FirstCallOf(BearerToken(), trust);
}
FaultyCall FromDom(Trust trust) {
    return CallOfDom(BearerToken(), UsualResolver(trust));
}

INSTANTIATE_TEST_SUITE_P(CreateSamlToken, AcceptedToken,
                         testing::Values(Acceptance{"BearerByChain", Trust::Chain, Bearer},
                                         Acceptance{"HolderOfKeyByChain", Trust::Chain,
                                                    HolderOfKey},
                                         Acceptance{"FirstByChain", Trust::Chain, FirstBearer},
                                         Acceptance{"BearerBySet", Trust::Set, Bearer},
                                         Acceptance{"HolderOfKeyBySet", Trust::Set, HolderOfKey},
                                         Acceptance{"FirstBySet", Trust::Set, FirstBearer},
                                         Acceptance{"FromDom", Trust::Set, FromDom, false}),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace Saml::Faults
