#pragma once

#include <string>
#include <vector>

/// The lines that a command prints; throws std::runtime_error when it fails.
std::vector<std::string> OutputLines(const std::string& command);
