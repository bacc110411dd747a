# Language level, warnings and instrumentation for every target of the tree.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
if(WIN32) # libraries lie beside programs
  set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
else()
  set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
endif()

# The build tree's programs find its libraries relative to their own location.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

# lumora_set_runpath(TARGET FOLDERS...): sets the RUNPATH of an installed target, the same in the build tree. If both
# differed, CMake would add an empty element to that of the build tree, and the loader would search the working
# directory.
function(lumora_set_runpath target)
  set(folders ${ARGN})
  list(REMOVE_DUPLICATES folders)
  set_target_properties(${target} PROPERTIES INSTALL_RPATH "${folders}" BUILD_WITH_INSTALL_RPATH ON)
endfunction()

# lumora_bind_own_functions(LIBRARY): resolves the calls of its own functions when it is linked, which spares every process
# that loads it some hundred searches by name.
function(lumora_bind_own_functions target)
  if(NOT WIN32)
    target_link_options(${target} PRIVATE -Wl,-Bsymbolic-functions)
  endif()
endfunction()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # Precompiled headers make ccache miss unless it ignores their time stamps and definitions.
  set(ccache_settings CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime)
  if(NOT LUMORA_COVERAGE)
    # All clones share their compiled objects. Coverage records the folder of the build.
    list(APPEND ccache_settings CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1)
  endif()
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env ${ccache_settings} ${CCACHE_PROGRAM})
endif()

# Selects the fastest installed linker. Most of the linked data is debug information, which the default linker handles
# slowly.
include(CheckLinkerFlag)
get_directory_property(chosen_options LINK_OPTIONS)
foreach(linker mold lld)
  if(WIN32 OR chosen_options MATCHES "-fuse-ld=")
    break()
  endif()
  check_linker_flag(CXX -fuse-ld=${linker} LUMORA_LINKS_WITH_${linker})
  if(LUMORA_LINKS_WITH_${linker})
    add_link_options(-fuse-ld=${linker})
    break()
  endif()
endforeach()

if(MSVC)
  add_compile_options(/W4 /WX /utf-8 /permissive- /Zc:__cplusplus)
else()
  # Log lines and assertions contain file paths relative to the tree; ccache makes the paths relative.
  file(RELATIVE_PATH root_from_build ${CMAKE_BINARY_DIR} ${CMAKE_SOURCE_DIR})
  add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror
                      $<$<CXX_COMPILER_ID:Clang,AppleClang>:-Wthread-safety>
                      -fmacro-prefix-map=${CMAKE_SOURCE_DIR}/= -fmacro-prefix-map=${root_from_build}=)
endif()

if(NOT MSVC)
  # Line numbers are enough for profiles and stacks. Debug information of optimized variables would cost another sixth.
  add_compile_options($<$<CONFIG:RelWithDebInfo>:-g1>)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # Kilobytes. From its default of 128 MB, g++ spends a tenth of its time on collecting garbage.
  add_compile_options(--param=ggc-min-heapsize=786432)
endif()

if(WIN32)
  # For the system's header, everywhere, because a precompiled header is valid only with the same definitions. The
  # version is the oldest one with every call that the host uses.
  add_compile_definitions(NOMINMAX WIN32_LEAN_AND_MEAN UNICODE _WIN32_WINNT=0x0601)
endif()

if(MINGW)
  # Nothing reads debug information there, and it makes each link take twice as long.
  add_compile_options(-g0)
endif()

if(LUMORA_SANITIZER)
  add_compile_options(-fsanitize=${LUMORA_SANITIZER} -fno-omit-frame-pointer -fno-sanitize-recover=all -O1 -g1)
  add_link_options(-fsanitize=${LUMORA_SANITIZER})
  if(LUMORA_SANITIZER MATCHES "address")
    # The suite starts thousands of processes. At a fixed address a test starts a fifth faster, because the tables of the
    # sanitizers need no relocation.
    add_link_options($<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:-no-pie>)
  endif()
  if(LUMORA_SANITIZER STREQUAL "thread" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # With this instrumentation g++ 12 warns falsely about concatenated strings. The other builds keep the warnings.
    add_compile_options(-Wno-array-bounds -Wno-restrict -Wno-stringop-overflow)
  endif()
endif()
if(LUMORA_BUILD_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
if(LUMORA_COVERAGE)
  # Several threads count the same line; without atomic counters gcov reports negative numbers.
  add_compile_options(--coverage -fprofile-update=atomic -O0)
  add_link_options(--coverage)
endif()

# lumora_join_folders(TARGET [ALONE SOURCES...]): compiles the sources of each folder of the target as one, because each
# source includes the same headers. ALONE lists the exceptions; a source with options of its own is always compiled alone.
# It does nothing for Windows, because macros of the system's headers would change the sources that follow, and in other build
# types than Debug, because gcc inlines less in joined sources: a lookup in the chain would take a tenth longer.
function(lumora_join_folders target)
  if(WIN32 OR NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
    return()
  endif()
  cmake_parse_arguments(ARG "" "" "ALONE" ${ARGN})
  set_target_properties(${target} PROPERTIES UNITY_BUILD ${LUMORA_JOIN_SOURCES} UNITY_BUILD_MODE GROUP)
  get_target_property(sources ${target} SOURCES)
  foreach(source IN LISTS sources)
    cmake_path(ABSOLUTE_PATH source)
    cmake_path(RELATIVE_PATH source BASE_DIRECTORY ${CMAKE_SOURCE_DIR} OUTPUT_VARIABLE folder)
    cmake_path(GET folder PARENT_PATH folder)
    string(REPLACE "/" "_" folder "${folder}")
    set_source_files_properties(${source} PROPERTIES UNITY_GROUP "${folder}")
  endforeach()
  set_source_files_properties(${ARG_ALONE} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()

# Headers that most sources include, directly or not; parsing them takes half of the time of an average source. They are
# compiled once for the libraries that call lumora_use_prelude. Executables cannot use them: they are compiled with other
# code generation options. A library must not have a precompiled header of its own: the linker would get it among the
# objects of the library.
add_library(lumora_prelude OBJECT ${CMAKE_CURRENT_LIST_DIR}/Prelude.cpp)
target_precompile_headers(lumora_prelude PRIVATE
  <algorithm> <array> <atomic> <chrono> <filesystem> <fstream> <functional> <list> <map> <memory> <mutex> <optional> <set>
  <sstream> <string> <string_view> <thread> <utility> <vector>)

function(lumora_use_prelude target)
  if(NOT target IN_LIST LUMORA_WITHOUT_PRELUDE)
    target_precompile_headers(${target} REUSE_FROM lumora_prelude)
  endif()
endfunction()
