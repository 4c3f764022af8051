#include "tool_output.h"

#include <array>
#include <cstdio>
#include <sstream>
#include <stdexcept>

std::vector<std::string> OutputLines(const std::string& command) {
    std::FILE* const pipe = popen(command.c_str(), "r");
    if (!pipe) throw std::runtime_error("cannot run: " + command);

    std::string output;
    std::array<char, 4096> buffer{};
    while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe))
        output.append(buffer.data(), count);
    if (pclose(pipe) != 0) throw std::runtime_error("failed: " + command);

    std::vector<std::string> lines;
    std::istringstream text(output);
    for (std::string line; std::getline(text, line);)
        lines.push_back(line);
    return lines;
}
