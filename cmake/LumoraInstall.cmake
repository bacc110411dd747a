# What `cmake --install` lays down: the host, the plug-in, the program, and a package for find_package(LumoraConfig).
# The plug-in lies in a folder of its own, since a host takes plug-ins from its plug-in folder only.
include(CMakePackageConfigHelpers)

set(lumora_include_folder ${CMAKE_INSTALL_INCLUDEDIR}/lumora)
set(lumora_package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/LumoraConfig)

foreach(library lumora_host configservice)
  target_include_directories(${library} INTERFACE $<INSTALL_INTERFACE:${lumora_include_folder}>)
endforeach()
set_target_properties(lumora_host PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
set_target_properties(configservice PROPERTIES INSTALL_RPATH "$ORIGIN/..")

install(TARGETS lumora_host EXPORT LumoraConfigTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS configservice EXPORT LumoraConfigTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/lumora)
install(DIRECTORY host/include/ services/configservice/include/
        ${CMAKE_BINARY_DIR}/host/include/ ${CMAKE_BINARY_DIR}/services/configservice/include/
        DESTINATION ${lumora_include_folder} FILES_MATCHING PATTERN *.h)

install(EXPORT LumoraConfigTargets NAMESPACE Lumora:: DESTINATION ${lumora_package_folder})
file(WRITE ${CMAKE_BINARY_DIR}/LumoraConfigConfig.cmake
  "include(CMakeFindDependencyMacro)\n"
  "find_dependency(Threads)\n"
  "include(\${CMAKE_CURRENT_LIST_DIR}/LumoraConfigTargets.cmake)\n")
write_basic_package_version_file(${CMAKE_BINARY_DIR}/LumoraConfigConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/LumoraConfigConfig.cmake ${CMAKE_BINARY_DIR}/LumoraConfigConfigVersion.cmake
        DESTINATION ${lumora_package_folder})
