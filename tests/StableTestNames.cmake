# Gives the tests that ctest was told of names that stay the same from run to run and say what the row is.
#
# cmake -DTESTS=<file that gtest_discover_tests wrote> -P StableTestNames.cmake
#
# A row of a parameterized test is named by the name generator of its instantiation, or else by PrintTo of the row. By
# itself ctest is told the former followed by the latter, and octets or addresses where there is no PrintTo.
file(READ "${TESTS}" text)
string(REGEX REPLACE "(/[^]/\n]*[^]/\n0-9][^]/\n]*)  # GetParam\\(\\) = [^]\n]*" "\\1" text "${text}")
if(text MATCHES "add_test\\(([^\n]*(-byte object <|0x[0-9a-f]+ pointing to)[^\n]*)\n")
  message(FATAL_ERROR "This test's name changes from run to run; give its rows a PrintTo or a name: ${CMAKE_MATCH_1}")
endif()
file(WRITE "${TESTS}" "${text}")
