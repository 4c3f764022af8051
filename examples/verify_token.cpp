// Says who the caller is, or why the token is refused: verify_token --help.
// Exit status: 0 accepted, 1 refused (the reason on standard error), 2 unusable arguments.

#include "explain.h"

#include <CLI/CLI.hpp>
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <list>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

enum ExitStatus : int { Accepted = 0, Refused = 1, UnusableArguments = 2 };

struct Arguments {
    bool strictLimits = false;
    bool explain = false;
    bool json = false;
    std::string tokenPath;
    std::vector<std::string> trustedPaths;
};

std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string content{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (content.empty()) throw std::runtime_error(path + ": there is nothing to read");
    return content;
}

// Trust is decided here: a signer's certificate must be one of these or lead up to one.
boost::intrusive_ptr<Saml::Xml::Security::KeyInfoResolver> CreateResolver(
    const std::vector<std::string>& paths) {
    std::list<Saml::ByteBlob> trusted;
    for (const std::string& path : paths) {
        const std::string pem = ReadFile(path);
        try {
            Saml::Xml::Security::CertificatePEMToBlob(pem, trusted.emplace_back());
        } catch (const std::exception& error) {
            throw std::runtime_error(path + ": " + error.what());
        }
    }
    boost::intrusive_ptr<Saml::Xml::Security::KeyInfoResolver> resolver;
    Saml::Xml::Security::CreateTrustChainKeyResolver(trusted, resolver);
    return resolver;
}

bool IsColoured() {
    return isatty(STDOUT_FILENO) == 1 && std::getenv("NO_COLOR") == nullptr;
}

ExitStatus ShowRoad(const Arguments& arguments, const std::string& text,
                    Saml::Xml::Security::KeyInfoResolver& resolver) {
    const Report report = Explain(text, arguments.strictLimits, resolver);
    if (arguments.json)
        WriteJson(report, std::cout);
    else
        WriteText(report, IsColoured(), std::cout);
    if (!report.accepted) std::cerr << report.refusal << '\n';
    return report.accepted ? Accepted : Refused;
}

ExitStatus Verify(const Arguments& arguments, const std::string& text,
                  Saml::Xml::Security::KeyInfoResolver& resolver) {
    const auto refuse = [](const std::exception& reason) {
        std::cerr << InWords(reason) << '\n';
        return Refused;
    };
    try {  // derived classes first: a clause for their base would take what is meant for theirs
        Step step;
        Describe(*CreateToken(text, arguments.strictLimits, resolver, Saml::DefaultClockTolerance),
                 step);
        std::cout << "accepted\n";
        for (const auto& [what, value] : step.facts)
            std::cout << "  " << what << std::string(12 - what.size(), ' ') << Printable(value)
                      << '\n';
        return Accepted;
    } catch (const Saml::InvalidSignatureException& reason) {
        return refuse(reason);  // altered, or signed by someone whom we do not trust
    } catch (const Saml::ParseException& reason) {
        return refuse(reason);  // not a token of our profile, or not valid at this time
    } catch (const Saml::Xml::XMLParseException& reason) {
        return refuse(reason);  // not even XML; reason.line tells where
    } catch (const std::exception& reason) {
        return refuse(reason);  // Saml::Exception, the root of our classes, or memory ran out
    }
}

ExitStatus Run(int count, char** values) {
    Arguments arguments;
    CLI::App app("Says who the caller is, or why the token is refused.", "verify_token");
    app.add_option("TOKEN.xml", arguments.tokenPath, "The token")->required();
    app.add_option("TRUSTED.pem", arguments.trustedPaths,
                   "One certificate each: the identity provider's own, or an authority's above it")
        ->required();
    app.add_flag("--strict-limits", arguments.strictLimits,
                 "Not even read to its end is a token of more than 1 MiB of content, 10,000 nodes "
                 "or 64 levels, or with an entity declaration");
    app.add_flag("--explain", arguments.explain, "Tell of every step of the road whether it holds");
    app.add_flag("--json", arguments.json, "The same for machines");
    app.footer("Exit status: 0 accepted, 1 refused (why on standard error), 2 unusable arguments.");
    try {
        app.parse(count, values);
    } catch (const CLI::Success& help) {
        app.exit(help);
        return Accepted;
    }
    const std::string text = ReadFile(arguments.tokenPath);
    const auto resolver = CreateResolver(arguments.trustedPaths);
    return arguments.explain || arguments.json ? ShowRoad(arguments, text, *resolver)
                                               : Verify(arguments, text, *resolver);
}

}  // namespace

int main(int count, char** values) {
    try {
        return Run(count, values);
    } catch (const std::exception& error) {
        std::cerr << "verify_token: " << error.what() << "; see --help\n";
        return UnusableArguments;
    }
}
