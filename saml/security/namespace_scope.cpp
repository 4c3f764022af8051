#include "saml/security/namespace_scope.h"

namespace Saml::Xml::Security {

void NamespaceScope::Leave() {
    for (; undo_.size() != marks_.back(); undo_.pop_back())
        *undo_.back().binding = undo_.back().before;
    marks_.pop_back();
}

void NamespaceScope::Declare(std::string_view prefix, const std::string& uri) {
    Binding& binding = bindings_[prefix];
    Remember(binding);
    binding.inScope = &uri;
}

void NamespaceScope::DeclareInherited(std::string_view prefix, const std::string& uri) {
    Binding& binding = bindings_[prefix];
    if (binding.inScope == nullptr) binding.inScope = &uri;
}

const std::string* NamespaceScope::Find(std::string_view prefix) const {
    const auto found = bindings_.find(prefix);
    return found != bindings_.end() ? found->second.inScope : nullptr;
}

const std::string* NamespaceScope::Render(std::string_view prefix) {
    const auto found = bindings_.find(prefix);
    if (found == bindings_.end() || found->second.inScope == nullptr) return nullptr;

    Binding& binding = found->second;
    if (binding.rendered != nullptr && *binding.rendered == *binding.inScope) return nullptr;
    // An empty default declaration is needed only to undo a default that the output declared.
    const bool undeclaresNothing =
        prefix.empty() && binding.inScope->empty() && binding.rendered == nullptr;
    if (undeclaresNothing) return nullptr;

    Remember(binding);
    binding.rendered = binding.inScope;
    return binding.rendered;
}

}  // namespace Saml::Xml::Security
