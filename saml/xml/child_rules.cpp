#include "saml/xml/child_rules.h"

#include "saml/xml.h"

#include <array>
#include <cstddef>

namespace Saml::Xml {
namespace {

constexpr std::int32_t kAnyType = -1;

struct ChildRule {
    std::int32_t parent;
    std::int32_t refusedChild;
    const char* message;
};

// A document takes comments, processing instructions and one element. An element takes no
// processing instruction: signatures would not cover it.
constexpr ChildRule kChildRules[] = {
    {NodeType::Document, NodeType::Document, "DocumentNode cannot have document node as child"},
    {NodeType::Document, NodeType::Text, "DocumentNode cannot have text node children"},
    {NodeType::Document, NodeType::CData, "DocumentNode cannot have CData node children"},
    {NodeType::Element, NodeType::Document, "Elements cannot have document or PI children."},
    {NodeType::Element, NodeType::ProcessingInstruction,
     "Elements cannot have document or PI children."},
    {NodeType::Text, kAnyType, "Cannot add child to text node."},
    {NodeType::CData, NodeType::Document, "Cannot add non-text child to CData node."},
    {NodeType::CData, NodeType::CData, "Cannot add non-text child to CData node."},
    {NodeType::CData, NodeType::Comment, "Cannot add non-text child to CData node."},
    {NodeType::CData, NodeType::Element, "Cannot add non-text child to CData node."},
    {NodeType::CData, NodeType::ProcessingInstruction, "Cannot add non-text child to CData node."},
    {NodeType::Comment, kAnyType, "Cannot add child to Comment node."},
    {NodeType::ProcessingInstruction, kAnyType, "Cannot add child to PI node."},
};

constexpr std::size_t kTypes = 16;  // more than there are

using Refusals = std::array<std::array<const char*, kTypes>, kTypes>;

/// By parent and child.
constexpr Refusals TabulateRules() {
    Refusals refusals{};
    for (const ChildRule& rule : kChildRules)
        for (std::size_t child = 0; child != kTypes; ++child)
            if (rule.refusedChild == kAnyType ||
                rule.refusedChild == static_cast<std::int32_t>(child))
                refusals[static_cast<std::size_t>(rule.parent)][child] = rule.message;
    return refusals;
}

constexpr Refusals kRefusals = TabulateRules();

}  // namespace

const char* FindChildRefusal(std::int32_t parent, std::int32_t child) noexcept {
    return kRefusals[static_cast<std::size_t>(parent)][static_cast<std::size_t>(child)];
}

}  // namespace Saml::Xml
