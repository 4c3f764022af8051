// Admits callers by the tokens that they bear, for a proxy that asks before it lets a request
// through, such as nginx with auth_request: token_gate --help.
//
// Exit status: 0 stopped by SIGTERM or SIGINT, 1 it could not listen, 2 unusable arguments.

#include "http_door.h"

#include <boost/asio/ip/address.hpp>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <csignal>
#include <exception>
#include <iostream>
#include <pthread.h>
#include <stdexcept>
#include <string>

namespace {

enum ExitStatus : int { Stopped = 0, Failed = 1, UnusableArguments = 2 };

struct Arguments {
    std::string listen = "127.0.0.1:8080";
    std::size_t threads = 2;
    Rules rules;
    std::vector<std::string> trustedPaths;
};

HttpDoor::Endpoint ParseEndpoint(const std::string& text) {
    const std::size_t colon = std::min(text.rfind(':'), text.size());
    std::string host = text.substr(0, colon);
    if (host.size() > 2 && host.front() == '[' && host.back() == ']')  // as RFC 3986 has IPv6
        host = host.substr(1, host.size() - 2);
    boost::system::error_code error;
    const auto address = boost::asio::ip::make_address(host, error);
    std::uint16_t port = 0;
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data() + std::min(colon + 1, text.size()), end, port);
    if (error || read.ec != std::errc() || read.ptr != end)
        throw std::runtime_error("--listen: " + text + " is no ADDRESS:PORT");
    return {address, port};
}

sigset_t OurSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGHUP, SIGTERM, SIGINT})
        sigaddset(&signals, signal);
    return signals;
}

// One line, whatever comes of it.
void Reload(TrustedCertificates& trusted) {
    try {
        trusted.Reload();
        std::cerr << "token_gate: the trusted certificates were read anew" << std::endl;
    } catch (const std::exception& error) {
        std::cerr << "token_gate: the trusted certificates stay as they were: " << error.what()
                  << std::endl;
    }
}

// Signals are taken here, where anything may be done, instead of in a handler, where little may.
void ReloadUntilStopped(TrustedCertificates& trusted, const sigset_t& signals) {
    constexpr timespec kInterval{1, 0};
    for (;;) {
        const int signal = sigtimedwait(&signals, nullptr, &kInterval);
        if (signal == SIGTERM || signal == SIGINT) return;
        if (signal == SIGHUP || trusted.HaveChanged()) Reload(trusted);
    }
}

ExitStatus Run(const Arguments& arguments) {
    const HttpDoor::Endpoint endpoint = ParseEndpoint(arguments.listen);
    TrustedCertificates trusted(arguments.trustedPaths);
    Gate gate(trusted, arguments.rules);
    const sigset_t signals = OurSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);  // inherited by the threads made from here on
    try {
        HttpDoor door(gate, endpoint, arguments.threads);
        std::cout << "listening on " << door.Address() << std::endl;
        ReloadUntilStopped(trusted, signals);
        return Stopped;
    } catch (const std::exception& error) {
        std::cerr << "token_gate: " << arguments.listen << ": " << error.what() << '\n';
        return Failed;
    }
}

void Describe(Arguments& arguments, CLI::App& app) {
    app.add_option("TRUSTED.pem", arguments.trustedPaths,
                   "One certificate each: the identity provider's own, or an authority's above it. "
                   "They are read anew when a file changes and on SIGHUP")
        ->required();
    app.add_option("--listen", arguments.listen, "ADDRESS:PORT; with port 0 a free one, printed")
        ->capture_default_str();
    app.add_option("--threads", arguments.threads, "That judge tokens")
        ->check(CLI::Range(1, 256))
        ->capture_default_str();
    app.add_option("--audience", arguments.rules.audience,
                   "URI of a service behind the gate, several times for several. A token that is "
                   "restricted to others is refused; without this option, any that is restricted");
    app.add_option("--max-bytes", arguments.rules.maxBytes, "A token may have")
        ->check(CLI::Range(1, 1 << 24))
        ->capture_default_str();
    app.add_flag("--once", arguments.rules.once,
                 "A token is good for one request to this process, until it expires and is "
                 "forgotten. Without it, it is good for a session of requests");
    app.add_option("--max-remembered", arguments.rules.maxRemembered,
                   "Tokens with --once; when so many are remembered no other is taken")
        ->check(CLI::Range(1, 1 << 30))
        ->capture_default_str();
    app.footer(
        "GET requests, of any path, with \"Authorization: Bearer BASE64\", the Base64 of an "
        "assertion's text, are answered by 200 with X-Principal: name@domain and X-Groups: "
        "domain\\name,... (every part percent-encoded), or by 401 with the reason as the body.\n"
        "Exit status: 0 stopped by SIGTERM or SIGINT, 1 it could not listen, 2 unusable "
        "arguments.");
}

ExitStatus RunAsTold(int count, char** values) {
    Arguments arguments;
    CLI::App app("Admits callers by the tokens that they bear.", "token_gate");
    Describe(arguments, app);
    try {
        app.parse(count, values);
    } catch (const CLI::Success& help) {
        app.exit(help);
        return Stopped;
    }
    return Run(arguments);
}

}  // namespace

int main(int count, char** values) {
    try {
        return RunAsTold(count, values);
    } catch (const std::exception& error) {
        std::cerr << "token_gate: " << error.what() << "; see --help\n";
        return UnusableArguments;
    }
}
