# Debian packages: `cpack -G DEB` in a build tree makes one for the library, one for development, one for the tool.
# A new binary interface gives the library's package a new name, so that two of them can be installed beside each other.

set(library_package libqxfoundation${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})

set(CPACK_PACKAGE_NAME qxfoundation)
set(CPACK_PACKAGE_VENDOR "The QXFoundation developers")
set(CPACK_PACKAGE_CONTACT "The QXFoundation developers <qxfoundation@localhost>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL library development tool)
if(QXFOUNDATION_STATIC)
  list(REMOVE_ITEM CPACK_COMPONENTS_ALL library)
endif()
if(NOT QXFOUNDATION_BUILD_TOOLS)
  list(REMOVE_ITEM CPACK_COMPONENTS_ALL tool)
endif()

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The tool needs the library, whose package is being made and is asked for by name below.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME ${library_package})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "Utility library for desktop applications
 Qualifiers, orderings, preferences, property lists, locks, dates and collections for C++20.")
# ldconfig is told of the library, and programs that are packaged find their dependency.
set(CPACK_DEBIAN_LIBRARY_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_GENERATE_SHLIBS_POLICY "=")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libqxfoundation-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${library_package} (= ${PROJECT_VERSION})")
if(QXFOUNDATION_STATIC)
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libutf8proc-dev, liburiparser-dev")
endif()
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "Utility library for desktop applications, development files
 Headers of QXFoundation, its CMake package and its pkg-config file.")

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME qxfoundation-tools)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS "${library_package} (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_TOOL_DESCRIPTION "Selects records, converts property lists, keeps settings
 The command qx, with its manual page and completion for bash and zsh.")

include(CPack)
