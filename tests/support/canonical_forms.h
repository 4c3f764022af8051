#pragma once

#include "saml/security.h"
#include "saml/security/c14n_canonicalizer.h"
#include "support/xml_trees.h"

#include <stdexcept>
#include <string>
#include <vector>

/// Canonical forms as strings, of elements picked out of small documents.
namespace Saml::Xml::Security {

/// The first element at or below `top`, in document order, with this local name.
inline ElementNode& ElementNamed(Node& top, const std::string& localName) {
    std::vector<Node*> pending{&top};
    while (!pending.empty()) {
        Node* const node = pending.back();
        pending.pop_back();
        auto* const element = dynamic_cast<ElementNode*>(node);
        if (element != nullptr && element->GetLocalName() == localName) return *element;
        const std::vector<Node*> children = ChildrenOf(*node);
        pending.insert(pending.end(), children.rbegin(), children.rend());
    }
    throw std::runtime_error("no element is called " + localName);
}

/// By the exported functions.
inline std::string CanonicalForm(const char* algorithm, Node& apex) {
    boost::intrusive_ptr<Canonicalizer> canonicalizer;
    CreateCanonicalizer(algorithm, canonicalizer);
    StringWriter out;
    canonicalizer->Canonicalize(&apex, out);
    return out.data;
}

/// By a canonicalizer of the library's inside, through a filter.
inline std::string CanonicalForm(const CanonicalizerInt& canonicalizer, Node& apex,
                                 const NodeFilter& filter) {
    StringWriter out;
    canonicalizer.Canonicalize(FilteredNodeCursor(&dynamic_cast<NodeImpl&>(apex), filter), out);
    return out.data;
}

/// Of the element called `apex` in the document of `text`.
inline std::string ExclusiveForm(const std::string& text) {
    const Held<Document> document = Parsed(text);
    return CanonicalForm(Algorithm::ExclusiveC14N, ElementNamed(*document, "apex"));
}
inline std::string InclusiveForm(const std::string& text) {
    const Held<Document> document = Parsed(text);
    return CanonicalForm(Algorithm::InclusiveC14N, ElementNamed(*document, "apex"));
}

}  // namespace Saml::Xml::Security
