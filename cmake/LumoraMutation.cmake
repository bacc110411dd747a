# For scripts/mutate, as CMAKE_PROJECT_INCLUDE: the test programs link the service as one shared library, so that a
# mutant costs one object and one link, and the sources are compiled as fast as possible.
add_link_options(-fuse-ld=gold)
set(CMAKE_LINK_DEPENDS_NO_SHARED ON)
# The service is compiled here with other options than the prelude.
set(LUMORA_WITHOUT_PRELUDE configservice_core)

function(lumora_share_the_service)
  # A mutant compiles only its own source.
  set_target_properties(configservice_core PROPERTIES UNITY_BUILD OFF)
  target_compile_options(configservice_core PRIVATE -w -O0 -g0 -fvisibility=default -fno-visibility-inlines-hidden)
  # Only instrumented code detects a race.
  if(NOT LUMORA_SANITIZER MATCHES "thread")
    target_compile_options(configservice_core PRIVATE -fno-sanitize=all)
  endif()
  target_precompile_headers(configservice_core PRIVATE
    <algorithm> <array> <atomic> <cstring> <filesystem> <fstream> <functional> <limits> <list> <map> <memory> <mutex>
    <optional> <set> <span> <string> <string_view> <utility> <vector> <libxml/parser.h> <openssl/crypto.h>)
  add_library(mutated_service SHARED $<TARGET_OBJECTS:configservice_core>)
  target_link_libraries(mutated_service PRIVATE lumora_host LibXml2::LibXml2 OpenSSL::Crypto)
  set(libraries mutated_service host_testing LibXml2::LibXml2 OpenSSL::Crypto)
  set_target_properties(configservice_test_base PROPERTIES INTERFACE_LINK_LIBRARIES "${libraries};configservice_core")
  # The test libraries must not link the objects, or they would contain them.
  set_target_properties(config_model PROPERTIES LINK_LIBRARIES "${libraries}" INTERFACE_LINK_LIBRARIES "${libraries}")
  target_include_directories(config_model PUBLIC
    $<TARGET_PROPERTY:configservice_core,INTERFACE_INCLUDE_DIRECTORIES>)
endfunction()
cmake_language(DEFER DIRECTORY ${CMAKE_SOURCE_DIR} CALL lumora_share_the_service)
