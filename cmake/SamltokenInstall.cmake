# What `cmake --install` puts under the prefix: the library, its four headers, and the two files by
# which CMake and pkg-config find them.
include(CMakePackageConfigHelpers)

set(samltoken_headers_dir "${CMAKE_INSTALL_INCLUDEDIR}/samltoken")
set(samltoken_package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/samltoken")

# `runtime` is what programs need, `development` what is needed to make them.
install(TARGETS samltoken EXPORT samltokenTargets
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
                COMPONENT runtime NAMELINK_COMPONENT development
        ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development
        RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT runtime)
install(FILES saml/foundations.h saml/xml.h saml/security.h saml/token.h
        DESTINATION "${samltoken_headers_dir}/saml" COMPONENT development)

install(EXPORT samltokenTargets NAMESPACE samltoken::
        DESTINATION "${samltoken_package_dir}" COMPONENT development)
configure_package_config_file(
  cmake/samltokenConfig.cmake.in "${PROJECT_BINARY_DIR}/samltokenConfig.cmake"
  INSTALL_DESTINATION "${samltoken_package_dir}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/samltokenConfigVersion.cmake"
                                 COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/samltokenConfig.cmake"
              "${PROJECT_BINARY_DIR}/samltokenConfigVersion.cmake"
        DESTINATION "${samltoken_package_dir}" COMPONENT development)

# The prefix is told relative to the file itself, so that a copy may be moved or installed elsewhere
# than configured. Absolute directories, which GNUInstallDirs allows, stay as they are.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  set(samltoken_pc_prefix "${CMAKE_INSTALL_PREFIX}")
else()
  file(RELATIVE_PATH samltoken_up_to_prefix "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
  string(REGEX REPLACE "/$" "" samltoken_up_to_prefix "${samltoken_up_to_prefix}")
  set(samltoken_pc_prefix "\${pcfiledir}/${samltoken_up_to_prefix}")
endif()
foreach(kind LIBDIR INCLUDEDIR)
  if(IS_ABSOLUTE "${CMAKE_INSTALL_${kind}}")
    set(samltoken_pc_${kind} "${CMAKE_INSTALL_${kind}}")
  else()
    set(samltoken_pc_${kind} "\${prefix}/${CMAKE_INSTALL_${kind}}")
  endif()
endforeach()
configure_file(cmake/samltoken.pc.in "${PROJECT_BINARY_DIR}/samltoken.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/samltoken.pc"
        DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)
