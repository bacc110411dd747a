find_package(GTest REQUIRED)
include(GoogleTest)

# What the sanitizers are told, for every test of an instrumented build.
set(LUMORA_TEST_ENVIRONMENT "")
if(LUMORA_SANITIZER MATCHES "address")
  list(APPEND LUMORA_TEST_ENVIRONMENT
    "ASAN_OPTIONS=detect_leaks=1:halt_on_error=1:detect_stack_use_after_return=1:strict_string_checks=1:check_initialization_order=1"
    "UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1")
endif()
if(LUMORA_SANITIZER MATCHES "thread")
  list(APPEND LUMORA_TEST_ENVIRONMENT "TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1:detect_deadlocks=1")
endif()

# Optimizing assertions costs more than half of the build and gains nothing: the product is what runs long. Lines are
# enough for a stack; the variables of assertions would cost another fifth.
set(LUMORA_TEST_OPTIONS "")
if(NOT MSVC)
  set(LUMORA_TEST_OPTIONS -O0 -g1)
endif()

# lumora_set_test_environment(NAME [VARIABLE=VALUE...]): for tests added by add_test; lumora_add_test does it by itself.
function(lumora_set_test_environment name)
  set_tests_properties(${name} PROPERTIES ENVIRONMENT "${LUMORA_TEST_ENVIRONMENT};${ARGN}" TIMEOUT 300)
endfunction()

# Compiled once, for all test programs: an executable like them, because the kind of its code must be theirs.
add_executable(test_prelude ${CMAKE_CURRENT_LIST_DIR}/TestPrelude.cpp)
target_link_libraries(test_prelude PRIVATE GTest::gmock)
target_compile_options(test_prelude PRIVATE ${LUMORA_TEST_OPTIONS})
target_precompile_headers(test_prelude PRIVATE
  <gmock/gmock.h> <gtest/gtest.h> <condition_variable> <filesystem> <fstream> <functional> <future> <map> <memory>
  <mutex> <set> <string> <thread> <vector>)

# lumora_add_test(NAME SOURCES... [ALONE SOURCES...] [LIBRARIES...]): one test program; ctest runs each of its cases in a
# process of its own. Eight sources are compiled as one, since each source instantiates the same templates: a third of the
# time. ALONE are sources that cannot be joined with the others, since both define the same name.
function(lumora_add_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;ALONE;LIBRARIES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES} ${ARG_ALONE})
  set_target_properties(${name} PROPERTIES UNITY_BUILD ${LUMORA_JOIN_SOURCES} UNITY_BUILD_BATCH_SIZE 8)
  set_source_files_properties(${ARG_ALONE} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  # The joined sources are headers to the compiler, where a test of a fixture without a name looks like a mistake.
  target_compile_options(${name} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
  target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES} GTest::gmock GTest::gtest_main)
  target_compile_options(${name} PRIVATE ${LUMORA_TEST_OPTIONS})
  target_precompile_headers(${name} REUSE_FROM test_prelude)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60 TEST_LIST ${name}_CASES
                       PROPERTIES TIMEOUT 120)
  # The discovery takes no property that is a list, so the environment is set once it has run.
  set(environment_file ${CMAKE_CURRENT_BINARY_DIR}/${name}_environment.cmake)
  file(WRITE ${environment_file}
    "if(${name}_CASES)\n"
    "  set_tests_properties(\${${name}_CASES} PROPERTIES ENVIRONMENT [==[${LUMORA_TEST_ENVIRONMENT}]==])\n"
    "endif()\n")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${environment_file})
endfunction()
