#include "saml/security/namespace_scope.h"

namespace Saml::Xml::Security {

void NamespaceScope::Leave() {
    for (; undo_.size() != marks_.back(); undo_.pop_back())
        *undo_.back().binding = undo_.back().before;
    marks_.pop_back();
}

void NamespaceScope::Declare(std::string_view prefix, std::string_view uri) {
    Binding& binding = bindings_[prefix];
    Remember(binding);
    binding.inScope = uri;
}

void NamespaceScope::DeclareInherited(std::string_view prefix, std::string_view uri) {
    Binding& binding = bindings_[prefix];
    if (!binding.inScope) binding.inScope = uri;
}

NamespaceScope::Binding* NamespaceScope::FindBinding(std::string_view prefix) const {
    if (last_ == nullptr || last_->first != prefix) {
        const auto found = bindings_.find(prefix);
        if (found == bindings_.end()) return nullptr;
        last_ = &*found;  // bindings are never taken out
    }
    return &last_->second;
}

FoundText NamespaceScope::Find(std::string_view prefix) const {
    const Binding* const binding = FindBinding(prefix);
    return binding != nullptr ? binding->inScope : std::nullopt;
}

FoundText NamespaceScope::Render(std::string_view prefix) {
    Binding* const found = FindBinding(prefix);
    if (found == nullptr || !found->inScope) return std::nullopt;

    Binding& binding = *found;
    if (binding.rendered == binding.inScope) return std::nullopt;
    // An empty default declaration is needed only to undo a default that the output declared.
    const bool undeclaresNothing = prefix.empty() && binding.inScope->empty() && !binding.rendered;
    if (undeclaresNothing) return std::nullopt;

    Remember(binding);
    binding.rendered = binding.inScope;
    return binding.rendered;
}

}  // namespace Saml::Xml::Security
