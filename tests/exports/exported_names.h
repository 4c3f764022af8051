#pragma once

#include <set>
#include <string>

/// What the library exports, as it stands in a source; the variants of a constructor or destructor,
/// which have one name there, count once.
std::set<std::string> ExportedNames();

/// A name of the list, which has those of Linux, as this platform has it; empty where it has none.
std::string NameHere(const std::string& listed);
