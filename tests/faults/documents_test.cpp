#include "faults/faulty_calls.h"
#include "saml/security.h"
#include "support/xml_trees.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace Saml::Faults {
namespace {

using Xml::ElementNode;
using Xml::Held;
using Xml::Node;
using Xml::XMLParser;

constexpr char kText[] =
    "<?xml version='1.0' encoding='UTF-8'?><!DOCTYPE p:a [<!ATTLIST b kind CDATA 'plain'>]>"
    "<!--before--><p:a xmlns:p='urn:of-the-prefix' xmlns='urn:by-default' longer='an attribute "
    "value that is longer than what a string holds by itself'>text &amp; more<b/><b>of a text "
    "that is longer than what a string holds by itself</b><![CDATA[section]]><!--inside-->"
    "</p:a><?target data?>";

Held<XMLParser> NewParser() {
    return Held<XMLParser>(Xml::CreateXMLParser(Xml::CreateXMLDocumentHandler(100000, 1000, 10)));
}

std::string Told(const Held<Node>& document) {
    return document ? Xml::Outline(*document) : "none";
}

FaultyCall Parse(const std::string& text, bool enforceLimits) {
    const Held<XMLParser> parser = NewParser();
    return CallFor<Held<Node>>(
        [=](Held<Node>& document) { parser->Parse(text, enforceLimits, document); }, Told,
        [] { return Held<Node>(Xml::CreateDocument()); });
}

/// A parser that has parsed keeps what it needs to begin again.
const Failures kParserFailures{
    {"bad_alloc", "XMLParseException: parsing aborted"}, {"XMLParseException: out of memory"}, {}};
/// One that has refused a document does not.
Failures FailuresOfARefusal() {
    Failures failures = kParserFailures;
    failures.expat.insert("bad_alloc");
    return failures;
}

TEST(ParserInShortage, BuildsTheDocumentOrReportsTheShortage) {
    ExpectSoundInShortage(Parse(kText, false), kReturned, kParserFailures);
}

TEST(ParserInShortage, BuildsTheDocumentWithinLimitsOrReportsTheShortage) {
    ExpectSoundInShortage(Parse(kText, true), kReturned, kParserFailures);
}

TEST(ParserInShortage, EnforcesItsLimits) {
    std::string deep;
    for (int i = 0; i < 12; ++i)
        deep += "<a>";
    ExpectSoundInShortage(Parse(deep, true), "XMLParseException: parsing aborted",
                          FailuresOfARefusal());
}

TEST(ParserInShortage, RefusesEntityDeclarations) {
    ExpectSoundInShortage(Parse("<!DOCTYPE a [<!ENTITY e 'text'>]><a>&e;</a>", true),
                          "XMLParseException: parsing aborted", FailuresOfARefusal());
}

TEST(ParserInShortage, IsMadeOrNot) {
    const FaultyCall call = CallFor<Held<XMLParser>>(
        [](Held<XMLParser>& parser) {
            const Held<Xml::XMLHandler> handler(Xml::CreateXMLDocumentHandler(0, 0, 0));
            parser = Xml::CreateXMLParser(handler.get());
        },
        [](const Held<XMLParser>& parser) { return parser ? "made" : "none"; },
        [] { return Held<XMLParser>(); });
    ExpectSoundInShortage(call, kReturned, {{"bad_alloc"}, {"bad_alloc"}, {}});
}

/// All that a document says by the functions that only read it.
std::string ReadThrough(Xml::Document& document) {
    StringWriter out;
    ElementNode* const root = document.GetRootElement();
    for (const char* const algorithm :
         {Xml::Security::Algorithm::InclusiveC14N, Xml::Security::Algorithm::ExclusiveC14N}) {
        boost::intrusive_ptr<Xml::Security::Canonicalizer> canonicalizer;
        Xml::Security::CreateCanonicalizer(algorithm, canonicalizer);
        canonicalizer->Canonicalize(root, out);
    }
    root->Write(out);
    root->WriteFormatted(out);
    std::string value;
    Xml::EvaluateSimplePath(&document, "a/@longer", value);
    std::vector<std::string> values;
    Xml::EvaluateMultiPath(&document, "a/b", values);
    std::map<std::string, std::string> attributes;
    root->GetAttributes(attributes);
    std::string uri;
    Xml::GetNamespace(root, uri);
    const Xml::ExpandedName name = root->GetExpandedName();
    ElementNode* const b = root->GetFirstChildElement(Xml::ExpandedName{"urn:by-default", "b"});
    return out.data + value + values.at(0) + std::to_string(attributes.size()) + uri +
           name.namespaceUri + name.localName + b->GetQualifiedName() +
           b->GetExpandedName().namespaceUri;
}

TEST(DocumentInShortage, IsReadOrTheShortageReported) {
    const Held<Xml::Document> document = Xml::Parsed(kText);
    const std::string before = Xml::Outline(*document);
    const FaultyCall call = CallFor<std::string>(
        [&](std::string& result) { result = ReadThrough(*document); },
        [](const std::string& result) { return result; }, [] { return std::string("old"); });
    ExpectSoundInShortage(call, kReturned, {{"bad_alloc"}, {}, {}});
    EXPECT_EQ(Xml::Outline(*document), before);
    Xml::ExpectSoundLinks(*document);
}

TEST(DocumentInShortage, TakesAnAttributeWholeOrNotAtAll) {
    const std::string name = "a name that is longer than what a string holds by itself";
    const FaultyCall call = CallFor<Held<ElementNode>>(
        [&](Held<ElementNode>& element) { element->SetAttribute(name, name); },
        [](const Held<ElementNode>& element) { return Xml::Outline(*element); },
        [] { return Xml::NewElement("a", "p"); });
    ExpectSoundInShortage(call, kReturned, {{"bad_alloc"}, {}, {}});
}

// The first change of what a parser reported moves all of it.
TEST(DocumentInShortage, ChangesReportedAttributesWhollyOrNotAtAll) {
    const auto parsed = [] {
        return Xml::Parsed("<a b='1' c='a value that is longer than what a string holds'/>");
    };
    const auto told = [](const Held<Xml::Document>& document) { return Xml::Outline(*document); };
    for (const char* name : {"b", "c", "d"}) {
        const FaultyCall set = CallFor<Held<Xml::Document>>(
            [name](Held<Xml::Document>& document) {
                document->GetRootElement()->SetAttribute(name, "another long value, longer yet");
            },
            told, parsed);
        ExpectSoundInShortage(set, kReturned, {{"bad_alloc"}, {}, {}});
    }
    const FaultyCall remove = CallFor<Held<Xml::Document>>(
        [](Held<Xml::Document>& document) { document->GetRootElement()->RemoveAttribute("b"); },
        told, parsed);
    ExpectSoundInShortage(remove, kReturned, {{"bad_alloc"}, {}, {}});
}

TEST(DocumentInShortage, IsBuiltByHandOrReleased) {
    const FaultyCall call = CallFor<Held<Xml::Document>>(
        [](Held<Xml::Document>& result) {
            const Held<Xml::Document> document = Xml::NewDocument();
            document->SetVersion("a version that is longer than what a string holds by itself");
            document->AppendChild(Xml::NewComment("comment").get());
            const Held<ElementNode> root = Xml::NewElement("root");
            document->SetRootElement(root.get());
            const Held<Xml::CDataNode> section = Xml::NewCData();
            section->AppendChild(Xml::NewText("text").get());
            root->AppendChild(section.get());
            root->InsertBefore(Xml::NewElement("first").get(), section.get());
            result = document;
        },
        [](const Held<Xml::Document>& document) { return Told(document); },
        [] { return Held<Xml::Document>(); });
    ExpectSoundInShortage(call, kReturned, {{"bad_alloc"}, {}, {}});
}

TEST(ValuesInShortage, AreMadeOrTheShortageReported) {
    const std::string date = "2020-02-29T12:34:56.789Z";
    const FaultyCall call = CallFor<std::string>(
        [&](std::string& result) {
            DateTime read;
            if (!DateTime::Create(date, read)) throw Exception("no date");
            DateTime made;
            if (!DateTime::Create(read.timeT(), made)) throw Exception("no seconds");
            std::string error;
            const std::vector<unsigned char> bytes = Base64::Decode("AAECAwQFBgcICQ==", error);
            result = read.value() + made.value() + Base64::Encode(bytes) + error;
        },
        [](const std::string& result) { return result; }, [] { return std::string("old"); });
    ExpectSoundInShortage(call, kReturned, {{"bad_alloc"}, {}, {}});
}

}  // namespace
}  // namespace Saml::Faults
