# For scripts/mutate, as CMAKE_PROJECT_INCLUDE: the test programs take the service from one shared library, so that a
# mutant costs one object and one link, and its sources are compiled as quickly as can be.
add_link_options(-fuse-ld=gold)
set(CMAKE_LINK_DEPENDS_NO_SHARED ON)
# The prelude is compiled with other options than the service is here.
set(LUMORA_WITHOUT_PRELUDE configservice_core)

function(lumora_share_the_service)
  target_compile_options(configservice_core PRIVATE
    -w -O0 -g0 -fno-sanitize=all -fvisibility=default -fno-visibility-inlines-hidden)
  target_precompile_headers(configservice_core PRIVATE
    <algorithm> <array> <atomic> <cstring> <filesystem> <fstream> <functional> <limits> <list> <map> <memory> <mutex>
    <optional> <set> <span> <string> <string_view> <utility> <vector> <libxml/parser.h> <openssl/crypto.h>)
  add_library(mutated_service SHARED $<TARGET_OBJECTS:configservice_core>)
  target_link_libraries(mutated_service PRIVATE lumora_host LibXml2::LibXml2 OpenSSL::Crypto)
  set_target_properties(configservice_test_base PROPERTIES INTERFACE_LINK_LIBRARIES
    "mutated_service;configservice_core;host_testing;LibXml2::LibXml2;OpenSSL::Crypto")
endfunction()
cmake_language(DEFER DIRECTORY ${CMAKE_SOURCE_DIR} CALL lumora_share_the_service)
