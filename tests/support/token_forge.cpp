#include "support/token_forge.h"

#include <gtest/gtest.h>

namespace Forge {
namespace {

using namespace Saml;

class Writing {
  public:
    explicit Writing(const TokenSpec& spec)
        : spec_(spec), p_(spec.prefix.empty() ? "" : spec.prefix + ":") {}

    std::string Assertion() const {
        const std::string declaration = spec_.prefix.empty() ? "xmlns" : "xmlns:" + spec_.prefix;
        return "<" + p_ + "Assertion " + declaration +
               "=\"urn:oasis:names:tc:SAML:2.0:assertion\""
               " xmlns:del=\"urn:oasis:names:tc:SAML:2.0:conditions:delegation\" xmlns:ext=\"" +
               ProfileUri::ExtensionNamespace +
               "\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" ID=\"" + spec_.id +
               "\" IssueInstant=\"" + spec_.issueInstant + "\" Version=\"" + spec_.version + "\">" +
               Named("Issuer", spec_.issuer) + spec_.signature + Subject() + Conditions() +
               AdviceElement() + AuthnStatement() + AttributeStatement() + "</" + p_ + "Assertion>";
    }

  private:
    std::string Element(const std::string& name, const std::string& attributes,
                        const std::string& content) const {
        return "<" + p_ + name + attributes + ">" + content + "</" + p_ + name + ">";
    }

    std::string Named(const std::string& element, const Name& name) const {
        return Element(element, " Format=\"" + name.format + "\"", name.value);
    }

    std::string Subject() const {
        return Element("Subject", "", Named("NameID", spec_.subject) + Confirmation());
    }

    std::string Confirmation() const {
        const std::string method = spec_.holderOfKeyCertificate ? "holder-of-key" : "bearer";
        return Element("SubjectConfirmation",
                       " Method=\"urn:oasis:names:tc:SAML:2.0:cm:" + method + "\"",
                       (spec_.delegateId ? Named("NameID", *spec_.delegateId) : "") +
                           (spec_.holderOfKeyCertificate ? HolderOfKeyData() : BearerData()));
    }

    std::string BearerData() const {
        return Element(
            "SubjectConfirmationData",
            " NotOnOrAfter=\"" + spec_.confirmationNotOnOrAfter.value_or(spec_.notOnOrAfter) + "\"",
            "");
    }

    std::string HolderOfKeyData() const {
        std::string attributes = " xsi:type=\"" + p_ + "KeyInfoConfirmationDataType\"";
        if (spec_.confirmationNotOnOrAfter)
            attributes += " NotOnOrAfter=\"" + *spec_.confirmationNotOnOrAfter + "\"";
        return Element("SubjectConfirmationData", attributes,
                       "<KeyInfo xmlns=\"http://www.w3.org/2000/09/xmldsig#\"><X509Data>"
                       "<X509Certificate>" +
                           *spec_.holderOfKeyCertificate +
                           "</X509Certificate></X509Data></KeyInfo>");
    }

    std::string Conditions() const {
        return Element(
            "Conditions",
            " NotBefore=\"" + spec_.notBefore + "\" NotOnOrAfter=\"" + spec_.notOnOrAfter + "\"",
            Audience() + Proxy() + Renewal() + Delegation());
    }

    std::string Audience() const {
        if (spec_.audience.empty()) return {};
        std::string content;
        for (const std::string& audience : spec_.audience)
            content += Element("Audience", "", audience);
        return Element("AudienceRestriction", "", content);
    }

    std::string Proxy() const {
        if (!spec_.proxyCount) return {};
        return Element("ProxyRestriction", " Count=\"" + *spec_.proxyCount + "\"", "");
    }

    std::string Renewal() const {
        if (!spec_.renewRestriction) return {};
        std::string attributes = " xsi:type=\"ext:RenewRestrictionType\"";
        if (spec_.renewCount) attributes += " Count=\"" + *spec_.renewCount + "\"";
        return Element("Condition", attributes, "");
    }

    std::string Delegation() const {
        if (spec_.delegates.empty()) return {};
        std::string content;
        for (const Delegate& delegate : spec_.delegates)
            content += "<del:Delegate DelegationInstant=\"" + delegate.instant + "\">" +
                       Named("NameID", delegate.name) + "</del:Delegate>";
        return Element("Condition", " xsi:type=\"del:DelegationRestrictionType\"", content);
    }

    std::string AdviceElement() const {
        if (spec_.advice.empty()) return {};
        std::string content;
        for (const AdviceEntry& entry : spec_.advice)
            content += "<ext:RSAAdvice AdviceSource=\"" + entry.source + "\">" +
                       Attributes(entry.attributes) + "</ext:RSAAdvice>";
        return Element("Advice", "", content);
    }

    std::string AuthnStatement() const {
        return Element(
            "AuthnStatement", " AuthnInstant=\"" + spec_.authnInstant + "\"",
            Element("AuthnContext", "", Element("AuthnContextClassRef", "", spec_.contextClass)));
    }

    std::string AttributeStatement() const {
        if (spec_.attributes.empty()) return {};
        return Element("AttributeStatement", "", Attributes(spec_.attributes));
    }

    std::string Attributes(const std::vector<Attribute>& attributes) const {
        std::string text;
        for (const Attribute& attribute : attributes) {
            std::string written =
                " Name=\"" + attribute.name + "\" NameFormat=\"" + attribute.nameFormat + "\"";
            if (attribute.friendlyName)
                written += " FriendlyName=\"" + *attribute.friendlyName + "\"";
            std::string values;
            for (const std::string& value : attribute.values)
                values += Element("AttributeValue", "", value);
            text += Element("Attribute", written, values);
        }
        return text;
    }

    const TokenSpec& spec_;
    const std::string p_;
};

}  // namespace

std::string FromNow(std::int64_t seconds) {
    DateTime date;
    EXPECT_TRUE(DateTime::Create<std::int64_t>(DateTime::GetUtcDateTime().timeT() + seconds, date));
    return date.value();
}

std::string Write(const TokenSpec& spec) {
    return Writing(spec).Assertion();
}

std::string HollowSignature(const std::string& uri) {
    return "<ds:Signature xmlns:ds=\"http://www.w3.org/2000/09/xmldsig#\"><ds:SignedInfo>"
           "<ds:CanonicalizationMethod Algorithm=\"http://www.w3.org/2001/10/xml-exc-c14n#\"/>"
           "<ds:SignatureMethod Algorithm=\"http://www.w3.org/2001/04/xmldsig-more#rsa-sha256\"/>"
           "<ds:Reference URI=\"" +
           uri +
           "\"><ds:Transforms>"
           "<ds:Transform Algorithm=\"http://www.w3.org/2000/09/xmldsig#enveloped-signature\"/>"
           "<ds:Transform Algorithm=\"http://www.w3.org/2001/10/xml-exc-c14n#\"/></ds:Transforms>"
           "<ds:DigestMethod Algorithm=\"http://www.w3.org/2001/04/xmlenc#sha256\"/>"
           "<ds:DigestValue>AAAA</ds:DigestValue></ds:Reference></ds:SignedInfo>"
           "<ds:SignatureValue>AAAA</ds:SignatureValue></ds:Signature>";
}

std::string Sign(const std::string& xml, const Signer& signer, const SignatureSpec& choices) {
    using namespace Saml::Xml::Security;
    const boost::intrusive_ptr<Xml::Document> document = Parse(xml);
    Xml::ElementNode* const assertion = document->GetRootElement();
    boost::intrusive_ptr<Signature> signature;
    CreateBlankSignature(assertion, Algorithm::ExclusiveC14N, choices.signatureMethod,
                         choices.prefix, signature);
    assertion->InsertAfter(signature->GetElement(), assertion->GetFirstChildElement("Issuer"));

    std::string id;
    assertion->GetAttribute("ID", id);
    boost::intrusive_ptr<SignatureReference> reference;
    signature->AddReference(choices.uri.value_or("#" + id), choices.digestMethod, reference);
    reference->AddEnvelopedSignatureTransform();
    reference->SetCanonicalizationMethod(Algorithm::ExclusiveC14N);
    if (!signer.certificates.empty()) signature->SetKeyInfo(signer.certificates);
    signature->Sign(signer.privateKey);

    StringWriter text;
    assertion->Write(text);
    return text.data;
}

std::string Replaced(const std::string& text, const std::string& from, const std::string& to) {
    const std::size_t place = text.find(from);
    if (place == std::string::npos || text.find(from, place + 1) != std::string::npos) {
        ADD_FAILURE() << "not there exactly once: " << from;
        return text;
    }
    return std::string(text).replace(place, from.size(), to);
}

boost::intrusive_ptr<Xml::Document> Parse(const std::string& xml) {
    const boost::intrusive_ptr<Xml::XMLHandler> handler(
        Xml::CreateXMLDocumentHandler(1 << 30, 1 << 21, 8192));
    const boost::intrusive_ptr<Xml::XMLParser> parser(Xml::CreateXMLParser(handler.get()));
    boost::intrusive_ptr<Xml::Node> document;
    parser->Parse(xml, document);
    return boost::intrusive_ptr<Xml::Document>(dynamic_cast<Xml::Document*>(document.get()));
}

}  // namespace Forge
