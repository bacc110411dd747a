# All dependencies are packages of the system; scripts/dependencies lists them. Nothing is downloaded here.
find_package(Threads REQUIRED)
find_package(LibXml2 REQUIRED)
find_package(OpenSSL REQUIRED COMPONENTS Crypto)
find_package(spdlog REQUIRED)
find_package(CLI11 REQUIRED)
find_package(nlohmann_json REQUIRED)
find_package(PkgConfig REQUIRED)
# The fleet service speaks to its cluster with it. 7.87 is the first version whose end never waits for a name server.
if(LUMORA_BUILD_FLEET)
  find_package(CURL 7.87 REQUIRED)
endif()
pkg_check_modules(UTF8PROC REQUIRED IMPORTED_TARGET libutf8proc)
# Without it the host delivers no power events; everything else works.
pkg_check_modules(SYSTEMD IMPORTED_TARGET libsystemd)
find_path(ASIO_INCLUDE_DIR asio.hpp REQUIRED)
# The line editor of the shell of lumora-config, and the archives of its `bundle`.
if(NOT WIN32)
  pkg_check_modules(LIBEDIT REQUIRED IMPORTED_TARGET libedit)
endif()
pkg_check_modules(LIBARCHIVE REQUIRED IMPORTED_TARGET libarchive)
if(MINGW)
  # They are static there, and their headers declare imports unless they are told so.
  add_compile_definitions(LIBXML_STATIC UTF8PROC_STATIC)
endif()
