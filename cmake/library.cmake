# The library. Its sources are compiled once, into an object library: the shared (or static) library is made
# of these objects, and tests and benchmarks link them directly, so that they reach what is not exported.

set(qxfoundation_folders
    frame platform qualifiers ordering preferences files values collections threads library)

include(CheckLinkerFlag)

list(TRANSFORM qxfoundation_folders PREPEND ${PROJECT_SOURCE_DIR}/ OUTPUT_VARIABLE source_patterns)
list(TRANSFORM source_patterns APPEND /*.cpp)
file(GLOB_RECURSE qxfoundation_sources CONFIGURE_DEPENDS ${source_patterns})
if(NOT qxfoundation_sources)
  # Object and shared libraries cannot be empty; an empty translation unit lets the build files be tried alone.
  file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/empty.cpp CONTENT "")
  set(qxfoundation_sources ${PROJECT_BINARY_DIR}/empty.cpp)
endif()

add_library(qxfoundation_objects OBJECT ${qxfoundation_sources})
target_compile_features(qxfoundation_objects PUBLIC cxx_std_20)
target_compile_definitions(qxfoundation_objects PRIVATE QX_BUILDING)
# Calls inside the library go to the library's own functions, and may be inlined, although they are exported.
target_compile_options(qxfoundation_objects PRIVATE -fno-semantic-interposition)
target_include_directories(qxfoundation_objects PUBLIC ${PROJECT_SOURCE_DIR}/include
                                                       ${PROJECT_SOURCE_DIR})
target_link_libraries(
  qxfoundation_objects
  PRIVATE qxfoundation_warnings Boost::headers
  PUBLIC ${qxfoundation_link_dependencies})
set_target_properties(
  qxfoundation_objects
  PROPERTIES CXX_EXTENSIONS OFF
             CXX_VISIBILITY_PRESET hidden
             VISIBILITY_INLINES_HIDDEN ON
             POSITION_INDEPENDENT_CODE ON)

if(QXFOUNDATION_STATIC)
  add_library(qxfoundation STATIC $<TARGET_OBJECTS:qxfoundation_objects>)
  target_compile_definitions(qxfoundation INTERFACE QX_STATIC)
else()
  add_library(qxfoundation SHARED $<TARGET_OBJECTS:qxfoundation_objects>)
  # Sanitizer runtimes are linked to the program alone and leave references open.
  if(NOT QXFOUNDATION_SANITIZE)
    target_link_options(qxfoundation PRIVATE LINKER:--no-undefined)
  endif()
  # Loading looks up by name only what other libraries have, and patches the rest from a compact table: that
  # halves what the dynamic linker reads and writes.
  target_link_options(qxfoundation PRIVATE LINKER:-Bsymbolic-functions)
  check_linker_flag(CXX LINKER:-z,pack-relative-relocs qxfoundation_linker_packs)
  if(qxfoundation_linker_packs)
    target_link_options(qxfoundation PRIVATE LINKER:-z,pack-relative-relocs)
  endif()
endif()
add_library(QXFoundation::QXFoundation ALIAS qxfoundation)

target_compile_features(qxfoundation PUBLIC cxx_std_20)
target_include_directories(
  qxfoundation PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
                      $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_link_libraries(qxfoundation PRIVATE ${qxfoundation_link_dependencies})
set_target_properties(
  qxfoundation
  PROPERTIES EXPORT_NAME QXFoundation
             LINKER_LANGUAGE CXX
             VERSION ${PROJECT_VERSION}
             # Until 1.0 every minor version may change the binary interface.
             SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
