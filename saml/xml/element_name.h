#pragma once

#include "saml/xml/node_pool.h"
#include "saml/xml/qualified_name.h"

#include <boost/intrusive_ptr.hpp>
#include <boost/smart_ptr/intrusive_ref_counter.hpp>

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace Saml::Xml {

/// The name of an element as it is written. A document has few of them for many elements, which
/// share it; whoever changes a name that is shared takes one of its own.
struct ElementName final
    : public boost::intrusive_ref_counter<ElementName, boost::thread_safe_counter>,
      public Pooled {
    ElementName(std::string_view prefixText, std::string_view localText)
        : prefix(prefixText), localName(localText) {}

    std::string prefix;
    std::string localName;
};

using ElementNamePtr = boost::intrusive_ptr<ElementName>;

/// The names that a document under construction used last.
class RecentNames {
  public:
    /// The name that is written `qualifiedName`; made in `pool` when it was not used of late.
    const ElementNamePtr& Get(std::string_view qualifiedName, NodePool& pool) {
        const QualifiedName parts = SplitQualifiedName(qualifiedName);
        ElementNamePtr& recent = names_[PlaceOf(qualifiedName)];
        if (!recent || recent->localName != parts.localName || recent->prefix != parts.prefix)
            recent = new (pool) ElementName(parts.prefix, parts.localName);
        return recent;
    }

  private:
    static constexpr std::size_t kPlaces = 16;

    /// Two names in one place cost a new name each time, nothing else.
    static std::size_t PlaceOf(std::string_view qualifiedName) noexcept {
        const auto last = qualifiedName.empty() ? '\0' : qualifiedName.back();
        return (qualifiedName.size() + static_cast<unsigned char>(last)) % kPlaces;
    }

    std::array<ElementNamePtr, kPlaces> names_;
};

}  // namespace Saml::Xml
