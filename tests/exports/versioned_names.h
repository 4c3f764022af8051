#pragma once

#include <string>
#include <vector>

/// What an ELF library exports, each name with its version, "name@@VERSION"; and the version by
/// itself.
std::vector<std::string> VersionedNames();
