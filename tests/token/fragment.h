#pragma once

#include "saml/token/assertion_cursor.h"
#include "saml/token/parsed_assertion.h"
#include "support/token_forge.h"

#include <gtest/gtest.h>

#include <string>

/// One element of an assertion as the readers see it. It stands inside another element that
/// declares the prefixes saml, del, ext, ds, xsi and other, so that its own text needs no
/// declarations.
class Fragment {
  public:
    explicit Fragment(const std::string& xml)
        : document_(Forge::Parse(Declarations() + xml + "</other:around>")),
          element_(Saml::Xml::AsElement(
              dynamic_cast<Saml::Xml::ElementNodeImpl&>(*document_->GetRootElement())
                  .FirstChild())),
          namespaces_(*element_) {}

    Saml::AssertionElement Element() const { return {*element_, namespaces_}; }

  private:
    static std::string Declarations() {
        return "<other:around xmlns:other=\"urn:example:other\""
               " xmlns:saml=\"urn:oasis:names:tc:SAML:2.0:assertion\""
               " xmlns:del=\"urn:oasis:names:tc:SAML:2.0:conditions:delegation\""
               " xmlns:ext=\"" +
               std::string(Saml::ProfileUri::ExtensionNamespace) +
               "\" xmlns:ds=\"http://www.w3.org/2000/09/xmldsig#\""
               " xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\">";
    }

    boost::intrusive_ptr<Saml::Xml::Document> document_;
    Saml::Xml::ElementNodeImpl* element_;
    Saml::Xml::NamespaceContext namespaces_;
};

/// One change to an accepted text and the whole message of its refusal.
struct Refusal {
    const char* name;
    const char* from;
    const char* to;
    const char* message;
};

inline std::string NameOfRow(const testing::TestParamInfo<Refusal>& row) {
    return row.param.name;
}
