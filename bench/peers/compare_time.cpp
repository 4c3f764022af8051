// compare_time [--rounds N] [--turn SECONDS] [--without NAME]... [--goals-only]
//
// CPU time of the library, of the floor and of the peers, at the same work on the same tokens in
// one process, turn by turn. Prints Markdown. Exit status: 0 measured, whether goals are met or
// not; 1 the library itself is unfit to be measured; 2 unusable arguments.
#include "peers/fitness.h"
#include "support/floor.h"
#include "support/goals.h"
#include "support/machine.h"
#include "support/our_works.h"
#include "support/sizes.h"

#include <algorithm>
#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <stdexcept>
#include <utility>

namespace {

using namespace Bench;

constexpr char kOurs[] = "samltoken";
constexpr char kFloor[] = "floor";
/// Whoever gives the library a private key gives its DER; xmlsec1 can also keep it decoded.
constexpr char kKeyKept[] = "xmlsec1 with the key kept";

struct Arguments {
    int rounds = 15;
    double turn = 0.04;
    std::vector<std::string> without;
    bool goalsOnly = false;
};

Arguments Read(int count, char** values) {
    Arguments arguments;
    for (int i = 1; i < count; ++i) {
        const std::string name = values[i];
        if (name == "--goals-only") {
            arguments.goalsOnly = true;
            continue;
        }
        if (++i == count) throw std::invalid_argument(name + " needs a value");
        if (name == "--rounds")
            arguments.rounds = std::max(1, std::atoi(values[i]));
        else if (name == "--turn")
            arguments.turn = std::atof(values[i]);
        else if (name == "--without")
            arguments.without.emplace_back(values[i]);
        else
            throw std::invalid_argument("unknown: " + name);
    }
    return arguments;
}

void Require(bool accepted) {
    if (!accepted) throw std::runtime_error("a token was refused while it was measured");
}

/// All that is measured, without those that would be measured at something else than their work.
class Programme {
  public:
    explicit Programme(const Arguments& arguments)
        : arguments_(arguments), tokens_(TokensOfAllSizes()) {
        peers_ = FoundPeers(TheProvider().files);
        peers_.insert(peers_.begin(), Ours::AsPeer());
        for (const auto& [groups, token] : tokens_) {
            AddTokens(groups, token);
            AddParsing(groups, token);
            AddCanonicalization(groups, token);
            AddSigning(groups, token);
        }
    }

    const std::vector<Work>& Works() const { return works_; }
    const std::vector<std::string>& LeftOut() const { return leftOut_; }
    const Token& Of(std::size_t groups) const { return tokens_.at(groups); }

  private:
    void Add(const std::string& task, const std::string& who, std::size_t groups,
             const std::string& whyUnfit, std::function<void()> run) {
        const auto& without = arguments_.without;
        if (std::find(without.begin(), without.end(), who) != without.end()) return;
        const std::string name = Named(task, who, groups);
        if (!whyUnfit.empty() && who == kOurs) throw std::runtime_error(name + ": " + whyUnfit);
        if (!whyUnfit.empty())
            leftOut_.push_back(name + ": " + whyUnfit);
        else
            works_.push_back({name, task + ", " + std::to_string(groups), std::move(run)});
    }

    void AddVerification(const std::string& task, const std::string& who, std::size_t groups,
                         const Token& token, const Peer::Accepts& accepts) {
        if (!accepts) return;
        Add(task, who, groups, WhyUnfit(accepts, token),
            [accepts, &token] { Require(accepts(token.xml)); });
    }

    void AddTokens(std::size_t groups, const Token& token) {
        Add("known key", kFloor, groups, "", [&token] { Floor::KnownKey(token); });
        Add("chain", kFloor, groups, "", [&token] { Floor::Chain(token); });
        for (const Peer& peer : peers_) {
            AddVerification("known key", peer.name, groups, token, peer.knownKey);
            AddVerification("chain", peer.name, groups, token, peer.chain);
        }
    }

    void AddParsing(std::size_t groups, const Token& token) {
        Add("parse", kFloor, groups, "", [&token] { Floor::Tokenize(token.xml); });
        Add("parse", kOurs, groups, "", [&token] { Ours::Parse(token.xml); });
        if (const auto parse = FoundParser())
            Add("parse", "libxml2", groups, "", [parse, &token] { parse(token.xml); });
    }

    void AddCanonicalization(std::size_t groups, const Token& token) {
        const auto document = Ours::Parse(token.unsignedXml);
        const std::function<std::string()> ours = [document] {
            return Ours::ExclusiveForm(document->GetRootElement());
        };
        for (const auto& [who, form] :
             {std::pair<std::string, std::function<std::string()>>{kOurs, ours},
              {"libxml2", FoundCanonicalization(token.unsignedXml)}})
            if (form)
                Add("canonicalize", who, groups, WhyUnfit(form, token), [form = form] { form(); });
    }

    void AddSigning(std::size_t groups, const Token& token) {
        Add("sign", kFloor, groups, "", [&token] { Floor::Sign(token); });
        for (const auto& [who, signing] :
             {std::pair<std::string, Signing>{kOurs, Ours::SigningOf(token.unsignedXml)},
              {"xmlsec1",
               FoundSigning(TheProvider().files, token.unsignedXml, *TheProvider().privateKey)},
              {kKeyKept, FoundSigning(TheProvider().files, token.unsignedXml, {})}})
            if (signing)
                Add("sign", who, groups, WhyUnfit(signing),
                    [signing = signing] { signing(nullptr); });
    }

    const Arguments& arguments_;
    std::vector<Peer> peers_;
    std::map<std::size_t, Token> tokens_;
    std::vector<Work> works_;
    std::vector<std::string> leftOut_;
};

std::vector<Goal> Goals(const Programme& programme) {
    const auto goal = [&programme](std::size_t groups, const std::string& what,
                                   const std::string& task, const std::string& against,
                                   double limit) {
        return Goal{SizeOf(programme.Of(groups)) + ", " + what,
                    against,
                    Named(task, kOurs, groups),
                    Named(task, against, groups),
                    1.0,
                    limit};
    };
    const Token& middle = programme.Of(kMiddle);
    const Token& large = programme.Of(kLarge);
    return {
        goal(kSmall, "trust chain", "chain", kFloor, 1.10),
        goal(kSmall, "trust chain", "chain", "xmlsec1", 0.65),
        goal(kSmall, "trust set", "known key", kFloor, 1.5),
        goal(kSmall, "trust set", "known key", "xmlsec1", 0.8),
        goal(kMiddle, "trust chain", "chain", kFloor, 1.3),
        goal(kMiddle, "trust set", "known key", kFloor, 1.5),
        goal(kMiddle, "trust set", "known key", "xmlsec1", 0.5),
        goal(kLarge, "trust set", "known key", kFloor, 1.6),
        goal(kLarge, "trust set", "known key", "xmlsec1", 0.45),
        {SizeOf(large) + ", trust set, per byte", kOurs + (" at " + SizeOf(middle)),
         Named("known key", kOurs, kLarge), Named("known key", kOurs, kMiddle),
         static_cast<double>(middle.xml.size()) / static_cast<double>(large.xml.size()), 1.25},
        goal(kMiddle, "exclusive canonicalization", "canonicalize", "libxml2", 0.25),
        goal(kLarge, "parsing to a tree", "parse", kFloor, 1.3),
        goal(kLarge, "parsing to a tree", "parse", "libxml2", 1.0),
        goal(kSmall, "signing", "sign", kFloor, 1.1),
        goal(kSmall, "signing", "sign", "xmlsec1", 1.0),
        goal(kSmall, "signing", "sign", kKeyKept, 1.0),
    };
}

void PrintTimes(const Programme& programme, const Figures& seconds) {
    std::cout << "\n| task | who |";
    for (const std::size_t groups : kSizes)
        std::cout << ' ' << SizeOf(programme.Of(groups)) << ", us |";
    std::cout << "\n|---|---|---|---|---|\n" << std::setprecision(0);
    for (const Work& work : programme.Works()) {
        const std::string smallest = ", " + std::to_string(kSmall);
        if (work.name.size() < smallest.size() ||
            work.name.compare(work.name.size() - smallest.size(), smallest.size(), smallest) != 0)
            continue;
        const std::string row = work.name.substr(0, work.name.size() - smallest.size());
        const std::size_t comma = row.find(", ");
        std::cout << "| " << row.substr(0, comma) << " | " << row.substr(comma + 2);
        for (const std::size_t groups : kSizes) {
            const std::string cell = row + ", " + std::to_string(groups);
            std::cout << " | ";
            if (seconds.Has(cell)) std::cout << seconds.Median(cell) * 1e6;
        }
        std::cout << " |\n";
    }
}

void Run(const Arguments& arguments) {
    const Programme programme(arguments);
    const OtherWork others;
    const Figures seconds = Interleaved(programme.Works(), arguments.rounds, arguments.turn);
    const int missed = PrintGoals(Goals(programme), seconds, std::cout);
    std::cout << "\nGoals missed: " << missed << ". " << arguments.rounds
              << " rounds; CPU time, so that other work disturbs only through caches and clock; "
              << others.Account() << ".\n";
    for (const std::string& missing : MissingPeers())
        std::cout << "Not there when this was built: " << missing << ".\n";
    for (const std::string& leftOut : programme.LeftOut())
        std::cout << "Left out: " << leftOut << ".\n";
    if (!arguments.goalsOnly) PrintTimes(programme, seconds);
}

}  // namespace

int main(int count, char** values) {
    try {
        Run(Read(count, values));
        return 0;
    } catch (const std::invalid_argument& unusable) {
        std::cerr << unusable.what() << "\nusage: compare_time [--rounds N] [--turn SECONDS]"
                  << " [--without NAME]... [--goals-only]\n";
        return 2;
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
        return 1;
    }
}
