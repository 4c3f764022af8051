#include "exported_names.h"
#include "tool_output.h"

#include <cstddef>

std::set<std::string> ExportedNames() {
    std::set<std::string> names;
    for (const std::string& line : OutputLines(NM " -D --defined-only -C '" LIBRARY_FILE "'")) {
        const std::size_t type =
            line.find(' ') + 1;  // after the address: a letter, a blank, a name
        names.insert(line.substr(type + 2));
    }
    return names;
}

std::string NameHere(const std::string& listed) {
    return listed;
}
