# Every file in bench/ is a benchmark program of its own; it is left out where Google Benchmark is missing.

file(GLOB benchmark_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/bench/*.cpp)
if(NOT benchmark_sources)
  return()
endif()

find_package(benchmark QUIET)
if(NOT benchmark_FOUND)
  message(STATUS "Benchmarks are left out: Google Benchmark is not installed (libbenchmark-dev)")
  return()
endif()

foreach(source IN LISTS benchmark_sources)
  cmake_path(GET source STEM name)
  add_executable(bench_${name} ${source})
  target_link_libraries(bench_${name} PRIVATE qxfoundation_objects qxfoundation_warnings
                                              benchmark::benchmark_main)
  target_compile_definitions(bench_${name} PRIVATE QX_BENCH_DIR="${PROJECT_SOURCE_DIR}/bench")
  set_target_properties(bench_${name} PROPERTIES CXX_EXTENSIONS OFF)
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

find_package(Qt5 QUIET COMPONENTS Core)
find_package(absl QUIET)
find_package(SQLite3 QUIET)
qxfoundation_bench_peer(collections_strings QX_BENCH_QT Qt5::Core qtbase5-dev)
qxfoundation_bench_peer(collections_strings QX_BENCH_ABSL absl::strings libabsl-dev)
qxfoundation_bench_peer(sort QX_BENCH_SQLITE SQLite::SQLite3 libsqlite3-dev)
