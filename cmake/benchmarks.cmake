# Every file in bench/ is a benchmark program of its own, and every folder one; they are left out where Google
# Benchmark is missing.

file(GLOB benchmark_programs CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/bench/*.cpp)
file(GLOB benchmark_parts CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/bench/*/*.cpp)
foreach(part IN LISTS benchmark_parts)
  cmake_path(GET part PARENT_PATH folder)
  list(APPEND benchmark_programs ${folder})
endforeach()
list(REMOVE_DUPLICATES benchmark_programs)
if(NOT benchmark_programs)
  return()
endif()

find_package(benchmark QUIET)
if(NOT benchmark_FOUND)
  message(STATUS "Benchmarks are left out: Google Benchmark is not installed (libbenchmark-dev)")
  return()
endif()

add_custom_target(benchmarks)
foreach(program IN LISTS benchmark_programs)
  cmake_path(GET program STEM name)
  set(sources ${program})
  if(IS_DIRECTORY ${program})
    file(GLOB sources CONFIGURE_DEPENDS ${program}/*.cpp)
  endif()
  add_executable(bench_${name} ${sources})
  target_link_libraries(bench_${name} PRIVATE qxfoundation_objects qxfoundation_warnings
                                              benchmark::benchmark_main)
  set_target_properties(bench_${name} PROPERTIES CXX_EXTENSIONS OFF)
  add_dependencies(benchmarks bench_${name})
endforeach()

# Peers: libraries that a benchmark measures beside this one, where they are installed.
#   qxfoundation_bench_peer(BENCHMARK DEFINITION TARGET DEBIAN_PACKAGE)
function(qxfoundation_bench_peer name definition library package)
  if(NOT TARGET bench_${name})
    return()
  endif()
  if(NOT TARGET ${library})
    message(STATUS "bench_${name} leaves out a peer: ${package} is not installed")
    return()
  endif()
  target_link_libraries(bench_${name} PRIVATE ${library})
  target_compile_definitions(bench_${name} PRIVATE ${definition})
endfunction()

# Two versions of one peer: neither may take the names without a version.
set(QT_NO_CREATE_VERSIONLESS_TARGETS ON)
find_package(Qt5 QUIET COMPONENTS Core)
find_package(Qt6 QUIET COMPONENTS Core)
find_package(absl QUIET)
find_package(SQLite3 QUIET)
qxfoundation_bench_peer(collections_strings QX_BENCH_QT Qt5::Core qtbase5-dev)
qxfoundation_bench_peer(collections_strings QX_BENCH_ABSL absl::strings libabsl-dev)
qxfoundation_bench_peer(values_dates QX_BENCH_ABSL absl::time libabsl-dev)
qxfoundation_bench_peer(sort QX_BENCH_SQLITE SQLite::SQLite3 libsqlite3-dev)
find_package(nlohmann_json QUIET)
pkg_check_modules(QXFOUNDATION_BENCH_LUA QUIET IMPORTED_TARGET lua5.4)
qxfoundation_bench_peer(qualifier_filter QX_BENCH_SQLITE SQLite::SQLite3 libsqlite3-dev)
qxfoundation_bench_peer(qualifier_filter QX_BENCH_NLOHMANN nlohmann_json::nlohmann_json nlohmann-json3-dev)
qxfoundation_bench_peer(qualifier_filter QX_BENCH_LUA PkgConfig::QXFOUNDATION_BENCH_LUA liblua5.4-dev)
find_program(QXFOUNDATION_NODE NAMES node nodejs)
if(TARGET bench_qualifier_filter AND QXFOUNDATION_NODE)
  target_compile_definitions(bench_qualifier_filter PRIVATE QX_BENCH_NODE="${QXFOUNDATION_NODE}"
                                                            QX_BENCH_DIR="${PROJECT_SOURCE_DIR}/bench")
elseif(TARGET bench_qualifier_filter)
  message(STATUS "bench_qualifier_filter leaves out a peer: nodejs is not installed")
endif()
pkg_check_modules(QXFOUNDATION_BENCH_GLIB QUIET IMPORTED_TARGET glib-2.0)
qxfoundation_bench_peer(preferences QX_BENCH_QT Qt6::Core qt6-base-dev)
qxfoundation_bench_peer(preferences QX_BENCH_GLIB PkgConfig::QXFOUNDATION_BENCH_GLIB libglib2.0-dev)

# Peers that are measured beside, where they are installed. Scripts of other languages stand in bench/ too.
if(TARGET bench_property_list)
  target_compile_definitions(bench_property_list PRIVATE QX_BENCH_DIR="${PROJECT_SOURCE_DIR}/bench")
  pkg_check_modules(libplist QUIET IMPORTED_TARGET libplist-2.0)
  if(libplist_FOUND)
    target_compile_definitions(bench_property_list PRIVATE QX_BENCH_LIBPLIST)
    target_link_libraries(bench_property_list PRIVATE PkgConfig::libplist)
  else()
    message(STATUS "bench_property_list leaves out libplist: it is not installed (libplist-dev)")
  endif()
endif()

# Boost.URL came with a Boost whose package excludes that of the Boost the library is built with. Both
# can only stand side by side where one is unpacked in a folder of its own.
set(QX_BENCH_BOOST_URL_ROOT ${PROJECT_SOURCE_DIR}/build/peers/boost-url CACHE PATH
    "Where scripts/unpack-boost-url.sh has unpacked Boost.URL")
find_library(QX_BENCH_BOOST_URL_LIBRARY NAMES libboost_url.a NO_DEFAULT_PATH
             PATHS ${QX_BENCH_BOOST_URL_ROOT}/usr/lib PATH_SUFFIXES ${CMAKE_LIBRARY_ARCHITECTURE})
if(QX_BENCH_BOOST_URL_LIBRARY)
  add_library(qxfoundation_bench_boost_url STATIC IMPORTED)
  set_target_properties(qxfoundation_bench_boost_url PROPERTIES
    IMPORTED_LOCATION ${QX_BENCH_BOOST_URL_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${QX_BENCH_BOOST_URL_ROOT}/usr/include)
endif()
qxfoundation_bench_peer(files_url_query QX_BENCH_BOOST_URL qxfoundation_bench_boost_url
                        "libboost-url1.81-dev (scripts/unpack-boost-url.sh)")

qxfoundation_bench_peer(files_locks QX_BENCH_QT Qt6::Core qt6-base-dev)
qxfoundation_bench_peer(files_url_query QX_BENCH_QT Qt6::Core qt6-base-dev)
pkg_check_modules(QXFOUNDATION_BENCH_LIBUV QUIET IMPORTED_TARGET libuv)
qxfoundation_bench_peer(thread_messages QX_BENCH_QT Qt6::Core qt6-base-dev)
qxfoundation_bench_peer(thread_messages QX_BENCH_GLIB PkgConfig::QXFOUNDATION_BENCH_GLIB libglib2.0-dev)
qxfoundation_bench_peer(thread_messages QX_BENCH_LIBUV PkgConfig::QXFOUNDATION_BENCH_LIBUV libuv1-dev)
