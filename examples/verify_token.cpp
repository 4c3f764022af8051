// verify_token [--strict-limits] TOKEN.xml TRUSTED.pem...
//
// Says who the caller is, or why the token is refused. Each TRUSTED.pem holds one certificate: the
// identity provider's own, or an authority's above it. With --strict-limits a token of more than
// 1 MiB of content, 10,000 nodes or 64 levels, or with an entity declaration, is not even read to
// its end.
// Exit status: 0 accepted, 1 refused (the reason on standard error), 2 unusable arguments.

#include <saml/token.h>

#include <boost/core/demangle.hpp>

#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <list>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <vector>

namespace {

enum ExitStatus : int { Accepted = 0, Refused = 1, UnusableArguments = 2 };

constexpr char kUsage[] = "usage: verify_token [--strict-limits] TOKEN.xml TRUSTED.pem...";

struct Arguments {
    bool strictLimits = false;
    std::string token;
    boost::intrusive_ptr<Saml::Xml::Security::KeyInfoResolver> resolver;
};

std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string content{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (content.empty()) throw std::runtime_error("there is nothing to read");
    return content;
}

Saml::ByteBlob ReadCertificate(const std::string& path) {
    Saml::ByteBlob certificate;
    Saml::Xml::Security::CertificatePEMToBlob(ReadFile(path), certificate);
    return certificate;
}

// Whatever is wrong with an argument is reported with its name.
Arguments ReadArguments(std::vector<std::string> paths) {
    Arguments arguments;
    arguments.strictLimits = !paths.empty() && paths.front() == "--strict-limits";
    if (arguments.strictLimits) paths.erase(paths.begin());
    if (paths.size() < 2) throw std::runtime_error(kUsage);
    std::list<Saml::ByteBlob> trusted;
    for (const std::string& path : paths) {
        try {
            if (&path == &paths.front())
                arguments.token = ReadFile(path);
            else
                trusted.push_back(ReadCertificate(path));
        } catch (const std::exception& error) {
            throw std::runtime_error(path + ": " + error.what());
        }
    }
    // Trust is decided here: a signer's certificate must be one of these or lead up to one.
    Saml::Xml::Security::CreateTrustChainKeyResolver(trusted, arguments.resolver);
    return arguments;
}

// Texts of a token come from outside: none may steer the terminal or feign a line of our own.
std::string Printable(std::string text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte < 0x20 || byte == 0x7f) text[i] = '?';
        if (byte >= 0x80 && byte < 0xa0 && i > 0 && text[i - 1] == '\xC2')
            text[i - 1] = text[i] = '?';  // U+0080 to U+009F in UTF-8
    }
    return text;
}

void Print(const std::string& what, const std::string& value) {
    std::cout << "  " << what << std::string(12 - what.size(), ' ') << Printable(value) << '\n';
}

void PrintToken(const Saml::SamlToken& token) {
    const Saml::PrincipalId& subject = token.GetSubject();
    Print("caller", subject.Name + "@" + subject.Domain);
    Saml::PersonName person;
    token.GetPersonName(person);
    if (!person.FirstName.empty() || !person.LastName.empty())
        Print("name", person.FirstName + " " + person.LastName);

    // A bearer token speaks for whoever presents it. With holder-of-key the caller has yet to prove
    // that it holds the key of GetHolderOfKeyCertificate(), for example by its TLS certificate.
    const bool bearer = token.GetConfirmationType() == Saml::ConfirmationType::Bearer;
    Print("confirmed", bearer ? "bearer" : "holder-of-key, which is yet to be proved");
    Saml::DateTime start = token.GetStartTime();
    Saml::DateTime expiration = token.GetExpirationTime();
    Print("valid from", start.value());
    Print("valid until", expiration.value());

    for (const Saml::PrincipalId& group : token.GetGroups())
        Print("group", group.Domain + "\\" + group.Name);
    for (Saml::DelegateInfo& link : token.GetDelegationChain())  // the last one is the presenter
        Print("delegate", link.Delegate.Name + "@" + link.Delegate.Domain + " since " +
                              link.DelegationInstant.value());

    // The library does not know who we are: refusing tokens for other audiences is our part.
    std::set<std::string> audience;
    token.GetAudience(audience);
    for (const std::string& service : audience)
        Print("audience", service);
}

ExitStatus Refuse(const std::exception& reason) {
    std::cerr << boost::core::demangle(typeid(reason).name()) << ": " << Printable(reason.what())
              << '\n';
    return Refused;
}

// The hardened road: CreateSamlToken sets no limits, so the text is parsed with them beforehand.
std::shared_ptr<const Saml::SamlToken> CreateWithinLimits(const Arguments& arguments) {
    using namespace Saml::Xml;
    const boost::intrusive_ptr<XMLHandler> handler(CreateXMLDocumentHandler(1 << 20, 10000, 64));
    const boost::intrusive_ptr<XMLParser> parser(CreateXMLParser(handler.get()));
    boost::intrusive_ptr<Node> document;
    parser->Parse(arguments.token, true, document);
    return Saml::CreateSamlTokenFromDom(dynamic_cast<Document&>(*document).GetRootElement(),
                                        arguments.resolver.get());
}

ExitStatus Verify(const Arguments& arguments) {
    try {  // derived classes first: a clause for their base would take what is meant for theirs
        const auto token = arguments.strictLimits
                               ? CreateWithinLimits(arguments)
                               : Saml::CreateSamlToken(arguments.token, arguments.resolver.get());
        std::cout << "accepted\n";
        PrintToken(*token);
        return Accepted;
    } catch (const Saml::InvalidSignatureException& reason) {
        return Refuse(reason);  // altered, or signed by someone whom we do not trust
    } catch (const Saml::ParseException& reason) {
        return Refuse(reason);  // not a token of our profile, or not valid at this time
    } catch (const Saml::Xml::XMLParseException& reason) {
        return Refuse(reason);  // not even XML; reason.line tells where
    } catch (const std::exception& reason) {
        return Refuse(reason);  // Saml::Exception, the root of our classes, or memory ran out
    } catch (Saml::ParseException* thrown) {
        // A solution-user attribute without exactly one value is thrown as a pointer, which no
        // clause above sees, and which is ours to delete.
        const std::unique_ptr<Saml::ParseException> reason(thrown);
        return Refuse(*reason);
    }
}

}  // namespace

int main(int count, char** values) {
    Arguments arguments;
    try {
        arguments = ReadArguments({values + 1, values + count});
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return UnusableArguments;
    }
    return Verify(arguments);
}
