# The bill of materials, SPDX 2.3: what this build was made of, for whoever has to know where a flawed
# version of a library is in use. The same build gives the same text when SOURCE_DATE_EPOCH is set.
string(TIMESTAMP samltoken_sbom_time "%Y-%m-%dT%H:%M:%SZ" UTC)
set(samltoken_sbom_boost_version "${Boost_VERSION_MAJOR}.${Boost_VERSION_MINOR}.${Boost_VERSION_PATCH}")
if(OPENSSL_VERSION VERSION_LESS 3)
  set(samltoken_sbom_openssl_licence OpenSSL)
else()
  set(samltoken_sbom_openssl_licence Apache-2.0)
endif()
# A document of other contents has another name.
string(CONCAT samltoken_sbom_contents
  "${PROJECT_VERSION} ${EXPAT_VERSION_STRING} ${OPENSSL_VERSION} ${samltoken_sbom_boost_version} "
  "${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION} ${CMAKE_VERSION} ${samltoken_sbom_time}")
string(UUID samltoken_sbom_uuid
  NAMESPACE 6ba7b811-9dad-11d1-80b4-00c04fd430c8  # of URLs, RFC 4122 appendix C
  NAME "https://spdx.org/spdxdocs/samltoken ${samltoken_sbom_contents}" TYPE SHA1)

configure_file(cmake/samltoken.spdx.json.in "${PROJECT_BINARY_DIR}/samltoken.spdx.json" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/samltoken.spdx.json"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/sbom" COMPONENT development)
