#pragma once

#include "saml/token/parsed_assertion.h"

#include <initializer_list>
#include <string>

/// An attribute of these values, each in a text of its own.
inline Saml::ParsedAttribute Attribute(const std::string& name,
                                       std::initializer_list<std::string> values) {
    Saml::ParsedAttribute attribute{name, "urn:format", "", {}};
    for (const std::string& value : values)
        attribute.values.emplace_back(*new Saml::Xml::TextNodeImpl(value));
    return attribute;
}
