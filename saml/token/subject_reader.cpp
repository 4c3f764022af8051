#include "saml/token/subject_reader.h"

#include "saml/security/dsig_identifiers.h"
#include "saml/token/saml_identifiers.h"

#include <memory>
#include <utility>
#include <vector>

namespace Saml {
namespace {

using Xml::Security::kSignatureNamespace;

constexpr char kAfterConfirmation[] = "Unexpected elements after SubjectConfirmation";
constexpr char kAfterConfirmationData[] = "Unexpected elements after SubjectConfirmationData";
constexpr char kAfterKeyInfo[] = "Unexpected elements after SubjectConfirmationData/KeyInfo";
constexpr char kAfterX509Data[] = "Unexpected elements after X509Data";
constexpr char kAfterX509Certificate[] = "Unexpected elements after X509Certificate";
constexpr char kInvalidBase64[] = "Invalid Base64";
std::string UnknownMethod(const std::string& method) {
    return "Unknown subject confirmation method: '" + method + "'";
}
std::string InvalidDataType(const std::string& type) {
    return "Invalid SubjectConfirmationData type: '" + type + "'";
}

constexpr char kMethod[] = "Method";
constexpr char kNotOnOrAfter[] = "NotOnOrAfter";

ConfirmationType MethodFromUri(const std::string& method) {
    if (method == SamlUri::BearerMethod) return ConfirmationType::Bearer;
    if (method == SamlUri::HolderOfKeyMethod) return ConfirmationType::HolderOfKey;
    throw ParseException(UnknownMethod(method));
}

void ReadBearerData(const AssertionElement& data, ParsedConfirmation& confirmation) {
    data.CheckAttributes({kNotOnOrAfter});
    data.ExpectEmpty();
    confirmation.notOnOrAfter = data.Date(kNotOnOrAfter);
}

ByteBlob ReadCertificate(const AssertionElement& certificate) {
    certificate.CheckAttributes({});
    std::string error;
    std::vector<unsigned char> der = Base64::Decode(certificate.Text(), error);
    if (!error.empty()) throw ParseException(kInvalidBase64);
    return std::make_shared<const std::vector<unsigned char>>(std::move(der));
}

// Narrower than the KeyInfo of a signature: one certificate, the one whose key the presenter holds.
ByteBlob ReadKeyInfo(const AssertionElement& keyInfo) {
    keyInfo.CheckAttributes({});
    AssertionCursor children = keyInfo.Children();
    const AssertionElement data = children.Take("X509Data", kSignatureNamespace);
    data.CheckAttributes({});
    AssertionCursor dataChildren = data.Children();
    ByteBlob certificate =
        ReadCertificate(dataChildren.Take("X509Certificate", kSignatureNamespace));
    dataChildren.ExpectEnd(kAfterX509Certificate);
    children.ExpectEnd(kAfterX509Data);
    return certificate;
}

void ReadHolderOfKeyData(const AssertionElement& data, ParsedConfirmation& confirmation) {
    data.CheckTypedAttributes({kNotOnOrAfter});
    if (!data.HasType("KeyInfoConfirmationDataType", SamlUri::AssertionNamespace))
        throw ParseException(InvalidDataType(data.TypeAsWritten()));
    if (data.HasAttribute(kNotOnOrAfter)) confirmation.notOnOrAfter = data.Date(kNotOnOrAfter);

    AssertionCursor children = data.Children();
    confirmation.certificate = ReadKeyInfo(children.Take("KeyInfo", kSignatureNamespace));
    children.ExpectEnd(kAfterKeyInfo);
}

ParsedConfirmation ReadConfirmation(const AssertionElement& element) {
    element.CheckAttributes({kMethod});
    ParsedConfirmation confirmation;
    confirmation.method = MethodFromUri(element.Attribute(kMethod));

    AssertionCursor children = element.Children();
    if (const auto delegateId = children.TakeIf("NameID", SamlUri::AssertionNamespace))
        confirmation.delegateId = ReadNameRecord(*delegateId);
    const AssertionElement data =
        children.Take("SubjectConfirmationData", SamlUri::AssertionNamespace);
    if (confirmation.method == ConfirmationType::Bearer)
        ReadBearerData(data, confirmation);
    else
        ReadHolderOfKeyData(data, confirmation);
    children.ExpectEnd(kAfterConfirmationData);
    return confirmation;
}

}  // namespace

NameRecord ReadNameRecord(const AssertionElement& element) {
    element.CheckAttributes({"Format"});
    return {element.Attribute("Format"), element.Text()};
}

ParsedSubject ReadSubject(const AssertionElement& subject) {
    subject.CheckAttributes({});
    AssertionCursor children = subject.Children();
    ParsedSubject result;
    result.nameId = ReadNameRecord(children.Take("NameID", SamlUri::AssertionNamespace));
    result.confirmation =
        ReadConfirmation(children.Take("SubjectConfirmation", SamlUri::AssertionNamespace));
    children.ExpectEnd(kAfterConfirmation);
    return result;
}

}  // namespace Saml
