#pragma once

#include <cstdint>

namespace Saml::Xml {

/// Why a node of type `child` may not stand under one of type `parent`; null when it may.
/// The type alone decides here; that a document has one root only is the document's own rule.
const char* FindChildRefusal(std::int32_t parent, std::int32_t child) noexcept;

}  // namespace Saml::Xml
