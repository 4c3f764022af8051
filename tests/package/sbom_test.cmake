# cmake -DFILE=... -DVERSION=... -P sbom_test.cmake
#
# Whether a bill of materials has what SPDX 2.3 requires, in the right form, and tells of this version
# and of everything that the library is made of. Section numbers are those of SPDX 2.3.
cmake_minimum_required(VERSION 3.21)
file(READ "${FILE}" document)

# requires(json pattern path...): the text at this path matches.
function(requires json pattern)
  string(JSON value ERROR_VARIABLE missing GET "${json}" ${ARGN})
  if(missing)
    message(FATAL_ERROR "${missing}")
  elseif(NOT value MATCHES "^(${pattern})$")
    message(FATAL_ERROR "${ARGN} is '${value}', which does not match ${pattern}")
  endif()
endfunction()

requires("${document}" "SPDX-2\\.3" spdxVersion)                                     # 6.1
requires("${document}" "CC0-1\\.0" dataLicense)                                      # 6.2
requires("${document}" "SPDXRef-DOCUMENT" SPDXID)                                    # 6.3
requires("${document}" "samltoken-${VERSION}" name)                                  # 6.4
requires("${document}" "[a-z]+:[^#]+" documentNamespace)                             # 6.5
requires("${document}" "(Tool|Person|Organization): .+" creationInfo creators 0)     # 6.8
requires("${document}"
  "[0-9][0-9][0-9][0-9]-[0-9][0-9]-[0-9][0-9]T[0-9][0-9]:[0-9][0-9]:[0-9][0-9]Z"
  creationInfo created)                                                              # 6.9

set(identifiers SPDXRef-DOCUMENT)
set(names)
string(JSON count LENGTH "${document}" packages)
math(EXPR last "${count} - 1")
foreach(index RANGE ${last})
  string(JSON package GET "${document}" packages ${index})
  requires("${package}" ".+" name)                                                   # 7.1
  requires("${package}" "SPDXRef-[A-Za-z0-9.-]+" SPDXID)                             # 7.2
  requires("${package}" "[0-9]+\\.[0-9]+.*" versionInfo)                             # 7.3
  requires("${package}" "NOASSERTION|NONE|https?://.+" downloadLocation)             # 7.7
  requires("${package}" "OFF" filesAnalyzed)                                         # 7.8
  requires("${package}" "NOASSERTION|NONE|[A-Za-z0-9.+-]+" licenseConcluded)         # 7.13
  requires("${package}" "NOASSERTION|NONE|[A-Za-z0-9.+-]+" licenseDeclared)          # 7.15
  string(JSON identifier GET "${package}" SPDXID)
  string(JSON name GET "${package}" name)
  if(identifier IN_LIST identifiers)
    message(FATAL_ERROR "${identifier} is there twice")
  endif()
  list(APPEND identifiers "${identifier}")
  list(APPEND names "${name}")
endforeach()
foreach(name IN ITEMS samltoken expat openssl boost)
  if(NOT name IN_LIST names)
    message(FATAL_ERROR "Nothing is said of ${name}")
  endif()
endforeach()

set(described)
string(JSON count LENGTH "${document}" relationships)
math(EXPR last "${count} - 1")
foreach(index RANGE ${last})                                                         # 11.1
  string(JSON relationship GET "${document}" relationships ${index})
  requires("${relationship}" "DESCRIBES|DYNAMIC_LINK|DEPENDS_ON|BUILD_TOOL_OF" relationshipType)
  foreach(end IN ITEMS spdxElementId relatedSpdxElement)
    string(JSON identifier GET "${relationship}" ${end})
    if(NOT identifier IN_LIST identifiers)
      message(FATAL_ERROR "${identifier} is related to something, and nowhere")
    endif()
  endforeach()
  string(JSON type GET "${relationship}" relationshipType)
  if(type STREQUAL "DESCRIBES")
    string(JSON described GET "${relationship}" relatedSpdxElement)
  endif()
endforeach()
if(NOT described STREQUAL "SPDXRef-samltoken")
  message(FATAL_ERROR "The document does not say that it describes the library")
endif()
message(STATUS "${identifiers}")
