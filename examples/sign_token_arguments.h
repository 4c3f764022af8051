/// \file
/// The command line of sign_token, with the files that it names read already.
#pragma once

#include <saml/security.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdint>
#include <exception>
#include <fstream>
#include <iostream>
#include <list>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

/// Something that was asked for cannot be done; the message is one line for whoever asked.
struct UnusableArgument : std::runtime_error {
    using runtime_error::runtime_error;
};

struct Arguments {
    std::string assertion;                   ///< Text of the template.
    Saml::ByteBlob key;                      ///< Signs.
    std::list<Saml::ByteBlob> certificates;  ///< To be sent along, the signer's first.
    std::string subject;                     ///< Empty: the one of the template.
    std::vector<std::string> groups;         ///< Beside those of the template; so the next.
    std::vector<std::string> audience;
    std::int64_t start = 0;      ///< Minutes from now.
    std::int64_t lifetime = 60;  ///< Minutes.
    std::string output;          ///< Path; empty: standard output.
};

/// Whatever is wrong with a file is reported with its name.
inline std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();  // nothing from what cannot be read, such as a directory
    if (content.str().empty()) throw UnusableArgument(path + ": there is nothing to read");
    return content.str();
}

inline Saml::ByteBlob ReadPem(const std::string& path,
                              void (*toDer)(const std::string& pem, Saml::ByteBlob& der)) {
    Saml::ByteBlob der;
    try {
        toDer(ReadFile(path), der);
    } catch (const Saml::Exception& error) {
        throw UnusableArgument(path + ": " + error.what());
    }
    return der;
}

/// Most control characters cannot stand in XML at all, and Node::Write replaces those that can:
/// what is signed would not be what is sent on.
inline std::string WhyUnwritable(const std::string& text) {
    const auto isControl = [](unsigned char byte) { return byte < 0x20 || byte == 0x7f; };
    const bool found = std::any_of(text.begin(), text.end(), isControl);
    return found ? "control characters cannot be written into a token" : "";
}

/// Accepts two texts with `separator` between them; empty parts have no meaning in a token.
inline CLI::Validator TwoParts(char separator, const std::string& form) {
    return {[=](const std::string& text) {
                const std::size_t at =
                    separator == '@' ? text.rfind(separator) : text.find(separator);
                const bool has = at != std::string::npos && at != 0 && at + 1 != text.size();
                return has ? WhyUnwritable(text) : "not of the form " + form;
            },
            form};
}

/// \return Nothing when help was asked for and given.
/// \throws UnusableArgument
inline std::optional<Arguments> ReadArguments(int count, char** values) {
    constexpr std::int64_t kMostMinutes = 527040;  // of a leap year
    Arguments arguments;
    std::string assertion = UNSIGNED_ASSERTION;
    std::string key;
    std::vector<std::string> certificates(1);
    std::vector<std::string> chain;

    CLI::App app{"Fills a SAML 2.0 assertion, signs it and writes the token.", "sign_token"};
    app.footer("Exit status: 0 done, 1 failed, 2 unusable arguments.");
    app.add_option("--key", key, "PEM of the RSA key that signs")->required();
    app.add_option("--certificate", certificates.front(), "PEM of its certificate")->required();
    app.add_option("--chain", chain, "PEM of an authority above it, to be sent along; repeatable")
        ->allow_extra_args(false);
    app.add_option("--template", assertion, "Assertion with @ID@, @ISSUED@ and @EXPIRES@")
        ->capture_default_str();
    app.add_option("--subject", arguments.subject, "Who the token speaks of")
        ->check(TwoParts('@', "name@domain"));
    app.add_option("--group", arguments.groups, "A group of the subject; repeatable")
        ->allow_extra_args(false)
        ->check(TwoParts('\\', "domain\\name"));
    app.add_option("--audience", arguments.audience, "URI of a service; repeatable")
        ->allow_extra_args(false)
        ->check({WhyUnwritable, "URI"});
    app.add_option("--start", arguments.start, "Minutes from now, less than 0 for the past")
        ->check(CLI::Range(-kMostMinutes, kMostMinutes))
        ->capture_default_str();
    app.add_option("--lifetime", arguments.lifetime, "Minutes from the start")
        ->check(CLI::Range(std::int64_t{1}, kMostMinutes))
        ->capture_default_str();
    app.add_option("OUTPUT", arguments.output, "File to write; standard output without it");
    try {
        app.parse(count, values);
    } catch (const CLI::CallForHelp&) {
        std::cout << app.help();
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        throw UnusableArgument(error.what());
    }
    arguments.assertion = ReadFile(assertion);
    arguments.key = ReadPem(key, Saml::Xml::Security::PrivateKeyPEMToBlob);
    certificates.insert(certificates.end(), chain.begin(), chain.end());
    for (const std::string& path : certificates)
        arguments.certificates.push_back(ReadPem(path, Saml::Xml::Security::CertificatePEMToBlob));
    return arguments;
}
