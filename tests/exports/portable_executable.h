#pragma once

#include <string>
#include <vector>

/// What the tables of a 64-bit Windows program or DLL say (Microsoft's PE format, PE32+). A file
/// that is none throws `std::runtime_error`.
struct PortableExecutable {
    std::vector<std::string> exportedNames;  ///< As the linker knows them.
    std::vector<std::string> neededFiles;    ///< The DLLs that the loader looks for.
};

PortableExecutable ReadPortableExecutable(const std::string& path);
