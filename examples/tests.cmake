# What each example prints, held against expected/*.txt, in a folder of its own with a fresh copy of data/.

# qxfoundation_example_test(TEST EXAMPLE [FAILS STATUS] [ARGUMENTS ...]): the output and the messages of the example,
# together, are those of expected/TEST.txt, or of expected/TEST.on.*.txt where it depends on the machine. It ends with 0, or
# with the status that is given.
function(qxfoundation_example_test test example)
  cmake_parse_arguments(PARSE_ARGV 2 arg "" "FAILS" "ARGUMENTS")
  if(NOT arg_FAILS)
    set(arg_FAILS 0)
  endif()
  add_test(NAME examples.${test}
           COMMAND ${CMAKE_COMMAND} -DPROGRAM=$<TARGET_FILE:example_${example}> -DSTATUS=${arg_FAILS}
                   -DEXPECTED=${CMAKE_CURRENT_SOURCE_DIR}/expected/${test}
                   -DFOLDER=${CMAKE_CURRENT_BINARY_DIR}/run/${test}
                   -P ${CMAKE_CURRENT_SOURCE_DIR}/check_output.cmake -- ${arg_ARGUMENTS})
  set_tests_properties(examples.${test} PROPERTIES LABELS unit TIMEOUT 120)
endfunction()

foreach(example IN ITEMS collections property_list readme select threads values)
  qxfoundation_example_test(${example} ${example})
endforeach()
qxfoundation_example_test(files files ARGUMENTS .)
qxfoundation_example_test(ordering ordering ARGUMENTS data/passwd -shell name)
qxfoundation_example_test(select.format select ARGUMENTS "pages < %d and title like '*E*'" 300)
qxfoundation_example_test(preferences preferences ARGUMENTS settings.plist)

# What is wrong is told, and ends them with a status that tells it too.
qxfoundation_example_test(collections.refused collections FAILS 1 ARGUMENTS nowhere)
qxfoundation_example_test(ordering.refused ordering FAILS 1 ARGUMENTS data/settings-old.plist)
qxfoundation_example_test(ordering.no_such_field ordering FAILS 2 ARGUMENTS data/passwd colour)
qxfoundation_example_test(preferences.refused preferences FAILS 1 ARGUMENTS nowhere/settings.plist)
qxfoundation_example_test(property_list.refused property_list FAILS 1 ARGUMENTS nowhere data/passwd)
qxfoundation_example_test(select.refused select FAILS 2 ARGUMENTS "pages < %d and %y" 300)
qxfoundation_example_test(select.no_number select FAILS 2 ARGUMENTS "pages < %d" many)
qxfoundation_example_test(threads.refused threads FAILS 1 ARGUMENTS nowhere data/passwd)
qxfoundation_example_test(values.refused values FAILS 1 ARGUMENTS nowhere)
qxfoundation_example_test(values.malformed values FAILS 1 ARGUMENTS data/passwd)

# Each checks that nothing is lost, that every sender's messages come in order, and that the host is served meanwhile.
foreach(host IN ITEMS glib libuv qt)
  if(TARGET example_hosting_${host})
    add_test(NAME hosting.${host} COMMAND example_hosting_${host} 100000)
    set_tests_properties(
      hosting.${host} PROPERTIES LABELS hosting TIMEOUT 120 ENVIRONMENT QT_QPA_PLATFORM=offscreen)
  endif()
endforeach()

# Another output than the expected one is found.
qxfoundation_example_test(check.finds_other_output readme)
set_tests_properties(examples.check.finds_other_output PROPERTIES PASS_REGULAR_EXPRESSION "writes what is in none of")
