# Every file in fuzz/ is a fuzz target of its own: fuzz/NAME.cpp makes fuzz_NAME, with its inputs in
# fuzz/corpus/NAME/.

file(GLOB fuzz_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/fuzz/*.cpp)
foreach(source IN LISTS fuzz_sources)
  cmake_path(GET source STEM name)
  add_executable(fuzz_${name} ${source})
  target_link_libraries(fuzz_${name} PRIVATE qxfoundation_objects qxfoundation_warnings
                                             PkgConfig::QXFOUNDATION_expat)
  target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
  set_target_properties(fuzz_${name} PROPERTIES CXX_EXTENSIONS OFF)
endforeach()
