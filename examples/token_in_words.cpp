#include "explain.h"

#include <memory>
#include <set>

namespace {

using namespace Saml::Xml;

std::shared_ptr<const Saml::SamlToken> CreateOnRoad(const std::string& text, bool strictLimits,
                                                    Security::KeyInfoResolver& resolver,
                                                    std::int64_t tolerance) {
    if (!strictLimits) return Saml::CreateSamlToken(text, &resolver, tolerance);
    return Saml::CreateSamlTokenFromDom(ParseWithinLimits(text)->GetRootElement(), &resolver,
                                        tolerance);
}

}  // namespace

// The hardened road: CreateSamlToken sets no limits, so the text is parsed with them beforehand.
boost::intrusive_ptr<Document> ParseWithinLimits(const std::string& text) {
    const boost::intrusive_ptr<XMLHandler> handler(CreateXMLDocumentHandler(1 << 20, 10000, 64));
    const boost::intrusive_ptr<XMLParser> parser(CreateXMLParser(handler.get()));
    boost::intrusive_ptr<Node> document;
    parser->Parse(text, true, document);
    return boost::intrusive_ptr<Document>(&dynamic_cast<Document&>(*document));
}

std::shared_ptr<const Saml::SamlToken> CreateToken(const std::string& text, bool strictLimits,
                                                   Security::KeyInfoResolver& resolver,
                                                   std::int64_t tolerance) {
    try {
        return CreateOnRoad(text, strictLimits, resolver, tolerance);
    } catch (Saml::ParseException* thrown) {
        // A solution-user attribute without exactly one value is thrown as a pointer, which no
        // clause for exceptions sees, and which is ours to delete.
        const std::unique_ptr<Saml::ParseException> reason(thrown);
        throw Saml::ParseException(*reason);
    }
}

void Describe(const Saml::SamlToken& token, Step& step) {
    const Saml::PrincipalId& subject = token.GetSubject();
    step.Tell("caller", subject.Name + "@" + subject.Domain);
    Saml::PersonName person;
    token.GetPersonName(person);
    if (!person.FirstName.empty() || !person.LastName.empty())
        step.Tell("name", person.FirstName + " " + person.LastName);

    // A bearer token speaks for whoever presents it. With holder-of-key the caller has yet to prove
    // that it holds the key of GetHolderOfKeyCertificate(), for example by its TLS certificate.
    const bool bearer = token.GetConfirmationType() == Saml::ConfirmationType::Bearer;
    step.Tell("confirmed", bearer ? "bearer" : "holder-of-key, which is yet to be proved");
    Saml::DateTime start = token.GetStartTime();
    Saml::DateTime expiration = token.GetExpirationTime();
    step.Tell("valid from", start.value());
    step.Tell("valid until", expiration.value());

    for (const Saml::PrincipalId& group : token.GetGroups())
        step.Tell("group", group.Domain + "\\" + group.Name);
    for (Saml::DelegateInfo& link : token.GetDelegationChain())  // the last one is the presenter
        step.Tell("delegate", link.Delegate.Name + "@" + link.Delegate.Domain + " since " +
                                  link.DelegationInstant.value());

    // The library does not know who we are: refusing tokens for other audiences is our part.
    std::set<std::string> audience;
    token.GetAudience(audience);
    for (const std::string& service : audience)
        step.Tell("audience", service);
}
