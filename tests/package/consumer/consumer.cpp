#include <saml/token.h>

#include <iostream>

// Uses something of each header, and fails when an exception is not recognised across the border.
int main() {
    try {
        Saml::CreateSamlToken("<a/>", nullptr);
    } catch (const Saml::InvalidArgumentException& refusal) {
        const boost::intrusive_ptr<Saml::Xml::Document> document(Saml::Xml::CreateDocument());
        boost::intrusive_ptr<Saml::Xml::Security::Canonicalizer> canonicalizer;
        Saml::Xml::Security::CreateCanonicalizer(Saml::Xml::Security::Algorithm::ExclusiveC14N,
                                                 canonicalizer);
        const std::string text = Saml::Base64::Encode({0x4d, 0x61, 0x6e});
        std::cout << refusal.what() << '\n' << text << '\n';
        return text == "TWFu" && canonicalizer && !document->GetRootElement() ? 0 : 1;
    }
    return 1;
}
