#include "saml/foundations/checked_cast.h"
#include "saml/xml.h"
#include "saml/xml/content_nodes_impl.h"
#include "saml/xml/element_node_impl.h"

#include <string_view>

namespace Saml::Xml {
namespace {

constexpr char kNoRoot[] = "Document has no root.";

constexpr std::string_view kAnyElement = "*";
constexpr char kSeparator = '/';
constexpr char kAttributeMark = '@';

/// A path taken apart: element steps, the first for the start element, then perhaps an attribute.
struct Path {
    std::vector<std::string_view> elements;
    bool endsOnAttribute = false;
    std::string_view attribute;
};

Path SplitPath(std::string_view text) {
    Path path;
    std::size_t start = 0;
    while ((start = text.find_first_not_of(kSeparator, start)) != std::string_view::npos) {
        const std::size_t end = std::min(text.find(kSeparator, start), text.size());
        const std::string_view step = text.substr(start, end - start);
        // The first step always names the start element. What follows an attribute is ignored.
        if (step.front() == kAttributeMark && !path.elements.empty()) {
            path.endsOnAttribute = true;
            path.attribute = step.substr(1);
            break;
        }
        path.elements.push_back(step);
        start = end;
    }
    return path;
}

bool Matches(const ElementNodeImpl& element, std::string_view step) {
    return step == kAnyElement || element.LocalName() == step;
}

const ElementNodeImpl* FirstMatch(const NodeImpl* first, std::string_view step) {
    for (const NodeImpl* node = first; node != nullptr; node = node->NextSibling()) {
        const ElementNodeImpl* const element = AsElement(node);
        if (element != nullptr && Matches(*element, step)) return element;
    }
    return nullptr;
}

/// The value at the end of `path` when its element steps lead to `element`; nothing when there is
/// none.
FoundText ValueAt(const ElementNodeImpl& element, const Path& path) {
    if (path.endsOnAttribute) return element.FindAttribute(path.attribute);
    const TextNodeImpl* const text = AsText(element.FirstChild());
    return text != nullptr ? FoundText(text->Text()) : std::nullopt;
}

bool Begins(const ElementNodeImpl& start, const Path& path) {
    return !path.elements.empty() && Matches(start, path.elements.front());
}

ElementNode* RequireRoot(Document* document) {
    ElementNode* const root = document != nullptr ? document->GetRootElement() : nullptr;
    if (root == nullptr) throw InvalidArgumentException(kNoRoot);
    return root;
}

/// Appends the values of all matches, depth first; climbs by parent links instead of recursing.
void CollectValues(const ElementNodeImpl& start, const Path& path,
                   std::vector<std::string>& values) {
    const std::size_t lastStep = path.elements.size() - 1;
    const ElementNodeImpl* element = &start;
    std::size_t step = 0;
    for (;;) {
        const ElementNodeImpl* next = nullptr;
        if (step == lastStep) {
            const FoundText value = ValueAt(*element, path);
            if (value) values.emplace_back(*value);
        } else {
            next = FirstMatch(element->FirstChild(), path.elements[step + 1]);
            if (next != nullptr) ++step;
        }
        while (next == nullptr && step != 0) {
            next = FirstMatch(element->NextSibling(), path.elements[step]);
            if (next == nullptr) {
                element = ParentElement(*element);
                --step;
            }
        }
        if (next == nullptr) return;
        element = next;
    }
}

}  // namespace

bool EvaluateSimplePath(ElementNode* start, const std::string& path, std::string& value) {
    if (start == nullptr) return false;
    const Path steps = SplitPath(path);
    const ElementNodeImpl* element = CheckedCast<ElementNodeImpl>(start);
    if (!Begins(*element, steps)) return false;

    for (std::size_t step = 1; step != steps.elements.size(); ++step) {
        element = FirstMatch(element->FirstChild(), steps.elements[step]);
        if (element == nullptr) return false;
    }
    const FoundText found = ValueAt(*element, steps);
    if (found) value = *found;
    return found.has_value();
}

bool EvaluateSimplePath(Document* document, const std::string& path, std::string& value) {
    return EvaluateSimplePath(RequireRoot(document), path, value);
}

bool EvaluateMultiPath(ElementNode* start, const std::string& path,
                       std::vector<std::string>& values) {
    values.clear();
    if (start == nullptr) return false;
    const Path steps = SplitPath(path);
    const ElementNodeImpl& element = *CheckedCast<ElementNodeImpl>(start);
    if (Begins(element, steps)) CollectValues(element, steps, values);
    return !values.empty();
}

bool EvaluateMultiPath(Document* document, const std::string& path,
                       std::vector<std::string>& values) {
    return EvaluateMultiPath(RequireRoot(document), path, values);
}

}  // namespace Saml::Xml
