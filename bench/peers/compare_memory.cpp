// compare_memory
//
// What verifying a token takes from the heap, with the library, with the floor and with the peers:
// the peak and the number of allocations, after everything was done once. Prints Markdown. Exit
// status: 0 measured, whether goals are met or not; 1 not.
#include "peers/fitness.h"
#include "support/counted_heap.h"
#include "support/floor.h"
#include "support/goals.h"
#include "support/our_works.h"
#include "support/sizes.h"

#include <iostream>
#include <stdexcept>

namespace {

using namespace Bench;

const std::string kText = "text";

class Account {
  public:
    Account() : tokens_(TokensOfAllSizes()) {
        for (const auto& [groups, token] : tokens_)
            peaks_.Of(kText + std::to_string(groups))
                .push_back(static_cast<double>(token.xml.size()));
    }

    const Figures& Peaks() const { return peaks_; }

    void PrintHead() const {
        std::cout << "| task | who |";
        for (const auto& [groups, token] : tokens_)
            std::cout << " peak at " << SizeOf(token) << " | of the text | allocations |";
        std::cout << "\n|---|---|---|---|---|---|---|---|---|---|---|\n";
    }

    void PrintRow(const std::string& task, const std::string& who, const Peer::Accepts& accepts) {
        if (!accepts) return;
        std::cout << "| " << task << " | " << who;
        for (const auto& [groups, token] : tokens_) {
            const std::string unfit = who == "floor" ? "" : WhyUnfit(accepts, token);
            if (!unfit.empty()) {
                std::cout << " | left out: " << unfit << " | | ";
                continue;
            }
            accepts(token.xml);  // whatever is made at the first use
            const HeapUse use = HeapUseOf([&, &text = token.xml] { accepts(text); });
            const auto peak = static_cast<double>(use.peak);
            peaks_.Of(Named(task, who, groups)).push_back(peak);
            std::cout << " | " << std::fixed << std::setprecision(1) << peak / 1000 << " KB | "
                      << peak / static_cast<double>(token.xml.size()) << " x | " << use.allocations;
        }
        std::cout << " |\n";
    }

    /// The floor needs more of a token than its text.
    Peer Floor() const {
        const auto find = [this](const std::string& xml) -> const Token& {
            for (const auto& [groups, token] : tokens_)
                if (token.xml == xml) return token;
            throw std::logic_error("not one of the tokens");
        };
        return {"floor",
                [find](const std::string& xml) {
                    Floor::KnownKey(find(xml));
                    return true;
                },
                [find](const std::string& xml) {
                    Floor::Chain(find(xml));
                    return true;
                }};
    }

  private:
    std::map<std::size_t, Token> tokens_;
    Figures peaks_;
};

void Run() {
    std::vector<Peer> peers = FoundPeers(TheProvider().files);
    peers.insert(peers.begin(), Ours::AsPeer());
    Account account;
    peers.insert(peers.begin(), account.Floor());
    account.PrintHead();
    for (const Peer& peer : peers)
        account.PrintRow("known key", peer.name, peer.knownKey);
    for (const Peer& peer : peers)
        account.PrintRow("chain", peer.name, peer.chain);
    for (const std::string& missing : MissingPeers())
        std::cout << "\nNot there when this was built: " << missing << ".\n";

    std::cout << '\n';
    const std::string ours = Named("known key", "samltoken", kLarge);
    PrintGoals({{"peak of verifying 2 MB, trust set", "the text", ours,
                 kText + std::to_string(kLarge), 1.0, 6.0},
                {"peak of verifying 2 MB, trust set", "xmlsec1", ours,
                 Named("known key", "xmlsec1", kLarge), 1.0, 1.0}},
               account.Peaks(), std::cout);
}

}  // namespace

int main() {
    try {
        Run();
        return 0;
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
        return 1;
    }
}
