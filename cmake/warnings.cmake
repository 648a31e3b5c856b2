# The warnings that all code of the project is held to. Never passed on to users of the library.

add_library(qxfoundation_warnings INTERFACE)
target_compile_options(
  qxfoundation_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
                                  $<$<BOOL:${QXFOUNDATION_WERROR}>:-Werror>)
