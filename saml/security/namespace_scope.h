#pragma once

#include "saml/xml/attribute.h"

#include <cstddef>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

namespace Saml::Xml::Security {

/// Which namespaces are in scope at the element under the pen, and which the output has declared
/// already, on the element itself or above it.
///
/// One table serves the whole walk; what an element changed is undone when it is left, so that
/// nothing is copied for an element. Prefixes and URIs refer into the tree, which does not change.
class NamespaceScope {
  public:
    NamespaceScope() {
        undo_.reserve(kUsualDepth);
        marks_.reserve(kUsualDepth);
    }

    /// Begins the changes of one element.
    void Enter() { marks_.push_back(undo_.size()); }
    /// Undoes what was changed since the matching `Enter`.
    void Leave();

    /// Brings `prefix` (empty: the default namespace) into scope, replacing an earlier binding.
    void Declare(std::string_view prefix, std::string_view uri);
    /// The same, unless `prefix` is bound: for ancestors, read from the nearest outward.
    void DeclareInherited(std::string_view prefix, std::string_view uri);

    /// The URI that is in scope for `prefix`; nothing when it is unbound.
    FoundText Find(std::string_view prefix) const;

    /// Decides whether the output needs a declaration of `prefix` here, and if so counts it as
    /// declared from here on down.
    /// \return The URI to declare; nothing when there is nothing to write.
    FoundText Render(std::string_view prefix);

    /// Calls `visit(prefix)` for every prefix in scope, in byte order.
    template <class Visit>
    void ForEachInScope(Visit visit) const {
        for (const auto& [prefix, binding] : bindings_)
            if (binding.inScope) visit(prefix);
    }

  private:
    static constexpr std::size_t kUsualDepth = 16;

    struct Binding {
        FoundText inScope;
        FoundText rendered;
    };
    struct Change {
        Binding* binding;
        Binding before;
    };

    /// Null when nobody has declared `prefix` yet.
    Binding* FindBinding(std::string_view prefix) const;
    void Remember(Binding& binding) { undo_.push_back({&binding, binding}); }

    mutable std::map<std::string_view, Binding> bindings_;
    /// The one that was asked for last: most elements of a document share a prefix.
    mutable std::pair<const std::string_view, Binding>* last_ = nullptr;
    std::vector<Change> undo_;
    std::vector<std::size_t> marks_;
};

}  // namespace Saml::Xml::Security
