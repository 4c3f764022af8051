#include "support/tree_mutation.h"

#include "support/documents.h"

#include <random>

namespace Fuzz {
namespace {

using namespace Saml::Xml;

using Random = std::minstd_rand;

template <class Value>
const Value& OneOf(const std::vector<Value>& values, Random& random) {
    return values[random() % values.size()];
}

std::vector<std::string> AttributeNamesOf(ElementNode& element) {
    std::map<std::string, std::string> attributes;
    element.GetAttributes(attributes);
    std::vector<std::string> names;
    for (const auto& [name, value] : attributes)
        names.push_back(name);
    return names;
}

std::vector<TextNode*> TextsOf(const std::vector<ElementNode*>& elements) {
    std::vector<TextNode*> texts;
    for (ElementNode* const element : elements)
        for (Node* const child : ChildrenOf(*element))
            if (child->GetType() == NodeType::Text) texts.push_back(dynamic_cast<TextNode*>(child));
    return texts;
}

/// Gives `to` an attribute of `from`, which may bear the name of one that it has.
void CopyAttribute(ElementNode& from, ElementNode& to, Random& random) {
    const std::vector<std::string> names = AttributeNamesOf(from);
    if (names.empty()) return;
    const std::string& name = OneOf(names, random);
    std::string value;
    from.GetAttribute(name, value);
    const std::vector<std::string> taken = AttributeNamesOf(to);
    to.SetAttribute(taken.empty() || random() % 2 == 0 ? name : OneOf(taken, random), value);
}

void RemoveAttribute(ElementNode& element, Random& random) {
    const std::vector<std::string> names = AttributeNamesOf(element);
    if (!names.empty()) element.RemoveAttribute(OneOf(names, random));
}

void CopyText(const std::vector<ElementNode*>& elements, Random& random) {
    const std::vector<TextNode*> texts = TextsOf(elements);
    if (!texts.empty()) OneOf(texts, random)->SetText(OneOf(texts, random)->GetText());
}

void Move(ElementNode& element, ElementNode& reference, Random& random) {
    try {
        if (random() % 2 == 0)
            reference.AppendChild(&element);
        else if (reference.GetParent() != nullptr)
            reference.GetParent()->InsertBefore(&element, &reference);
    } catch (const Saml::InvalidArgumentException&) {  // it may not stand there
    }
}

void Change(const std::vector<ElementNode*>& elements, Random& random) {
    ElementNode& one = *OneOf(elements, random);
    ElementNode& other = *OneOf(elements, random);
    switch (random() % 6) {
        case 0:
            if (&one != elements.front()) one.GetParent()->RemoveChild(&one);
            return;
        case 1:
            return Move(one, other, random);
        case 2:
            one.SetPrefix(other.GetPrefix());
            return one.SetLocalName(other.GetLocalName());
        case 3:
            return CopyAttribute(one, other, random);
        case 4:
            return RemoveAttribute(one, random);
        default:
            return CopyText(elements, random);
    }
}

}  // namespace

std::string WithTreeChanged(const std::string& text, std::uint32_t seed) {
    const DocumentPtr document = Parsed(text);
    if (!document) return text;
    Random random(seed);
    Change(ElementsOf(*document), random);
    Saml::StringWriter out;
    document->GetRootElement()->Write(out);
    return out.data;
}

}  // namespace Fuzz
