#include "saml/security/uri_resolver.h"

#include "saml/security.h"
#include "saml/xml/document_order.h"
#include "saml/xml/qualified_name.h"

#include <algorithm>

namespace Saml::Xml::Security {
namespace {

std::string Duplicate(std::string_view identifier) {
    return "Duplicate URI found: " + std::string(identifier);
}

constexpr char kFragmentMark = '#';

bool IsIdentifierAttribute(std::string_view written) {
    const std::string_view localName = SplitQualifiedName(written).localName;
    return localName == "id" || localName == "Id" || localName == "ID";
}

bool IsFragment(const std::string& uri) {
    return !uri.empty() && uri.front() == kFragmentMark;
}

std::string_view IdentifierOf(const std::string& uri) {
    return std::string_view(uri).substr(1);
}

bool Carries(const ElementNodeImpl& element, std::string_view identifier) {
    for (const auto& [name, value] : element.Attributes())
        if (value == identifier && IsIdentifierAttribute(name)) return true;
    return false;
}

}  // namespace

void UniqueURIResolver::Resolve(NodeImpl* root, const std::string& uri,
                                boost::intrusive_ptr<ElementNodeImpl>& result) const {
    boost::intrusive_ptr<ElementNodeImpl> found;
    ElementNodeImpl* const rootElement = AsElement(root);
    if (rootElement != nullptr && uri.empty()) found = rootElement;
    if (rootElement != nullptr && IsFragment(uri)) {
        const std::string_view identifier = IdentifierOf(uri);
        const auto enter = [&found, identifier](NodeImpl& node) {
            ElementNodeImpl* const element = AsElement(&node);
            if (element == nullptr) return false;
            if (Carries(*element, identifier)) {
                if (found) throw DuplicateURIException(Duplicate(identifier));
                found = element;
            }
            return true;
        };
        WalkInDocumentOrder(static_cast<NodeImpl&>(*rootElement), enter, [](NodeImpl&) {});
    }
    result = found;
}

void IndexedURIResolver::Expect(const std::string& uri) {
    if (IsFragment(uri)) bearers_.try_emplace(std::string(IdentifierOf(uri)));
}

void IndexedURIResolver::Resolve(NodeImpl* root, const std::string& uri,
                                 boost::intrusive_ptr<ElementNodeImpl>& result) const {
    result.reset();
    if (uri.empty()) {
        result = AsElement(root);
        return;
    }
    if (!IsFragment(uri)) return;

    BuildIndex();
    const Extent extent = extents_.at(root);
    const Bearers& bearers = bearers_.find(IdentifierOf(uri))->second;
    const auto first = std::lower_bound(
        bearers.begin(), bearers.end(), extent.first,
        [](const Bearer& bearer, std::size_t place) { return bearer.place < place; });
    if (first == bearers.end() || first->place > extent.last) return;
    const auto second = std::next(first);
    if (second != bearers.end() && second->place <= extent.last)
        throw DuplicateURIException(Duplicate(IdentifierOf(uri)));
    result = first->element;
}

void IndexedURIResolver::BuildIndex() const {
    if (built_) return;
    std::size_t place = 0;
    const auto enter = [this, &place](NodeImpl& node) {
        ElementNodeImpl* const element = AsElement(&node);
        if (element == nullptr) return false;
        ++place;
        bool isReferent = element == &root_;
        for (const auto& [name, value] : element->Attributes()) {
            if (!IsIdentifierAttribute(name)) continue;
            const auto expected = bearers_.find(value);
            if (expected == bearers_.end()) continue;
            Bearers& bearers = expected->second;
            // An element that carries the identifier twice is still one element.
            if (bearers.empty() || bearers.back().element != element)
                bearers.push_back({element, place});
            isReferent = true;
        }
        if (isReferent) extents_[element] = {place, place};
        return true;
    };
    const auto leave = [this, &place](NodeImpl& node) {
        const auto extent = extents_.find(&node);
        if (extent != extents_.end()) extent->second.last = place;
    };
    WalkInDocumentOrder(static_cast<NodeImpl&>(root_), enter, leave);
    built_ = true;
}

}  // namespace Saml::Xml::Security
