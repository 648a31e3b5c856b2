# Every file in fuzz/ is a fuzz target of its own: fuzz/NAME.cpp makes fuzz_NAME, with its inputs in
# fuzz/corpus/NAME/.

# Coverage for the fuzz engine goes to the library and the targets, its main function to the targets alone. Tests of the
# same build run with the counters, which the sanitizer's own runtime takes.
target_compile_options(qxfoundation_objects PRIVATE -fsanitize=fuzzer-no-link)
add_custom_target(fuzzers)

file(GLOB fuzz_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/fuzz/*.cpp)
foreach(source IN LISTS fuzz_sources)
  cmake_path(GET source STEM name)
  add_executable(fuzz_${name} ${source})
  target_link_libraries(fuzz_${name} PRIVATE qxfoundation_objects qxfoundation_warnings
                                             PkgConfig::QXFOUNDATION_expat)
  target_compile_options(fuzz_${name} PRIVATE -fsanitize=fuzzer-no-link)
  target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
  add_dependencies(fuzzers fuzz_${name})
  set_target_properties(fuzz_${name} PROPERTIES CXX_EXTENSIONS OFF)
endforeach()
