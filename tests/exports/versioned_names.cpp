#include "versioned_names.h"

#include "tool_output.h"

std::vector<std::string> VersionedNames() {
    std::vector<std::string> names;
    for (const std::string& line : OutputLines(NM " -D --defined-only -C '" LIBRARY_FILE "'"))
        names.push_back(line.substr(line.find(' ') + 3));  // after the address: a letter, a blank
    return names;
}
