# One static library per subsystem folder: every .cpp in the folder and its sub-folders
# belongs to it.
# korvan_library(<name> [DEPENDS <lib>...]) creates korvan_<name>, includable as
# "<name>/<file>.h" from src/.
function(korvan_library name)
  cmake_parse_arguments(ARG "" "" "DEPENDS;PACKAGES" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  if(sources)
    add_library(korvan_${name} STATIC ${sources})
    set(scope PUBLIC)
  else()
    add_library(korvan_${name} INTERFACE)
    set(scope INTERFACE)
  endif()
  target_include_directories(korvan_${name} ${scope} ${PROJECT_SOURCE_DIR}/src)
  foreach(dep IN LISTS ARG_DEPENDS)
    target_link_libraries(korvan_${name} ${scope} korvan_${dep})
  endforeach()
  target_link_libraries(korvan_${name} ${scope} ${ARG_PACKAGES})
endfunction()

# korvan_test_suite(<name> LIBS <lib>...) builds every *_test.cpp of the folder into
# one executable <name>_tests and registers each test case with ctest.
function(korvan_test_suite name)
  cmake_parse_arguments(ARG "" "" "LIBS" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  if(NOT sources)
    return()
  endif()
  add_executable(${name}_tests ${sources})
  target_include_directories(${name}_tests PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name}_tests PRIVATE ${ARG_LIBS} korvan_testing GTest::gtest GTest::gtest_main)
  # The test framework's headers cost more to compile than most tests themselves.
  target_precompile_headers(${name}_tests PRIVATE <gtest/gtest.h> <filesystem> <string> <vector>)
  # Several test files per compiler run: the headers they share, and their sanitizer
  # instrumentation, are compiled once per batch instead of once per file.
  if(KORVAN_UNITY_TESTS)
    set_target_properties(${name}_tests PROPERTIES UNITY_BUILD ON
                                                   UNITY_BUILD_BATCH_SIZE ${KORVAN_UNITY_BATCH})
  endif()
  gtest_discover_tests(${name}_tests DISCOVERY_TIMEOUT 60
    PROPERTIES ENVIRONMENT "KORVAN_BINARY=$<TARGET_FILE:korvan>")
endfunction()
