# What an installed copy holds: library, public headers, CMake package, pkg-config file. Every path in the
# package is relative to where it lies, so that an installed tree can be moved. The components `library`,
# `development` and `tool` are the Debian packages (packages.cmake).

include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/QXFoundation)

install(TARGETS qxfoundation EXPORT QXFoundationTargets
        LIBRARY COMPONENT library NAMELINK_COMPONENT development
        ARCHIVE COMPONENT development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development
        FILES_MATCHING PATTERN "*.h")

install(EXPORT QXFoundationTargets NAMESPACE QXFoundation:: DESTINATION ${package_dir}
        COMPONENT development)
configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/QXFoundationConfig.cmake.in
  ${PROJECT_BINARY_DIR}/QXFoundationConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/QXFoundationConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/QXFoundationConfig.cmake
              ${PROJECT_BINARY_DIR}/QXFoundationConfigVersion.cmake DESTINATION ${package_dir}
        COMPONENT development)

set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH pkgconfig_to_prefix /prefix/${pkgconfig_dir} /prefix)
string(REGEX REPLACE "/$" "" pkgconfig_to_prefix "${pkgconfig_to_prefix}")
list(JOIN QXFOUNDATION_PKGCONFIG_DEPENDENCIES " " pkgconfig_requires)
configure_file(${PROJECT_SOURCE_DIR}/cmake/qxfoundation.pc.in
               ${PROJECT_BINARY_DIR}/qxfoundation.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/qxfoundation.pc DESTINATION ${pkgconfig_dir} COMPONENT development)
