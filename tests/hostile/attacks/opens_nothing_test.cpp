// Tokens that name files and hosts are verified in a process that can open neither.
#include "hostile/attacks/outside_references.h"
#include "hostile/attacks/provider.h"
#include "hostile/attacks/sealed_process.h"
#include "oracle/canonicalization/libxml2_documents.h"

#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/xinclude.h>

#include <fcntl.h>
#include <fstream>
#include <iostream>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace Saml::Attacks {
namespace {

class ASealedProcess : public testing::Test {
  protected:
    void SetUp() override {
        if (const std::optional<std::string> reason = Sealed::WhyNot())
            GTEST_SKIP() << "cannot be sealed: " << *reason;
        if (!Sealed::Run([] {}, [] { return 0; }).wasSealed)
            GTEST_SKIP() << "the kernel does not let processes be sealed";
    }
};

void DoNothing() {}

/// Verifies and refuses something harmless, so that what is loaded at the first use is there.
void WarmUp() {
    const std::string token = Provider::Signed(Provider::CustomerSpec());
    OutcomeOf(token, Provider::TrustInTheRoot());
    OutcomeOf(Forge::Replaced(token, "mallory@corp", "admin@corp"), Provider::TrustInTheRoot());
    OutcomeOf(token + "x", Provider::TrustInTheRoot());
    OutcomeOf(token, Provider::TrustInTheSigner());
}

// The controls: the seal does stop what it is there to stop.
TEST_F(ASealedProcess, CannotOpenLookUpConnectOrStartAnything) {
    const auto refused = [](const std::function<int()>& compute) {
        return Sealed::Run(DoNothing, compute).refusedCall;
    };
    EXPECT_EQ(refused([] { return open("/etc/passwd", O_RDONLY); }), __NR_openat);
    EXPECT_EQ(refused([] { return std::ifstream("/etc/hostname").good() ? 1 : 0; }), __NR_openat);
    EXPECT_EQ(refused([] { return socket(AF_INET, SOCK_STREAM, 0); }), __NR_socket);
    EXPECT_EQ(refused([] { return socket(AF_UNIX, SOCK_STREAM, 0); }), __NR_socket);
    EXPECT_EQ(refused([] { return static_cast<int>(write(STDERR_FILENO, "", 0)); }), __NR_write);
    EXPECT_EQ(refused([] { return execl("/bin/true", "true", nullptr); }), __NR_execve);
    EXPECT_NE(refused([] { return std::system("true"); }), -1);
    EXPECT_NE(refused([] {
                  struct stat status {};
                  return stat("/etc/passwd", &status);
              }),
              -1);
}

TEST_F(ASealedProcess, CanCompute) {
    const Sealed::Ending ending = Sealed::Run(
        DoNothing, [] { return static_cast<int>(std::string(100000, 'x').size() % 256); });
    EXPECT_EQ(ending.exitCode, 100000 % 256) << ending.Told();
}

TEST_F(ASealedProcess, IsAllThatIsNeededToVerifyTokensWithOutsideReferences) {
    const std::vector<Attack> attacks = OutsideReferences();
    std::size_t count = 0;
    for (const Resolver& trust : {Provider::TrustInTheRoot(), Provider::TrustInTheSigner()})
        for (const Attack& attack : attacks) {
            const Sealed::Ending ending = Sealed::Run(WarmUp, [&] {
                return OutcomeOf(attack.token, trust, attack.tolerance) == attack.outcome ? 0 : 1;
            });
            EXPECT_EQ(ending.exitCode, 0) << attack.name << ": " << ending.Told();
            EXPECT_EQ(ending.refusedCall, -1) << attack.name << ": " << ending.Told();
            ++count;
        }
    std::cout << count << " tokens\n";
    RecordProperty("tokens", static_cast<int>(count));
}

/// What a parser does with everything switched on.
int ParseCarelessly(const std::string& token) {
    LibXml2::KeepQuiet();
    const LibXml2::DocumentHandle document(xmlReadMemory(
        token.data(), static_cast<int>(token.size()), nullptr, nullptr,
        XML_PARSE_NOENT | XML_PARSE_DTDLOAD | XML_PARSE_XINCLUDE | XML_PARSE_NOERROR));
    if (document) xmlXIncludeProcess(document.get());
    return 0;
}

// That the tokens are bait shows with a careless parser, which is stopped at many of them.
TEST_F(ASealedProcess, StopsACarelessParser) {
    std::size_t stopped = 0;
    for (const Attack& attack : OutsideReferences()) {
        const Sealed::Ending ending = Sealed::Run([] { ParseCarelessly("<x/>"); },
                                                  [&] { return ParseCarelessly(attack.token); });
        if (ending.refusedCall >= 0) ++stopped;
        const bool namesAFile = attack.name.find("/etc/passwd") != std::string::npos;
        if (namesAFile && attack.name.find("php") == std::string::npos) {
            EXPECT_GE(ending.refusedCall, 0) << attack.name;
        }
    }
    std::cout << stopped << " of the tokens make a careless parser look outside\n";
    RecordProperty("stopped", static_cast<int>(stopped));
    EXPECT_GE(stopped, 30U);
}

}  // namespace
}  // namespace Saml::Attacks
