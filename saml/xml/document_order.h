#pragma once

#include "saml/xml/node_impl.h"

namespace Saml::Xml {

/// Walks `apex` and its descendants in document order, in a loop: no tree is too deep for it.
///
/// `enter(node)` is called for every node reached and tells whether the node counts as entered; the
/// children of an entered node are walked, and `leave(node)` follows when they are through. A node
/// that is not entered is passed over with its subtree.
template <class Tree, class Enter, class Leave>
void WalkInDocumentOrder(Tree& apex, Enter enter, Leave leave) {
    Tree* node = &apex;
    for (;;) {
        const bool entered = enter(*node);
        if (entered && node->FirstChild() != nullptr) {
            node = node->FirstChild();
            continue;
        }
        if (entered) leave(*node);
        while (node != &apex && node->NextSibling() == nullptr) {
            node = node->Parent();
            leave(*node);
        }
        if (node == &apex) return;
        node = node->NextSibling();
    }
}

}  // namespace Saml::Xml
