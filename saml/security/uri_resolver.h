#pragma once

#include "saml/xml/element_node_impl.h"

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Saml::Xml::Security {

/// Finds what a same-document URI (xmldsig-core 4.4.3.3) names at or below a root.
class URIResolver {
  public:
    /// \param result  The root itself for an empty URI; for "#" and an identifier the one element
    ///                that carries it; null when there is none or the URI has another form.
    /// \throws DuplicateURIException  Several elements carry the identifier.
    virtual void Resolve(NodeImpl* root, const std::string& uri,
                         boost::intrusive_ptr<ElementNodeImpl>& result) const = 0;
    virtual ~URIResolver() = default;
};

/// Searches the whole tree below the root at each call: an identifier that occurs twice is an error
/// wherever the second one hides, since signature wrapping lives on first matches.
class UniqueURIResolver final : public URIResolver {
  public:
    void Resolve(NodeImpl* root, const std::string& uri,
                 boost::intrusive_ptr<ElementNodeImpl>& result) const override;
};

/// Gives the answers of `UniqueURIResolver` for a set of URIs known beforehand from one walk over
/// an unchanging tree, so that a thousand references do not cost a thousand walks.
class IndexedURIResolver final : public URIResolver {
  public:
    explicit IndexedURIResolver(ElementNodeImpl& root) : root_(root) {}

    /// Names a URI that will be asked for; all are named before the first `Resolve`.
    void Expect(const std::string& uri);

    /// `root` is the index's own root or an element that this resolver gave.
    void Resolve(NodeImpl* root, const std::string& uri,
                 boost::intrusive_ptr<ElementNodeImpl>& result) const override;

  private:
    /// The places, in document order, of an element and of its last descendant.
    struct Extent {
        std::size_t first;
        std::size_t last;
    };
    struct Bearer {
        ElementNodeImpl* element;
        std::size_t place;
    };
    using Bearers = std::vector<Bearer>;

    void BuildIndex() const;

    ElementNodeImpl& root_;
    mutable bool built_ = false;
    mutable std::map<std::string, Bearers, std::less<>> bearers_;  ///< By identifier.
    mutable std::unordered_map<const NodeImpl*, Extent> extents_;
};

}  // namespace Saml::Xml::Security
