# Debian's cross compiler for arm64, with the headers and libraries that scripts/arm64-test unpacks
# into a cache folder, and qemu to run what it makes.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)

if(DEFINED ENV{XDG_CACHE_HOME})
  set(CMAKE_SYSROOT "$ENV{XDG_CACHE_HOME}/samltoken/arm64")
else()
  set(CMAKE_SYSROOT "$ENV{HOME}/.cache/samltoken/arm64")
endif()
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_CXX_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
# What the libraries themselves need is looked for there, too.
foreach(folder IN ITEMS lib usr/lib)
  string(APPEND CMAKE_EXE_LINKER_FLAGS_INIT
         " -Wl,-rpath-link,${CMAKE_SYSROOT}/${folder}/aarch64-linux-gnu")
endforeach()

# Programs are this machine's, all else is that one's.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} "${CMAKE_SYSROOT}/usr/lib/aarch64-linux-gnu/pkgconfig")
set(ENV{PKG_CONFIG_SYSROOT_DIR} "${CMAKE_SYSROOT}")

set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64 -L "${CMAKE_SYSROOT}")
