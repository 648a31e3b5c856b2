# Every file in examples/ is a program of its own that uses the public interface.

file(GLOB example_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/examples/*.cpp)
foreach(source IN LISTS example_sources)
  cmake_path(GET source STEM name)
  add_executable(example_${name} ${source})
  target_link_libraries(example_${name} PRIVATE qxfoundation qxfoundation_warnings)
  set_target_properties(example_${name} PROPERTIES CXX_EXTENSIONS OFF)
endforeach()

# examples/hosting/NAME.cpp: a run loop inside the loop of another library, where that is installed.
#   qxfoundation_hosting_example(NAME TARGET DEBIAN_PACKAGE)
function(qxfoundation_hosting_example name library package)
  if(NOT TARGET ${library})
    message(STATUS "example_hosting_${name} is left out: ${package} is not installed")
    return()
  endif()
  add_executable(example_hosting_${name} ${PROJECT_SOURCE_DIR}/examples/hosting/${name}.cpp)
  target_include_directories(example_hosting_${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(example_hosting_${name} PRIVATE qxfoundation qxfoundation_warnings ${library})
  set_target_properties(example_hosting_${name} PROPERTIES CXX_EXTENSIONS OFF)
endfunction()

pkg_check_modules(QXFOUNDATION_HOST_GLIB QUIET IMPORTED_TARGET GLOBAL glib-2.0)
pkg_check_modules(QXFOUNDATION_HOST_LIBUV QUIET IMPORTED_TARGET GLOBAL libuv)
find_package(Qt6 QUIET COMPONENTS Gui)
qxfoundation_hosting_example(glib PkgConfig::QXFOUNDATION_HOST_GLIB libglib2.0-dev)
qxfoundation_hosting_example(libuv PkgConfig::QXFOUNDATION_HOST_LIBUV libuv1-dev)
qxfoundation_hosting_example(qt Qt6::Gui qt6-base-dev)
