# Runs PROGRAM with the arguments behind "--" in FOLDER, which holds a copy of data/ and nothing else, and compares its
# status with STATUS and all it writes with EXPECTED.txt, or with any of EXPECTED.on.*.txt.

set(is_argument OFF)
math(EXPR last "${CMAKE_ARGC} - 1")
foreach(i RANGE ${last})
  if(is_argument)
    list(APPEND arguments "${CMAKE_ARGV${i}}")
  elseif(CMAKE_ARGV${i} STREQUAL "--")
    set(is_argument ON)
  endif()
endforeach()

file(REMOVE_RECURSE ${FOLDER})
file(COPY ${CMAKE_CURRENT_LIST_DIR}/data DESTINATION ${FOLDER})
execute_process(COMMAND ${PROGRAM} ${arguments} WORKING_DIRECTORY ${FOLDER}
                RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(NOT status STREQUAL STATUS)
  message(FATAL_ERROR "ends with ${status}, not with ${STATUS}:\n${output}")
endif()

file(GLOB candidates ${EXPECTED}.txt ${EXPECTED}.on.*.txt)
foreach(candidate IN LISTS candidates)
  file(READ ${candidate} expected)
  if(output STREQUAL expected)
    return()
  endif()
endforeach()
message(FATAL_ERROR "writes what is in none of \"${candidates}\":\n${output}")
