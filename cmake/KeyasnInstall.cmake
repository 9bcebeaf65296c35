# Install rules, each in one of three components that become the Debian packages:
#   runtime      the shared library (libkeyasn1)
#   development  headers, the .so link, the CMake package and keyasn.pc (libkeyasn-dev)
#   tools        the keyasn tool, its manual page and bash completion (keyasn-tools)
# Every path is relative to the prefix, so the tree can be installed anywhere.

# The public headers are the umbrella header and what it includes; internal
# headers of the library stay out of the installed tree.
file(STRINGS keyasn/keyasn.h umbrella_lines REGEX "^#include \"keyasn/")
foreach(line ${umbrella_lines})
  string(REGEX REPLACE "^#include \"keyasn/([^\"]+)\".*" "\\1" header "${line}")
  get_filename_component(header_dir ${header} DIRECTORY)
  install(FILES keyasn/${header} COMPONENT development
          DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/keyasn/${header_dir})
endforeach()
install(FILES keyasn/keyasn.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/keyasn
        COMPONENT development)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS keyasn/keyasn.h)

# The include directory comes from the target's INSTALL_INTERFACE alone.
install(TARGETS keyasn EXPORT keyasnTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
                COMPONENT runtime NAMELINK_COMPONENT development)
install(EXPORT keyasnTargets NAMESPACE keyasn:: COMPONENT development
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/keyasn)
include(CMakePackageConfigHelpers)
configure_package_config_file(cmake/keyasnConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/keyasnConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/keyasn)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/keyasnConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/keyasnConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/keyasnConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/keyasn COMPONENT development)

# keyasn.pc finds the prefix from its own place (${pcfiledir}), whatever the
# prefix and however deep the libdir (lib, lib64, lib/x86_64-linux-gnu).
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}" OR IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
  message(FATAL_ERROR "keyasn.pc needs CMAKE_INSTALL_LIBDIR and CMAKE_INSTALL_INCLUDEDIR "
                      "relative to the prefix")
endif()
file(RELATIVE_PATH KEYASN_PC_TO_PREFIX "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
configure_file(cmake/keyasn.pc.in ${CMAKE_CURRENT_BINARY_DIR}/keyasn.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/keyasn.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
