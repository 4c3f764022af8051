#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

/// Tokens that ask for as much work as their size allows.
namespace Saml::Attacks {

struct Shape {
    std::string name;
    /// A token of about so many bytes.
    std::function<std::string(std::size_t bytes)> make;
};

/// What providers write: a token that is accepted, with many attribute values.
std::string PlainToken(std::size_t bytes);

/// The rows are ordered by what they strain.
std::vector<Shape> HostileShapes();

}  // namespace Saml::Attacks
