# Libraries that serve the implementation. None of them appears in a public header, and a user of the
# shared library needs none of them to compile or link.

find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(Boost 1.74)

if(NOT Boost_FOUND)
  message(FATAL_ERROR "The Boost headers are missing; scripts/install-deps.sh build installs what is needed")
endif()

# pkg-config names of the libraries that are linked. The installed package names them again for static linking.
set(QXFOUNDATION_PKGCONFIG_DEPENDENCIES libutf8proc fmt expat liburiparser)

set(qxfoundation_link_dependencies Threads::Threads)
foreach(module IN LISTS QXFOUNDATION_PKGCONFIG_DEPENDENCIES)
  pkg_check_modules(QXFOUNDATION_${module} QUIET IMPORTED_TARGET GLOBAL ${module})
  if(NOT QXFOUNDATION_${module}_FOUND)
    message(FATAL_ERROR "${module} is missing; scripts/install-deps.sh build installs what is needed")
  endif()
  list(APPEND qxfoundation_link_dependencies PkgConfig::QXFOUNDATION_${module})
endforeach()
