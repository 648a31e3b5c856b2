# Libraries that serve the implementation. None of them appears in a public header, and a user of the
# shared library needs none of them to compile or link.

find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(Boost 1.74)

if(NOT Boost_FOUND)
  message(FATAL_ERROR "The Boost headers are missing; scripts/install-deps.sh build installs what is needed")
endif()

# pkg-config names of the libraries that are linked. The installed package names them again for static linking.
set(QXFOUNDATION_PKGCONFIG_DEPENDENCIES libutf8proc liburiparser)

set(qxfoundation_link_dependencies Threads::Threads)
foreach(module IN LISTS QXFOUNDATION_PKGCONFIG_DEPENDENCIES)
  pkg_check_modules(QXFOUNDATION_${module} QUIET IMPORTED_TARGET GLOBAL ${module})
  if(NOT QXFOUNDATION_${module}_FOUND)
    message(FATAL_ERROR "${module} is missing; scripts/install-deps.sh build installs what is needed")
  endif()
  list(APPEND qxfoundation_link_dependencies PkgConfig::QXFOUNDATION_${module})
endforeach()

# An independent XML parser, against which tests and fuzz targets hold the library's own reading of property lists.
if(QXFOUNDATION_BUILD_TESTS OR QXFOUNDATION_BUILD_FUZZERS)
  pkg_check_modules(QXFOUNDATION_expat QUIET IMPORTED_TARGET GLOBAL expat)
  if(NOT QXFOUNDATION_expat_FOUND)
    message(FATAL_ERROR "expat is missing; scripts/install-deps.sh test installs what the tests need")
  endif()
endif()
