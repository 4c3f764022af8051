# Builds for 64-bit Windows on another system, with MinGW-w64 and its POSIX threads (Debian:
# g++-mingw-w64-x86-64-posix). The libraries are looked for where scripts/windows-libraries puts them,
# unless SAMLTOKEN_WINDOWS_LIBRARIES names another folder; never among those of this system.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
find_program(SAMLTOKEN_MINGW_COMPILER ${CMAKE_CXX_COMPILER} NO_CACHE)
if(NOT SAMLTOKEN_MINGW_COMPILER)
  message(FATAL_ERROR "There is no ${CMAKE_CXX_COMPILER}: install g++-mingw-w64-x86-64-posix, or run "
                      "scripts/windows-test, which does")
endif()

set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES
    SAMLTOKEN_WINDOWS_LIBRARIES SAMLTOKEN_MAKES_WINDOWS_LIBRARIES)
if(NOT SAMLTOKEN_WINDOWS_LIBRARIES)
  set(samltoken_caches "$ENV{XDG_CACHE_HOME}")
  if(NOT samltoken_caches)
    set(samltoken_caches "$ENV{HOME}/.cache")
  endif()
  set(SAMLTOKEN_WINDOWS_LIBRARIES "${samltoken_caches}/samltoken/windows")
endif()
set(SAMLTOKEN_WINDOWS_LIBRARIES "${SAMLTOKEN_WINDOWS_LIBRARIES}" CACHE PATH
    "Folder with what scripts/windows-libraries builds")

# scripts/windows-libraries uses this file while it makes them.
if(NOT SAMLTOKEN_MAKES_WINDOWS_LIBRARIES AND NOT EXISTS "${SAMLTOKEN_WINDOWS_LIBRARIES}/openssl")
  message(FATAL_ERROR "There are no libraries for Windows in ${SAMLTOKEN_WINDOWS_LIBRARIES}: run "
                      "scripts/windows-libraries once")
endif()
foreach(library IN ITEMS boost expat openssl libxml2 googletest)
  list(APPEND CMAKE_FIND_ROOT_PATH "${SAMLTOKEN_WINDOWS_LIBRARIES}/${library}")
endforeach()
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The programs do not run where they are built: ctest asks them for their tests, not the build.
set(CMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE PRE_TEST)
