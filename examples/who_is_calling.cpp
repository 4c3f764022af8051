// who_is_calling TOKEN.xml TRUSTED.pem...
//
// The smallest useful program: the caller's name on standard output, or why the token is refused on
// standard error. Exit status 0 accepted, 1 refused, 2 unusable arguments.
#include <saml/token.h>

#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <list>
#include <stdexcept>
#include <string>

namespace {

std::string Contents(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) throw std::runtime_error("cannot read " + file);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::list<Saml::ByteBlob> Certificates(char** first, char** last) {
    std::list<Saml::ByteBlob> certificates;
    for (; first != last; ++first) {
        Saml::ByteBlob certificate;
        Saml::Xml::Security::CertificatePEMToBlob(Contents(*first), certificate);
        certificates.push_back(certificate);
    }
    return certificates;
}

int Judge(const std::string& token, Saml::Xml::Security::KeyInfoResolver* resolver) {
    try {
        const Saml::PrincipalId caller = Saml::CreateSamlToken(token, resolver)->GetSubject();
        std::cout << caller.Name << '@' << caller.Domain << '\n';
        return 0;
    } catch (const Saml::Exception& refusal) {
        std::cerr << "refused: " << refusal.what() << '\n';
    } catch (Saml::ParseException* refusal) {  // one kind of refusal is thrown as a pointer
        std::cerr << "refused: " << refusal->what() << '\n';
        delete refusal;
    }
    return 1;
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 3) {
        std::cerr << "usage: who_is_calling TOKEN.xml TRUSTED.pem...\n";
        return 2;
    }
    try {
        boost::intrusive_ptr<Saml::Xml::Security::KeyInfoResolver> resolver;
        Saml::Xml::Security::CreateTrustChainKeyResolver(
            Certificates(arguments + 2, arguments + count), resolver);
        return Judge(Contents(arguments[1]), resolver.get());
    } catch (const std::exception& problem) {
        std::cerr << "who_is_calling: " << problem.what() << '\n';
        return 2;
    }
}
