find_package(GTest REQUIRED)
include(GoogleTest)

# The prefix of an absolute path of the build machine on the machine that runs the tests.
set(LUMORA_TEST_DRIVE "")
if(WIN32 AND CMAKE_CROSSCOMPILING)
  set(LUMORA_TEST_DRIVE "Z:")
endif()

# The options of the sanitizers for every test of an instrumented build.
set(LUMORA_TEST_ENVIRONMENT "")
if(LUMORA_SANITIZER MATCHES "address")
  # intercept_tls_get_addr=0: the search for leaks crashed now and then when it scanned a range near address zero. It guesses
  # where the thread-local data of loaded libraries are, so it leaves them out.
  string(CONCAT asan_options "ASAN_OPTIONS=detect_leaks=1:halt_on_error=1:detect_stack_use_after_return=1:"
    "strict_string_checks=1:check_initialization_order=1:intercept_tls_get_addr=0")
  list(APPEND LUMORA_TEST_ENVIRONMENT ${asan_options}
    "UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1")
endif()
if(LUMORA_SANITIZER MATCHES "thread")
  list(APPEND LUMORA_TEST_ENVIRONMENT "TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1:detect_deadlocks=1")
endif()

# Optimizing assertions would cost more than half of the build time without benefit: most of the run time is in the
# product. Line numbers are enough for a stack; debug information of variables would cost another fifth.
set(LUMORA_TEST_OPTIONS "")
if(MINGW)
  # The calls of other platforms have other widths.
  set(LUMORA_TEST_OPTIONS -O0 -Wno-conversion)
elseif(NOT MSVC)
  set(LUMORA_TEST_OPTIONS -O0 -g1)
endif()
if(LUMORA_SANITIZER MATCHES "undefined")
  # These checks are made at each access. Without them a test compiles in three fifths of the time, into half as much code.
  # The sources of the product keep them; an inline function of a header may lose them in a test.
  list(APPEND LUMORA_TEST_OPTIONS -fno-sanitize=null,alignment,vptr)
endif()

# lumora_set_test_environment(NAME [VARIABLE=VALUE...]): sets the environment of tests added by add_test;
# lumora_add_test calls it.
function(lumora_set_test_environment name)
  set_tests_properties(${name} PROPERTIES ENVIRONMENT "${LUMORA_TEST_ENVIRONMENT};${ARGN}" TIMEOUT 300)
endfunction()

# The prelude of all test programs, compiled once. It is an executable like them, because the code generation must be
# the same.
add_executable(test_prelude ${CMAKE_CURRENT_LIST_DIR}/TestPrelude.cpp)
target_link_libraries(test_prelude PRIVATE GTest::gmock)
target_compile_options(test_prelude PRIVATE ${LUMORA_TEST_OPTIONS})
target_precompile_headers(test_prelude PRIVATE
  <gmock/gmock.h> <gtest/gtest.h> <condition_variable> <filesystem> <fstream> <functional> <future> <map> <memory>
  <mutex> <set> <string> <thread> <vector>)

if(WIN32)
  # Tests use calls of other platforms. Those that need one that does not exist here are left out when they run.
  set(posix_calls ${CMAKE_SOURCE_DIR}/host/testing/windows/posix)
  include_directories(SYSTEM ${posix_calls})
  target_include_directories(test_prelude SYSTEM PRIVATE ${posix_calls})
  target_precompile_headers(test_prelude PRIVATE ${posix_calls}/PosixCalls.h)
endif()

# lumora_add_started_program(TEST NAME SOURCES... LIBRARIES...): adds a program that a test starts because its process
# cannot fork. LUMORA_<NAME> in the test is its path; the test can include the headers of host/testing/windows.
function(lumora_add_started_program test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES})
  string(TOUPPER LUMORA_${name} definition)
  target_include_directories(${test} PRIVATE ${CMAKE_SOURCE_DIR}/host/testing/windows)
  target_compile_definitions(${test} PRIVATE ${definition}="$<TARGET_FILE:${name}>")
  add_dependencies(${test} ${name})
endfunction()

# lumora_add_test(NAME SOURCES... [ALONE SOURCES...] [LIBRARIES...]): adds one test program; ctest runs each of its
# cases in a separate process, or all in one under an emulator. Eight sources are compiled as one, since each source
# instantiates the same templates: that takes a third of the time. ALONE lists sources that cannot be joined with others
# because both define the same name.
function(lumora_add_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;ALONE;LIBRARIES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES} ${ARG_ALONE})
  set_target_properties(${name} PROPERTIES UNITY_BUILD ${LUMORA_JOIN_SOURCES} UNITY_BUILD_BATCH_SIZE 8)
  set_source_files_properties(${ARG_ALONE} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  # The compiler treats the joined sources as headers and warns about a test whose fixture is in an anonymous namespace.
  target_compile_options(${name} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
  target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES} GTest::gmock GTest::gtest_main)
  target_compile_options(${name} PRIVATE ${LUMORA_TEST_OPTIONS})
  target_precompile_headers(${name} REUSE_FROM test_prelude)
  if(CMAKE_CROSSCOMPILING)
    # Starting the emulator takes longer than most cases, so it runs all of a program at once. The option makes
    # scripts/run-wine ask for the result of the tests.
    add_test(NAME ${name} COMMAND ${name} --gtest_color=no)
    lumora_set_test_environment(${name})
    set_tests_properties(${name} PROPERTIES TIMEOUT 900)
    return()
  endif()
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60 TEST_LIST ${name}_CASES
                       PROPERTIES TIMEOUT 120)
  # The discovery accepts no property that is a list, so the environment is set after it has run.
  set(environment_file ${CMAKE_CURRENT_BINARY_DIR}/${name}_environment.cmake)
  file(WRITE ${environment_file}
    "if(${name}_CASES)\n"
    "  set_tests_properties(\${${name}_CASES} PROPERTIES ENVIRONMENT [==[${LUMORA_TEST_ENVIRONMENT}]==])\n"
    "endif()\n")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${environment_file})
endfunction()
