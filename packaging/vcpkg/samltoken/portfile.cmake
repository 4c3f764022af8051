# The port builds the sources that it stands in, since there is no published archive yet: use it with
# --overlay-ports=packaging/vcpkg. A registry's copy replaces these two lines with vcpkg_from_github or
# vcpkg_download_distfile and the archive's checksum.
get_filename_component(SOURCE_PATH "${CMAKE_CURRENT_LIST_DIR}/../../.." ABSOLUTE)
message(STATUS "Building ${SOURCE_PATH}")

vcpkg_check_linkage(ONLY_DYNAMIC_LIBRARY)
vcpkg_cmake_configure(
    SOURCE_PATH "${SOURCE_PATH}"
    OPTIONS
        -DSAMLTOKEN_BUILD_TESTS=OFF
        -DSAMLTOKEN_BUILD_EXAMPLES=OFF
)
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(CONFIG_PATH lib/cmake/samltoken)
vcpkg_fixup_pkgconfig()
file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include" "${CURRENT_PACKAGES_DIR}/debug/share")
file(INSTALL "${CMAKE_CURRENT_LIST_DIR}/usage" DESTINATION "${CURRENT_PACKAGES_DIR}/share/${PORT}")
# In the place of a licence, which there is none of yet.
file(INSTALL "${SOURCE_PATH}/packaging/debian/copyright"
     DESTINATION "${CURRENT_PACKAGES_DIR}/share/${PORT}" RENAME copyright)
