#pragma once

#include "saml/xml/content_nodes_impl.h"

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <string>
#include <utility>

namespace Saml {

/// One value of an `Attribute`: the text that holds it, or none for the empty value.
///
/// A value stays where it stands until it is taken, so a token with 20,000 groups does not have all
/// of them twice while its signature is verified. Copies of this object share the text.
class AttributeValue {
  public:
    AttributeValue() noexcept = default;
    explicit AttributeValue(Xml::TextNodeImpl& text) noexcept : text_(&text) {}

    /// Whether somebody else holds the text: the tree, or a resolver that came upon it there.
    bool IsShared() const noexcept { return text_ && text_->use_count() != 1; }

    /// Lets go of the text. The value is moved out of one that is not shared, else copied.
    std::string Take() {
        const bool isShared = IsShared();
        const boost::intrusive_ptr<Xml::TextNodeImpl> text = std::move(text_);
        if (!text) return {};
        if (isShared) return text->Text();
        std::string value = text->TakeText();
        value.shrink_to_fit();  // one that was read in pieces has room to spare
        return value;
    }

  private:
    boost::intrusive_ptr<Xml::TextNodeImpl> text_;
};

}  // namespace Saml
