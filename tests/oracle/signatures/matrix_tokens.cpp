#include "oracle/signatures/matrix_tokens.h"

#include "oracle/profile/plain_values.h"
#include "oracle/signatures/xmlsec1.h"
#include "support/test_keys.h"
#include "support/token_forge.h"

#include <gtest/gtest.h>

#include <set>
#include <stdexcept>
#include <vector>

namespace SignatureMatrix {
namespace {

using namespace Saml;
using TestKeys::CertificateNamed;

Forge::TokenSpec SpecOf(const Style& style, const Kind& kind) {
    Forge::TokenSpec spec;
    spec.prefix = style.samlPrefix;
    if (kind.holderOfKey)
        spec.holderOfKeyCertificate = Oracle::ToBase64(*CertificateNamed("self-signed").der);
    if (kind.delegated) {
        const Forge::Name service{ProfileUri::UpnNameFormat, "report@corp"};
        spec.delegates = {{{ProfileUri::UpnNameFormat, "portal@corp"}}, {service}};
        spec.delegateId = service;
    }
    spec.audience = {"https://a.example/?x=1&amp;y=2", "https://b.example/"};
    spec.proxyCount = "1";
    spec.attributes = {{ProfileUri::GroupIdentity, {"corp\\Staff &#x9;.", "corp\\&lt;&#xE9;&gt;"}}};
    return spec;
}

/// Moves the declarations of both prefixes from the assertion and its signature to an element
/// around them.
std::string InEnvelope(const std::string& xml) {
    const std::string declaration = " xmlns:saml2=\"urn:oasis:names:tc:SAML:2.0:assertion\"";
    return "<e:Envelope xmlns:e=\"urn:example:envelope\"" + declaration +
           " xmlns:ds=\"http://www.w3.org/2000/09/xmldsig#\"><e:Body>" +
           Forge::Replaced(xml, declaration, "") + "</e:Body></e:Envelope>";
}

std::string WithTemplate(const Cell& cell, Forge::TokenSpec spec, const std::string& value) {
    XmlSec1::TemplateForm form;
    form.prefix = cell.style.dsigPrefix;
    form.declaresPrefix = !cell.style.declaredAbove;
    form.uri = cell.uri.namesTheAssertion ? "#" + spec.id : "";
    form.signatureMethod = cell.method.identifier;
    form.digestMethod = cell.digest.identifier;
    form.prefixList = cell.Prefixes();
    form.value = value;
    spec.signature = XmlSec1::Template(form);
    const std::string xml = Forge::Write(spec);
    return cell.style.declaredAbove ? InEnvelope(xml) : xml;
}

Forge::Signer SignerOf(const Cell& cell) {
    const auto& certificate = CertificateNamed(cell.size.signer);
    return {certificate.key->privateKey, {certificate.der, CertificateNamed("intermediate").der}};
}

std::string WithBlankSignature(const Cell& cell, const Forge::TokenSpec& spec) {
    Forge::SignatureSpec choices;
    if (!cell.uri.namesTheAssertion) choices.uri = "";
    choices.signatureMethod = cell.method.identifier;
    choices.digestMethod = cell.digest.identifier;
    choices.prefix = cell.style.dsigPrefix;
    return Forge::Sign(Forge::Write(spec), SignerOf(cell), choices);
}

/// A signature is read from the template, its values being "AAAA", and signed then.
std::string WithFilledSignature(const Cell& cell, const Forge::TokenSpec& spec) {
    const auto document = Forge::Parse(WithTemplate(cell, spec, "AAAA"));
    Xml::ElementNode* const assertion = AssertionOf(*document, cell.style);
    boost::intrusive_ptr<Xml::Security::Signature> signature;
    Xml::Security::CreateSignatureFromDom(assertion, assertion->GetFirstChildElement("Signature"),
                                          signature);
    const Forge::Signer signer = SignerOf(cell);
    signature->SetKeyInfo(signer.certificates);
    signature->Sign(signer.privateKey);

    StringWriter text;
    document->GetRootElement()->Write(text);
    return text.data;
}

/// The only element among the children, whatever its name.
Xml::ElementNode* ElementIn(Xml::Node& parent) {
    for (Xml::Node* child = parent.GetFirstChild(); child != nullptr;
         child = child->GetNextSibling())
        if (auto* const element = dynamic_cast<Xml::ElementNode*>(child)) return element;
    throw std::runtime_error("an ancestor of the assertion is empty");
}

}  // namespace

ResolverHandle ChainBelowRoot() {
    ResolverHandle resolver;
    Xml::Security::CreateTrustChainKeyResolver({CertificateNamed("root").der}, resolver);
    return resolver;
}

ResolverHandle SetOf(const std::string& certificate) {
    ResolverHandle resolver;
    Xml::Security::CreateTrustSetKeyResolver({CertificateNamed(certificate).der}, resolver);
    return resolver;
}

std::string SignedByXmlSec1(const Cell& cell) {
    Forge::TokenSpec spec = SpecOf(cell.style, cell.kind);
    // Canonical XML 1.0, 2.3: what parsing would normalise stands as references in the signed form.
    spec.attributes.push_back({"urn:example:spellings",
                               {"two\nlines&#xD;", "\xF0\x9F\x94\x91 &quot;&#xFC;&apos;"},
                               "urn:example:format",
                               "tab&#x9;feed&#xA;return&#xD; &quot;\xC3\xBC&quot; &lt;"});
    const std::string xml = WithTemplate(cell, spec, "");
    const std::string prefix = spec.prefix.empty() ? "" : spec.prefix + ":";
    const std::string conditions = "<" + prefix + "Conditions ";
    const std::string commented =
        Forge::Replaced(xml, conditions, "<!-- not signed --> \n" + conditions);
    return XmlSec1::Sign(commented, cell.size.signer);
}

std::string SignedByUs(const Cell& cell) {
    const Forge::TokenSpec spec = SpecOf(cell.style, cell.kind);
    const bool needsTemplate = cell.style.declaredAbove || cell.list.words[0] != '\0';
    return needsTemplate ? WithFilledSignature(cell, spec) : WithBlankSignature(cell, spec);
}

Xml::ElementNode* AssertionOf(Xml::Document& document, const Style& style) {
    Xml::ElementNode* const root = document.GetRootElement();
    return style.declaredAbove ? ElementIn(*ElementIn(*root)) : root;
}

std::shared_ptr<const SamlToken> TokenFrom(const std::string& xml, const Style& style,
                                           const ResolverHandle& resolver) {
    if (!style.declaredAbove) return CreateSamlToken(xml, resolver.get());
    const auto document = Forge::Parse(xml);
    return CreateSamlTokenFromDom(AssertionOf(*document, style), resolver.get());
}

void ExpectWhatWasSaid(const SamlToken& token, const Kind& kind) {
    EXPECT_EQ(token.GetSubject().Name, "jdoe");
    EXPECT_EQ(token.GetSubject().Domain, "corp");
    EXPECT_EQ(token.GetConfirmationType(),
              kind.holderOfKey ? ConfirmationType::HolderOfKey : ConfirmationType::Bearer);
    EXPECT_EQ(token.GetHolderOfKeyCertificate() != nullptr, kind.holderOfKey);
    if (kind.holderOfKey) {
        EXPECT_EQ(*token.GetHolderOfKeyCertificate(), *CertificateNamed("self-signed").der);
    }

    const std::vector<DelegateInfo> chain = token.GetDelegationChain();
    ASSERT_EQ(chain.size(), kind.delegated ? 2u : 0u);
    if (kind.delegated) {
        EXPECT_EQ(chain.front().Delegate.Name, "portal");
        EXPECT_EQ(chain.back().Delegate.Name, "report");
    }

    std::set<std::string> audience;
    token.GetAudience(audience);
    EXPECT_EQ(audience,
              (std::set<std::string>{"https://a.example/?x=1&y=2", "https://b.example/"}));
    const std::vector<PrincipalId> groups = token.GetGroups();
    ASSERT_EQ(groups.size(), 2u);
    EXPECT_EQ(groups.front().Name, "Staff \t.");
    EXPECT_EQ(groups.back().Name, "<\xC3\xA9>");
    EXPECT_TRUE(token.IsDelegable());
}

}  // namespace SignatureMatrix
