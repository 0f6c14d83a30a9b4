# A room is one static library below src/. It says its sources and the rooms and libraries it stands on.
#   pollarix_room(document SOURCES a.cpp b.cpp USES pollarix_base)
function(pollarix_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;USES" ${ARGN})
  add_library(pollarix_${name} STATIC ${ROOM_SOURCES})
  target_include_directories(pollarix_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(pollarix_${name} PUBLIC pollarix_options ${ROOM_USES})
endfunction()

# The tests of a room are one program; ctest runs each test in a process of its own, with no screen.
#   pollarix_tests(document SOURCES a_test.cpp USES pollarix_document)
function(pollarix_tests name)
  cmake_parse_arguments(TESTS "" "" "SOURCES;USES" ${ARGN})
  add_executable(test_${name} ${TESTS_SOURCES})
  target_link_libraries(test_${name} PRIVATE pollarix_test_support ${TESTS_USES})
  add_dependencies(test_${name} pollarix_data)
  gtest_discover_tests(test_${name}
    TEST_PREFIX "${name}."
    NO_PRETTY_VALUES # bytes of a parameter say nothing
    DISCOVERY_MODE PRE_TEST
    PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen" TIMEOUT 300)
endfunction()
