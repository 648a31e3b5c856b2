# The warnings that all code of the project is held to. Never passed on to users of the library.

add_library(qxfoundation_warnings INTERFACE)
target_compile_options(
  qxfoundation_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
                                  $<$<BOOL:${QXFOUNDATION_WERROR}>:-Werror>)

# g++ 12 sees overlaps and overruns in std::string's own concatenation where there are none; its later versions do not.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(qxfoundation_warnings INTERFACE -Wno-restrict -Wno-array-bounds
                                                         -Wno-stringop-overflow)
endif()

# clang reports the use of std::get_temporary_buffer inside libstdc++'s own std::stable_sort.
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  target_compile_options(qxfoundation_warnings INTERFACE -Wno-deprecated-declarations)
endif()
