# Builds for Windows x64 with Debian's mingw-w64. `./test windows` passes LUMORA_WINDOWS_PREFIX, the folder of the
# dependencies that scripts/windows-dependencies has built; the programs of the build run under wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(mingw x86_64-w64-mingw32)
# The variant with the threads of the standard library.
set(CMAKE_C_COMPILER ${mingw}-gcc-posix)
set(CMAKE_CXX_COMPILER ${mingw}-g++-posix)
set(CMAKE_RC_COMPILER ${mingw}-windres)

list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES LUMORA_WINDOWS_PREFIX)
set(CMAKE_FIND_ROOT_PATH ${LUMORA_WINDOWS_PREFIX} /usr/${mingw})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# Only the dependencies' own files: those of the machine that builds are for another system.
set(ENV{PKG_CONFIG_LIBDIR} ${LUMORA_WINDOWS_PREFIX}/lib/pkgconfig)
set(ENV{PKG_CONFIG_PATH} "")

# One file can be copied to another machine without the libraries of the compiler.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -static)
set(CMAKE_MODULE_LINKER_FLAGS_INIT -static)

get_filename_component(lumora_scripts ${CMAKE_CURRENT_LIST_DIR}/../../scripts ABSOLUTE)
set(CMAKE_CROSSCOMPILING_EMULATOR ${lumora_scripts}/run-wine)
