#include "saml/token/assertion_reader.h"

#include "saml/token/assertion_cursor.h"
#include "saml/token/conditions_reader.h"
#include "saml/token/saml_identifiers.h"
#include "saml/token/signature_coverage.h"
#include "saml/token/statements_reader.h"
#include "saml/token/subject_reader.h"

namespace Saml {
namespace {

constexpr char kNoSignature[] = "Expected element ds:Signature not found";
constexpr char kAfterStatements[] = "Unexpected elements under Assertion";
std::string SignatureSyntaxError(const std::string& detail) {
    return "Signature syntax error: " + detail;
}

// Whatever element stands at the signature's place: the signature's own reader judges it.
boost::intrusive_ptr<Xml::Security::Signature> ReadSignature(const AssertionElement& assertion,
                                                             AssertionCursor& children) {
    const std::optional<AssertionElement> element = children.TakeElement();
    if (!element) throw ParseException(kNoSignature);
    try {
        boost::intrusive_ptr<Xml::Security::Signature> signature;
        Xml::Security::CreateSignatureFromDom(&assertion.Node(), &element->Node(), signature);
        return signature;
    } catch (const Xml::Security::SignatureSyntaxException& refusal) {
        throw ParseException(SignatureSyntaxError(refusal.what()));
    }
}

}  // namespace

ParsedAssertion ReadAssertion(Xml::ElementNodeImpl& root) {
    const Xml::NamespaceContext namespaces(root);  // one for the whole pass
    const AssertionElement assertion(root, namespaces);
    assertion.Expect("Assertion", SamlUri::AssertionNamespace);
    assertion.CheckAttributes({"Version", "ID", "IssueInstant"});

    ParsedAssertion parsed;
    parsed.version = assertion.Attribute("Version");
    parsed.id = assertion.Attribute("ID");
    parsed.issueInstant = assertion.Date("IssueInstant");

    AssertionCursor children = assertion.Children();
    parsed.issuer = ReadNameRecord(children.Take("Issuer", SamlUri::AssertionNamespace));
    parsed.signature = ReadSignature(assertion, children);
    RequireWholeAssertionCovered(*parsed.signature, parsed.id);
    parsed.subject = ReadSubject(children.Take("Subject", SamlUri::AssertionNamespace));
    parsed.conditions = ReadConditions(children.Take("Conditions", SamlUri::AssertionNamespace));
    if (const auto advice = children.TakeIf("Advice", SamlUri::AssertionNamespace))
        parsed.advice = ReadAdvice(*advice);
    parsed.authentication =
        ReadAuthnStatement(children.Take("AuthnStatement", SamlUri::AssertionNamespace));
    if (!children.AtEnd())
        parsed.attributes = ReadAttributeStatement(
            children.Take("AttributeStatement", SamlUri::AssertionNamespace));
    children.ExpectEnd(kAfterStatements);
    return parsed;
}

}  // namespace Saml
