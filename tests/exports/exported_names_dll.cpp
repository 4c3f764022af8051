#include "exported_names.h"
#include "portable_executable.h"

#include <cstdlib>
#include <cxxabi.h>
#include <memory>
#include <regex>

namespace {

constexpr char kVirtualTable[] = "vtable for ";
constexpr char kTableOfVirtualTables[] = "VTT for ";

bool StartsWith(const std::string& text, const std::string& beginning) {
    return text.compare(0, beginning.size(), beginning) == 0;
}

std::string Readable(const std::string& name) {
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> readable(
        abi::__cxa_demangle(name.c_str(), nullptr, nullptr, &status), &std::free);
    return readable ? readable.get() : name;
}

}  // namespace

// An exported class takes the table of its virtual bases' tables along, which Linux's list of
// exports keeps back. It belongs to the virtual table and counts with it.
std::set<std::string> ExportedNames() {
    std::set<std::string> names;
    for (const std::string& name : ReadPortableExecutable(LIBRARY_FILE).exportedNames)
        names.insert(Readable(name));
    const std::set<std::string> all = names;
    for (const std::string& name : all)
        if (StartsWith(name, kTableOfVirtualTables) &&
            all.count(kVirtualTable + name.substr(sizeof kTableOfVirtualTables - 1)) == 1)
            names.erase(name);
    return names;
}

// A number of 64 bits is a `long long` on Windows, and the system clock ticks each 100 nanoseconds.
// Types are compared by their names' text there: each module has a text of its own, and a
// description of its own of a pointer to an exported class.
std::string NameHere(const std::string& listed) {
    static const std::regex pointerType("typeinfo for .*\\*");
    if (StartsWith(listed, "typeinfo name for ") || std::regex_match(listed, pointerType))
        return "";

    static const std::regex clockTick("boost::ratio<1l, 1000000000l>");
    static const std::regex number("\\blong( long)?\\b");
    return std::regex_replace(
        std::regex_replace(listed, clockTick, "boost::ratio<1ll, 10000000ll>"), number,
        "long long");
}
