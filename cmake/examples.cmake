# Every file in examples/ is a program of its own that uses the public interface.

file(GLOB example_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/examples/*.cpp)
foreach(source IN LISTS example_sources)
  cmake_path(GET source STEM name)
  add_executable(example_${name} ${source})
  target_link_libraries(example_${name} PRIVATE qxfoundation qxfoundation_warnings)
  set_target_properties(example_${name} PROPERTIES CXX_EXTENSIONS OFF)
endforeach()
