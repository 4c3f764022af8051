#include "soak/resident_memory.h"
#include "soak/soak_tokens.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <exception>
#include <iomanip>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

/// soak [--tokens N] [--allowance KIB|any]
///
/// Judges N tokens, accepted and refused ones in turn, and tells how much memory is resident: after
/// the first thousand, every twentieth of the way, and at the end.
/// Exits with 1 when a token came to another end than it should, or when memory grew by more than
/// the allowance after the first thousand; with 2 for unusable arguments.
namespace {

constexpr std::size_t kSettled = 1000;
constexpr std::size_t kReports = 20;

struct Options {
    std::size_t tokens = 1000000;
    std::optional<std::size_t> allowance = 2048;
};

Options Read(const std::vector<std::string>& arguments) {
    Options options;
    for (std::size_t i = 0; i + 1 < arguments.size(); i += 2) {
        if (arguments[i] == "--tokens")
            options.tokens = std::stoul(arguments[i + 1]);
        else if (arguments[i] == "--allowance" && arguments[i + 1] == "any")
            options.allowance.reset();
        else if (arguments[i] == "--allowance")
            options.allowance = std::stoul(arguments[i + 1]);
        else
            throw std::invalid_argument(arguments[i]);
    }
    if (arguments.size() % 2 != 0) throw std::invalid_argument(arguments.back());
    if (options.tokens < kSettled) throw std::invalid_argument("at least a thousand tokens");
    return options;
}

class Run {
  public:
    explicit Run(const Options& options) : options_(options), tokens_(Soak::CreateTokens()) {}

    /// \return True when all went as it should.
    bool Go() {
        begun_ = std::chrono::steady_clock::now();
        const std::size_t step = std::max<std::size_t>(options_.tokens / kReports, 1);
        for (std::size_t done = 1; done <= options_.tokens; ++done) {
            if (!JudgeNext(done - 1)) return false;
            if (done == kSettled) settled_ = Report(done);
            if (done % step == 0 && done > kSettled) last_ = Report(done);
        }
        last_ = Report(options_.tokens);
        return Conclude();
    }

  private:
    bool JudgeNext(std::size_t number) {
        const Soak::Token& token = tokens_[number % tokens_.size()];
        const std::string outcome = Soak::Judge(token);
        if (outcome == token.outcome) {
            ++(outcome == "accepted" ? accepted_ : refused_);
            return true;
        }
        std::cout << "token " << number << ", " << token.name << ": " << outcome << "\n";
        return false;
    }

    std::size_t Report(std::size_t done) const {
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - begun_;
        const std::size_t resident = ResidentKibibytes();
        std::cout << std::setw(9) << done << " tokens  " << std::setw(8) << resident
                  << " KiB resident  " << std::fixed << std::setprecision(0)
                  << static_cast<double>(done) / elapsed.count() << " tokens/s" << std::endl;
        return resident;
    }

    bool Conclude() const {
        const std::size_t growth = last_ > settled_ ? last_ - settled_ : 0;
        std::cout << accepted_ << " accepted, " << refused_ << " refused; " << settled_
                  << " KiB after the first " << kSettled << ", " << last_
                  << " KiB at the end: " << growth << " KiB more";
        if (!options_.allowance) {
            std::cout << ", which is not judged here\n";
            return true;
        }
        std::cout << ", " << *options_.allowance << " allowed\n";
        return growth <= *options_.allowance;
    }

    const Options options_;
    const std::vector<Soak::Token> tokens_;
    std::chrono::steady_clock::time_point begun_;
    std::size_t accepted_ = 0;
    std::size_t refused_ = 0;
    std::size_t settled_ = 0;
    std::size_t last_ = 0;
};

}  // namespace

int main(int count, char** arguments) {
    Options options;
    try {
        options = Read({arguments + 1, arguments + count});
    } catch (const std::exception& failure) {
        std::cerr << "usage: soak [--tokens N] [--allowance KIB|any] (" << failure.what() << ")\n";
        return 2;
    }
    try {
        return Run(options).Go() ? 0 : 1;
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << "\n";
        return 1;
    }
}
