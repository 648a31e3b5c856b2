# What can be chosen, and the settings that hold for every target.

option(QXFOUNDATION_STATIC "Build and install a static library instead of a shared one" OFF)
option(QXFOUNDATION_WERROR "Treat warnings as errors (meant for CI, never for users)" OFF)
option(QXFOUNDATION_BUILD_TOOLS "Build the command-line tool qx" ${PROJECT_IS_TOP_LEVEL})
option(QXFOUNDATION_BUILD_TESTS "Build the tests" ${PROJECT_IS_TOP_LEVEL})
option(QXFOUNDATION_BUILD_EXAMPLES "Build the example programs" ${PROJECT_IS_TOP_LEVEL})
option(QXFOUNDATION_BUILD_BENCHMARKS "Build the benchmarks" ${PROJECT_IS_TOP_LEVEL})
option(QXFOUNDATION_BUILD_FUZZERS "Build the fuzz targets (clang only)" OFF)
set(QXFOUNDATION_SANITIZE "" CACHE STRING
    "Sanitizers for everything built here, as for -fsanitize= (e.g. address,undefined)")

# A consumer that adds this folder to its own build keeps its own settings.
if(NOT PROJECT_IS_TOP_LEVEL)
  return()
endif()

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Kind of build" FORCE)
endif()

# Programs and libraries at one place, whichever folder declares them: DIR/bin/qx, DIR/lib/...
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)

# The sloppiness lets ccache serve sources that use the tests' precompiled header; paths below the base are cached as
# relative ones, so that another checkout is served too.
find_program(QXFOUNDATION_CCACHE ccache)
mark_as_advanced(QXFOUNDATION_CCACHE)
if(QXFOUNDATION_CCACHE AND NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER
      ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros CCACHE_BASEDIR=${PROJECT_SOURCE_DIR}
      CCACHE_NOHASHDIR=1 ${QXFOUNDATION_CCACHE})
endif()
