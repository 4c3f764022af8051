# What makes a fault that is left harder to use. Linked privately by everything that is shipped and
# never exported; a build that looks for faults has its own means instead (SamltokenInstrumentation).
include(CheckCXXCompilerFlag)

option(SAMLTOKEN_HARDENING "Build with the hardening that compiler and linker have" ON)

add_library(samltoken_hardening INTERFACE)
if(SAMLTOKEN_HARDENING AND NOT SAMLTOKEN_INSTRUMENTATION AND NOT MSVC)
  # The calls into C's string functions, their bounds checked. Needs an optimising compiler; what the
  # distribution or the caller has set already stays.
  if(NOT CMAKE_CXX_FLAGS MATCHES "_FORTIFY_SOURCE")
    target_compile_options(samltoken_hardening INTERFACE
      $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE> $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=3>)
  endif()
  # Guarded and probed stacks; jumps and returns only to where they may go, by the processor's own
  # means (x86-64: CET, arm64: BTI and PAC). clang's own CFI is not used: it refuses calls of virtual
  # functions of classes that the caller derives, and deriving is how callers add resolvers.
  set(samltoken_hardening_flags
    -fstack-protector-strong -fstack-clash-protection -fcf-protection=full -mbranch-protection=standard)
  if(WIN32)  # stacks are probed anyway there; asked to do it, GCC 12 breaks down
    list(REMOVE_ITEM samltoken_hardening_flags -fstack-clash-protection)
  endif()
  foreach(flag IN LISTS samltoken_hardening_flags)
    string(MAKE_C_IDENTIFIER "SAMLTOKEN_HAS${flag}" available)
    check_cxx_compiler_flag("-Werror ${flag}" ${available})
    if(${available})
      target_compile_options(samltoken_hardening INTERFACE ${flag})
    endif()
  endforeach()
  if(MINGW)  # what guards stacks is no part of C's library there; the DLL brings its own
    target_link_libraries(samltoken_hardening INTERFACE -l:libssp.a)
  endif()
  if(CMAKE_EXECUTABLE_FORMAT STREQUAL "ELF")
    # Everything resolved and made read-only before the first call; no executable stack.
    target_link_options(samltoken_hardening INTERFACE
      LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)
  endif()
endif()
