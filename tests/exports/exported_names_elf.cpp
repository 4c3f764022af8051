#include "exported_names.h"
#include "tool_output.h"

#include <cstddef>

// nm prints an address, a letter, a blank, the name and its version; the version itself is a
// symbol, too.
std::set<std::string> ExportedNames() {
    std::set<std::string> names;
    for (const std::string& line : OutputLines(NM " -D --defined-only -C '" LIBRARY_FILE "'")) {
        const std::size_t name = line.find(' ') + 3;
        const std::size_t version = line.rfind("@@");
        if (version != std::string::npos) names.insert(line.substr(name, version - name));
    }
    return names;
}

std::string NameHere(const std::string& listed) {
    return listed;
}
