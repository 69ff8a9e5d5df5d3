# How a test program is made and told to ctest.

include(GoogleTest)

# What every test program knows of the world around it.
add_library(ferncase_test_settings INTERFACE)
target_link_libraries(ferncase_test_settings INTERFACE ferncase_settings GTest::gmock)
# g++ 12 sees bounds broken where a long literal string is joined to another, which tests do often.
target_compile_options(ferncase_test_settings INTERFACE
  $<$<CXX_COMPILER_ID:GNU>:-Wno-array-bounds>
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
# Half the time of a test run would go into optimising and describing the tests for a debugger; what
# they test is built in full. For the same reason undefined behaviour is looked for in what is
# tested alone.
target_compile_options(ferncase_test_settings INTERFACE -O0 -g1)
if(FERNCASE_SANITIZE MATCHES "undefined")
  target_compile_options(ferncase_test_settings INTERFACE -fno-sanitize=undefined)
endif()
target_compile_definitions(ferncase_test_settings INTERFACE
  FERNCASE_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
  FERNCASE_BUILD_DIR="${PROJECT_BINARY_DIR}"
  FERNCASE_BUNDLES_DIR="${PROJECT_BINARY_DIR}/tests/bundles"
  FERNCASE_SPOTLIGHT_DIR="${PROJECT_BINARY_DIR}/${FERNCASE_SPOTLIGHT_DIR}"
  FERNCASE_SYSTEM_SPOTLIGHT_DIR="${PROJECT_BINARY_DIR}/${FERNCASE_SYSTEM_SPOTLIGHT_DIR}"
  FERNCASE_BINARY="${PROJECT_BINARY_DIR}/${FERNCASE_BIN_DIR}/ferncase")

# The programs that `ctest -L threads` needs; the build against data races makes these alone.
add_custom_target(all_thread_tests)

# Adds the test program NAME. Its tests are called NAME without "_tests", a dot, suite, dot, test.
#   SOURCES    the tests, one file for each file of the room
#   LIBRARIES  what they test
#   NEEDS      targets that must be built before the tests run, such as bundles
#   THREADS    the tests are about threads: they get the label `threads` and also run under the
#              thread sanitizer
function(ferncase_add_tests name)
  cmake_parse_arguments(PARSE_ARGV 1 TEST "THREADS" "" "SOURCES;LIBRARIES;NEEDS")
  string(REGEX REPLACE "_tests$" "" room ${name})

  add_executable(${name} ${TEST_SOURCES})
  target_link_libraries(${name} PRIVATE ferncase_test_settings test_main ${TEST_LIBRARIES})
  set_target_properties(${name} PROPERTIES
    RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/tests")
  ferncase_find_platform_from(${name} tests)
  if(FERNCASE_PRECOMPILE)
    target_precompile_headers(${name} REUSE_FROM test_main)
  endif()
  if(TEST_NEEDS)
    add_dependencies(${name} ${TEST_NEEDS})
  endif()
  set(label ${room})
  if(TEST_THREADS)
    set(label threads)
    add_dependencies(all_thread_tests ${name})
  endif()
  # One label only: a list does not survive the way through the discovery's own script.
  gtest_discover_tests(${name}
    TEST_PREFIX ${room}.
    NO_PRETTY_VALUES
    DISCOVERY_MODE PRE_TEST
    DISCOVERY_TIMEOUT 60
    PROPERTIES LABELS ${label} TIMEOUT 120)
endfunction()
