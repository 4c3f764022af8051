#pragma once

#include <cstdlib>
#include <cxxabi.h>
#include <memory>
#include <string>
#include <typeinfo>

namespace Saml {

/// The name of `type` as it is written in source code, by the Itanium C++ ABI that GCC and clang
/// follow; the raw name where the ABI cannot read it.
inline std::string DemangledName(const std::type_info& type) {
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> name(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
    return name ? name.get() : type.name();
}

}  // namespace Saml
