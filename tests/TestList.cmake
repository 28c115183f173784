# Mends the list of tests that ctest was told of: cmake -DTESTS=<file that gtest_discover_tests wrote> -P TestList.cmake
#
# Names stay the same from run to run and say what the row is.
# A row of a parameterized test is named by the name generator of its instantiation, or else by PrintTo of the row. By
# itself ctest is told the former followed by the latter, and octets or addresses where there is no PrintTo.
file(READ "${TESTS}" text)
string(REGEX REPLACE "(/[^]/\n]*[^]/\n0-9][^]/\n]*)  # GetParam\\(\\) = [^]\n]*" "\\1" text "${text}")
if(text MATCHES "add_test\\(([^\n]*(-byte object <|0x[0-9a-f]+ pointing to)[^\n]*)\n")
  message(FATAL_ERROR "This test's name changes from run to run; give its rows a PrintTo or a name: ${CMAKE_MATCH_1}")
endif()
# The few that take seconds begin first, so that in the end nothing waits for one of them alone.
set(long "MillionRows|Replay[.]EveryPrefixOfTheStores|KilledWriters|ModelMirror[.]IsTheOriginal|OrderedTableDifferential")
string(REGEX REPLACE "(set_tests_properties[^\n]*(${long})[^\n]* PROPERTIES )" "\\1COST 10 " text "${text}")
file(WRITE "${TESTS}" "${text}")
