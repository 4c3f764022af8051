#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include "saml/foundations/platform.h"

#include <windows.h>

#if defined(__GNUC__)
#include "saml/foundations/demangled_name.h"
#endif

namespace Saml {

std::string ReadableTypeName(const std::type_info& type) {
#if defined(__GNUC__)
    return DemangledName(type);
#else
    return type.name();  // Microsoft's runtime gives the undecorated name
#endif
}

}  // namespace Saml

/// The entry point of the DLL. The library keeps nothing for a thread, so it asks not to be told
/// about them; a process that cannot grant this loads the library all the same.
extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) DisableThreadLibraryCalls(module);
    return TRUE;
}
