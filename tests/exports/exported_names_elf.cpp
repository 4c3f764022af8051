#include "exported_names.h"
#include "versioned_names.h"

std::set<std::string> ExportedNames() {
    std::set<std::string> names;
    for (const std::string& name : VersionedNames())
        if (const auto version = name.rfind("@@"); version != std::string::npos)
            names.insert(name.substr(0, version));
    return names;
}

std::string NameHere(const std::string& listed) {
    return listed;
}
