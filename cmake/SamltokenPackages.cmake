# What cpack makes of an installation: two Debian packages, one for programs and one for who makes
# programs. scripts/package configures for it, calls it and looks at what comes out.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME samltoken)
set(CPACK_PACKAGE_VENDOR samltoken)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(SAMLTOKEN_PACKAGE_CONTACT "The makers of samltoken <samltoken@example.org>"
    CACHE STRING "Whom users of the packages may write to")
mark_as_advanced(SAMLTOKEN_PACKAGE_CONTACT)
set(CPACK_PACKAGE_CONTACT "${SAMLTOKEN_PACKAGE_CONTACT}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_COMPONENTS_ALL runtime development)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)

set(runtime libsamltoken${PROJECT_VERSION_MAJOR})
set(development libsamltoken-dev)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SOURCE samltoken)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(words "It verifies the signature of a SAML 2.0 assertion against the\n\
certificates that its caller trusts, checks its structure and its validity\n\
window, and tells who is calling, with which groups and through which\n\
delegates.\n.\n")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${runtime})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
# expat has no versioned symbols, so what it must at least be is said here.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS "libexpat1 (>= 2.4.1)")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/packaging/debian/triggers")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
    "verification of SAML 2.0 tokens, shared library\n${words}This package has what programs need.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME ${development})
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "${runtime} (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}), libboost-dev (>= 1.74)")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "verification of SAML 2.0 tokens, headers\n${words}This package has what is needed to make programs.")

# What Debian wants beside: the licence, both changelogs, and for the makers of programs an example.
file(STRINGS "${PROJECT_SOURCE_DIR}/packaging/debian/changelog" newest LIMIT_COUNT 1)
set(expected "samltoken \\(${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}\\) .*")
if(NOT newest MATCHES "^${expected}$")
  message(FATAL_ERROR "packaging/debian/changelog does not begin with this version: ${newest}")
endif()
find_program(SAMLTOKEN_gzip gzip REQUIRED)
mark_as_advanced(SAMLTOKEN_gzip)
set(documents "${PROJECT_BINARY_DIR}/packaging")
file(MAKE_DIRECTORY "${documents}")
foreach(pair IN ITEMS packaging/debian/changelog:changelog.Debian.gz CHANGELOG.md:changelog.gz)
  string(REGEX MATCH "^(.*):(.*)$" pair "${pair}")
  execute_process(COMMAND "${SAMLTOKEN_gzip}" -9nc "${PROJECT_SOURCE_DIR}/${CMAKE_MATCH_1}"
                  OUTPUT_FILE "${documents}/${CMAKE_MATCH_2}" COMMAND_ERROR_IS_FATAL ANY)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/${CMAKE_MATCH_1}")
endforeach()
foreach(component IN ITEMS runtime development)
  install(FILES packaging/debian/copyright "${documents}/changelog.Debian.gz" "${documents}/changelog.gz"
          DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${${component}}" COMPONENT ${component})
endforeach()
install(FILES examples/who_is_calling.cpp packaging/example/CMakeLists.txt
        DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${development}/examples" COMPONENT development)
include(CPack)
