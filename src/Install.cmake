# What a host or an extension outside this tree builds against: the headers, a CMake package and a
# pkg-config file.

include(CMakePackageConfigHelpers)

set(umbrella ${CMAKE_CURRENT_BINARY_DIR}/velacore/velacore.h)
list(TRANSFORM VELA_PUBLIC_HEADERS REPLACE "(.+)" "#include \"\\1\"" OUTPUT_VARIABLE includes)
list(JOIN includes "\n" includes)
file(CONFIGURE OUTPUT ${umbrella} @ONLY CONTENT
"// SPDX-License-Identifier: MIT
#pragma once

#include \"version.h\"
@includes@
")

foreach(header IN LISTS VELA_PUBLIC_HEADERS)
    get_filename_component(folder ${header} DIRECTORY)
    install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/velacore/${folder})
endforeach()
install(FILES ${umbrella} ${CMAKE_CURRENT_BINARY_DIR}/velacore/version.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/velacore)

install(TARGETS velacore EXPORT velacore
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/velacore)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/velacore)
install(EXPORT velacore FILE velacore-targets.cmake NAMESPACE Vela:: DESTINATION ${package_dir})
configure_package_config_file(velacore-config.cmake.in velacore-config.cmake
    INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(velacore-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES
    ${CMAKE_CURRENT_BINARY_DIR}/velacore-config.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/velacore-config-version.cmake
    DESTINATION ${package_dir})

# The tree may be installed under another prefix than it was configured for, and moved.
file(RELATIVE_PATH pkgconfig_to_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(velacore.pc.in velacore.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/velacore.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
