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
  set_target_properties(bench_${name} PROPERTIES CXX_EXTENSIONS OFF)
endforeach()
