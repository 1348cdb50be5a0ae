# What is installed: the headers, the library, and how CMake and pkg-config find them. Nothing names the prefix, so
# that an installed tree can be moved.
include(CMakePackageConfigHelpers)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/OrvaAPI64)
install(FILES include/orva.h include/orva.hpp DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/orva DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT OrvaAPI64Targets NAMESPACE OrvaAPI64:: DESTINATION ${package_folder})

write_basic_package_version_file(${PROJECT_BINARY_DIR}/OrvaAPI64ConfigVersion.cmake
  VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES cmake/OrvaAPI64Config.cmake ${PROJECT_BINARY_DIR}/OrvaAPI64ConfigVersion.cmake
  DESTINATION ${package_folder})

set(pkgconfig_folder ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH prefix_from_pkgconfig /prefix/${pkgconfig_folder} /prefix)
string(REGEX REPLACE "/$" "" prefix_from_pkgconfig ${prefix_from_pkgconfig})
configure_file(cmake/OrvaAPI64.pc.in ${PROJECT_BINARY_DIR}/OrvaAPI64.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/OrvaAPI64.pc DESTINATION ${pkgconfig_folder})
