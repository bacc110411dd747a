# Installs four components, each a Debian package (LumoraPackages): runtime, the host and the plug-in; fleet, the plug-in
# that needs libcurl; program, lumora-config; development, headers and the files of find_package(LumoraConfig) and
# pkg-config. The plug-ins are in a folder of their own, the plug-in folder of hosts.
include(CMakePackageConfigHelpers)

set(lumora_include_folder ${CMAKE_INSTALL_INCLUDEDIR}/lumora)
set(lumora_package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/LumoraConfig)

foreach(library lumora_host configservice)
  target_include_directories(${library} INTERFACE $<INSTALL_INTERFACE:${lumora_include_folder}>)
endforeach()
set_target_properties(lumora_host PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
lumora_set_runpath(configservice "$ORIGIN" "$ORIGIN/..")

install(TARGETS lumora_host EXPORT LumoraConfigTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development)
install(TARGETS configservice EXPORT LumoraConfigTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/lumora COMPONENT runtime)
if(TARGET inspection)
  install(TARGETS inspection LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/lumora COMPONENT runtime)
  install(DIRECTORY services/inspection/include/ ${CMAKE_BINARY_DIR}/services/inspection/include/
          DESTINATION ${lumora_include_folder} COMPONENT development FILES_MATCHING PATTERN *.h)
endif()
if(TARGET fleet)
  install(TARGETS fleet LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/lumora COMPONENT fleet)
  install(DIRECTORY services/fleet/include/ ${CMAKE_BINARY_DIR}/services/fleet/include/
          DESTINATION ${lumora_include_folder} COMPONENT development FILES_MATCHING PATTERN *.h)
endif()
install(DIRECTORY host/include/ services/configservice/include/
        ${CMAKE_BINARY_DIR}/host/include/ ${CMAKE_BINARY_DIR}/services/configservice/include/
        DESTINATION ${lumora_include_folder} COMPONENT development FILES_MATCHING PATTERN *.h PATTERN *.def)

install(EXPORT LumoraConfigTargets NAMESPACE Lumora:: DESTINATION ${lumora_package_folder} COMPONENT development)
file(WRITE ${CMAKE_BINARY_DIR}/LumoraConfigConfig.cmake
  "include(CMakeFindDependencyMacro)\n"
  "find_dependency(Threads)\n"
  "include(\${CMAKE_CURRENT_LIST_DIR}/LumoraConfigTargets.cmake)\n")
write_basic_package_version_file(${CMAKE_BINARY_DIR}/LumoraConfigConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/LumoraConfigConfig.cmake ${CMAKE_BINARY_DIR}/LumoraConfigConfigVersion.cmake
        DESTINATION ${lumora_package_folder} COMPONENT development)

# The prefix is computed from the location of the file, so that a tree can be installed anywhere, or moved.
file(RELATIVE_PATH lumora_prefix_from_pkgconfig
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(${CMAKE_CURRENT_LIST_DIR}/lumora-config.pc.in ${CMAKE_BINARY_DIR}/lumora-config.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/lumora-config.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

if(LUMORA_INSTALL_REFERENCE)
  install(DIRECTORY ${CMAKE_SOURCE_DIR}/build/reference/html
          DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/liblumora-config-dev COMPONENT development)
endif()
