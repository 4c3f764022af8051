# What is missing or too old is named once and plainly: what needs it, the version, and where Debian
# has it.

# samltoken_require(PACKAGE DEBIAN [VERSION version] [COMPONENTS component...] [FOR what] [WITHOUT option])
#
# find_package, in a macro so that its variables reach the caller. `option` configures a build that does
# without.
macro(samltoken_require package debian)
  cmake_parse_arguments(samltoken_need "" "VERSION;FOR;WITHOUT" "COMPONENTS" ${ARGN})
  if(NOT samltoken_need_FOR)
    set(samltoken_need_FOR "the library")
  endif()
  set(samltoken_needed_components)
  if(samltoken_need_COMPONENTS)
    set(samltoken_needed_components COMPONENTS ${samltoken_need_COMPONENTS})
  endif()
  find_package(${package} ${samltoken_need_VERSION} QUIET ${samltoken_needed_components})
  if(NOT ${package}_FOUND)
    samltoken_refuse_without(${package} ${debian} "${samltoken_need_VERSION}" "${samltoken_need_FOR}"
                             "${samltoken_need_WITHOUT}")
  endif()
endmacro()

# The same for a program; the variable SAMLTOKEN_<PROGRAM> holds its place.
function(samltoken_require_program program debian)
  cmake_parse_arguments(ARG "" "FOR;WITHOUT" "" ${ARGN})
  string(TOUPPER "SAMLTOKEN_${program}" variable)
  find_program(${variable} ${program} PATHS /usr/sbin)
  mark_as_advanced(${variable})
  if(NOT ${variable})
    samltoken_refuse_without(${program} ${debian} "" "${ARG_FOR}" "${ARG_WITHOUT}")
  endif()
endfunction()

function(samltoken_refuse_without name debian version purpose option)
  string(TOUPPER ${name} upper)
  set(present)
  foreach(variable IN ITEMS ${name}_CONSIDERED_VERSIONS ${upper}_VERSION_STRING ${upper}_VERSION)
    if(version AND ${variable})
      set(present "; ${${variable}} was found")
    endif()
  endforeach()
  if(version)
    set(version " ${version} or later")
  endif()
  if(option)
    set(option "; without it: ${option}")
  endif()
  message(FATAL_ERROR
    "${name}${version} is needed for ${purpose}; Debian has it in ${debian}${present}${option}")
endfunction()

function(samltoken_require_compiler)
  if(NOT "cxx_std_17" IN_LIST CMAKE_CXX_COMPILE_FEATURES)
    message(FATAL_ERROR
      "A compiler with C++17, such as GCC 12 or clang 14, is needed for the library; Debian has them in "
      "g++ and clang; ${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION} was found")
  endif()
endfunction()
