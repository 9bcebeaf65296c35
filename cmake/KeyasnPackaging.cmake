# Debian packages made by CPack from the install components (scripts/package):
#   libkeyasn1     runtime      the shared library, stripped, with symbols and shlibs
#   libkeyasn-dev  development  headers, the .so link, keyasn.pc, the CMake package
#   keyasn-tools   tools        the keyasn tool (with its manual page and completion)
# Dependencies are computed: on the system libraries by dpkg-shlibdeps, between the
# three packages from the component graph (an exact version).
set(KEYASN_MAINTAINER "keyasn developers <keyasn-dev@lists.example.org>")
set(KEYASN_SYMBOLS_FILE ${PROJECT_SOURCE_DIR}/packaging/libkeyasn1.symbols)
set(pkg_dir ${PROJECT_BINARY_DIR}/packaging)

# Each package's /usr/share/doc/<package>: the copyright file and the changelog
# (a native package's changelog.gz). Only component installs (CPack) take them.
configure_file(packaging/changelog.in ${pkg_dir}/changelog @ONLY)
execute_process(COMMAND gzip -9 -n -f ${pkg_dir}/changelog RESULT_VARIABLE gzip_result)
if(NOT gzip_result EQUAL 0)
  message(FATAL_ERROR "gzip failed on ${pkg_dir}/changelog")
endif()
set(package_components runtime development)
set(package_names libkeyasn1 libkeyasn-dev)
if(TARGET keyasn_cli)
  list(APPEND package_components tools)
  list(APPEND package_names keyasn-tools)
endif()
foreach(component package IN ZIP_LISTS package_components package_names)
  install(FILES packaging/copyright ${pkg_dir}/changelog.gz EXCLUDE_FROM_ALL
          DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${package} COMPONENT ${component})
endforeach()
install(FILES CHANGELOG.md EXCLUDE_FROM_ALL COMPONENT development
        DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/libkeyasn-dev)

# The runtime package's control files besides those CPack writes: the checked
# symbols list (packaging/symbols.sh keeps it current) and the ldconfig trigger.
configure_file(${KEYASN_SYMBOLS_FILE} ${pkg_dir}/symbols COPYONLY)
configure_file(packaging/triggers ${pkg_dir}/triggers COPYONLY)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME keyasn)
set(CPACK_PACKAGE_VENDOR "keyasn developers")
set(CPACK_PACKAGE_CONTACT "${KEYASN_MAINTAINER}")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL ${package_components})
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The tool links the library being packaged: dpkg-shlibdeps finds it in the build
# tree, and the dependency on it comes from the component graph.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/keyasn)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libkeyasn1)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${pkg_dir}/symbols ${pkg_dir}/triggers)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libkeyasn-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME keyasn-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)

set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
"ASN.1 BER/DER codec and key record library
keyasn encodes and decodes ASN.1 BER/DER and reads and writes the key
records of a cryptographic product: key descriptions and containers,
validity periods, algorithm identifiers, encrypted, exported and exchanged
keys, PKCS#11 descriptions and the GOST 28147-89 parameter set. It does no
cryptography itself.
This package holds the shared library.")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
"ASN.1 BER/DER codec and key record library - development files
keyasn encodes and decodes ASN.1 BER/DER and reads and writes the key
records of a cryptographic product.
This package holds the C++ headers, the link to the shared library, the
pkg-config file and the CMake package (find_package(keyasn)).")
set(CPACK_COMPONENT_TOOLS_DESCRIPTION
"command-line tool for keyasn key records and DER files
The keyasn tool shows DER files as element trees and the key records of
the keyasn library member by member, as text or JSON, and writes records
back from JSON.")

include(CPack)
cpack_add_component(runtime DISPLAY_NAME "Shared library")
cpack_add_component(development DISPLAY_NAME "Development files" DEPENDS runtime)
if(TARGET keyasn_cli)
  cpack_add_component(tools DISPLAY_NAME "Command-line tool" DEPENDS runtime)
endif()
