# Sanitizers go to every target of the build, so that no object file is left unchecked.
# A finding ends the program: otherwise a test could pass in spite of it.

if(QXFOUNDATION_SANITIZE)
  add_compile_options(-fsanitize=${QXFOUNDATION_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${QXFOUNDATION_SANITIZE})
endif()

if(QXFOUNDATION_BUILD_FUZZERS AND NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  message(FATAL_ERROR "Fuzz targets need clang (cmake --preset asan)")
endif()
