#include "oracle/canonicalization/libxml2_canonicalizer.h"

#include "oracle/canonicalization/libxml2_documents.h"

#include <libxml/c14n.h>
#include <libxml/parser.h>

#include <unordered_set>

namespace LibXml2 {
namespace {

using Saml::Xml::Security::FreeWith;
using BufferHandle = std::unique_ptr<xmlOutputBuffer, FreeWith<xmlOutputBufferClose>>;
using ParserHandle = std::unique_ptr<xmlParserCtxt, FreeWith<xmlFreeParserCtxt>>;

const xmlChar* Chars(const std::string& text) {
    return reinterpret_cast<const xmlChar*>(text.c_str());
}

/// The node behind `node` in document order, within the whole document; null at its end.
xmlNode* NextInDocument(xmlNode* node) {
    if (node->type == XML_ELEMENT_NODE && node->children != nullptr) return node->children;
    while (node != nullptr && node->next == nullptr)
        node = node->parent;
    return node != nullptr ? node->next : nullptr;
}

std::vector<const xmlNode*> ElementsOf(xmlDoc* document) {
    std::vector<const xmlNode*> elements;
    for (xmlNode* node = xmlDocGetRootElement(document); node != nullptr;
         node = NextInDocument(node))
        if (node->type == XML_ELEMENT_NODE) elements.push_back(node);
    return elements;
}

using Elements = std::unordered_set<const xmlNode*>;

bool IsAtOrBelow(const xmlNode* node, const xmlNode* top) {
    while (node != nullptr && node != top)
        node = node->parent;
    return node != nullptr;
}

// Every other kind of node, namespaces among them, shares the fate of the element that holds it.
int IsInPart(void* elements, xmlNode* node, xmlNode* parent) {
    const xmlNode* const element = node->type == XML_ELEMENT_NODE ? node : parent;
    return static_cast<const Elements*>(elements)->count(element) != 0 ? 1 : 0;
}

}  // namespace

struct ParsedText::Tree {
    DocumentHandle document;
    bool isNamespaceWellFormed;
    std::vector<const xmlNode*> elements;

    Elements ElementsOfPart(const CanonicalPart& part) const {
        const xmlNode* const apex = elements.at(part.apex);
        const xmlNode* const leftOut = part.leftOut ? elements.at(*part.leftOut) : nullptr;
        Elements chosen;
        for (std::size_t i = part.apex; i != elements.size(); ++i) {
            if (!IsAtOrBelow(elements[i], apex)) break;
            if (leftOut == nullptr || !IsAtOrBelow(elements[i], leftOut))
                chosen.insert(elements[i]);
        }
        return chosen;
    }
};

ParsedText::ParsedText(const std::string& text) {
    KeepQuiet();
    const ParserHandle parser(xmlNewParserCtxt());
    if (!parser) throw Failure("no parser");
    DocumentHandle document(xmlCtxtReadMemory(
        parser.get(), text.data(), static_cast<int>(text.size()), nullptr, nullptr,
        XML_PARSE_NOENT | XML_PARSE_DTDATTR | XML_PARSE_NONET | XML_PARSE_HUGE));
    if (!document) throw Failure("not well-formed");
    std::vector<const xmlNode*> elements = ElementsOf(document.get());
    tree_.reset(new Tree{std::move(document), parser->nsWellFormed == 1, std::move(elements)});
}

ParsedText::~ParsedText() = default;

bool ParsedText::IsNamespaceWellFormed() const noexcept {
    return tree_->isNamespaceWellFormed;
}

std::size_t ParsedText::CountOfElements() const noexcept {
    return tree_->elements.size();
}

std::vector<std::size_t> ParsedText::ElementsNamed(const std::string& namespaceUri,
                                                   const std::string& localName) const {
    std::vector<std::size_t> numbers;
    for (std::size_t i = 0; i != tree_->elements.size(); ++i) {
        const xmlNode& element = *tree_->elements[i];
        const xmlChar* const uri = element.ns != nullptr ? element.ns->href : Chars("");
        if (xmlStrEqual(element.name, Chars(localName)) == 1 &&
            xmlStrEqual(uri, Chars(namespaceUri)) == 1)
            numbers.push_back(i);
    }
    return numbers;
}

std::string ParsedText::CanonicalForm(const CanonicalPart& part) const {
    KeepQuiet();
    Elements elements = tree_->ElementsOfPart(part);
    std::vector<std::string> prefixes = part.prefixes;
    std::vector<xmlChar*> words;
    for (std::string& prefix : prefixes)
        words.push_back(reinterpret_cast<xmlChar*>(prefix.data()));
    words.push_back(nullptr);

    const BufferHandle out(xmlAllocOutputBuffer(nullptr));
    if (!out) throw Failure("no buffer");
    const bool isExclusive = part.method == Method::Exclusive;
    const int written = xmlC14NExecute(tree_->document.get(), IsInPart, &elements,
                                       isExclusive ? XML_C14N_EXCLUSIVE_1_0 : XML_C14N_1_0,
                                       isExclusive ? words.data() : nullptr, 0, out.get());
    if (written < 0) throw Failure("not canonicalized");
    return std::string(reinterpret_cast<const char*>(xmlOutputBufferGetContent(out.get())),
                       xmlOutputBufferGetSize(out.get()));
}

std::string CanonicalForm(const std::string& text, const CanonicalPart& part) {
    return ParsedText(text).CanonicalForm(part);
}

}  // namespace LibXml2
