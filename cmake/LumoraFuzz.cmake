# lumora_add_fuzz(NAME SOURCES... [LIBRARIES...]): adds a fuzz target with LLVMFuzzerTestOneInput. With
# LUMORA_BUILD_FUZZ it is a libFuzzer program; with the tests, a program that replays fuzz/corpus/NAME, so that every
# run checks the corpus and past crashes.
function(lumora_add_fuzz name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBRARIES" ${ARGN})
  set(corpus ${CMAKE_SOURCE_DIR}/fuzz/corpus/${name})
  if(LUMORA_BUILD_FUZZ)
    add_executable(${name} ${ARG_SOURCES})
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
    set_property(GLOBAL APPEND PROPERTY LUMORA_FUZZ_TARGETS ${name})
  else()
    if(NOT TARGET fuzz_replay)
      add_library(fuzz_replay OBJECT ${CMAKE_SOURCE_DIR}/fuzz/Replay.cpp)
    endif()
    add_executable(${name} ${ARG_SOURCES} $<TARGET_OBJECTS:fuzz_replay>)
    add_test(NAME fuzz.${name} COMMAND ${name} ${corpus})
    lumora_set_test_environment(fuzz.${name})
  endif()
  target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES})
endfunction()

# Writes the names of the targets to the file that ./test fuzz reads.
function(lumora_write_fuzz_targets)
  get_property(targets GLOBAL PROPERTY LUMORA_FUZZ_TARGETS)
  list(JOIN targets "\n" lines)
  file(WRITE ${CMAKE_BINARY_DIR}/fuzz-targets "${lines}\n")
endfunction()
