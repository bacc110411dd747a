# Debian packages, one per component; `scripts/package` builds them with CPack.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME lumora-config)
set(CPACK_PACKAGE_VENDOR Lumora)
set(CPACK_PACKAGE_CONTACT "Lumora maintainers <maintainers@lumora.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime development program)
if(TARGET fleet)
  list(APPEND CPACK_COMPONENTS_ALL fleet)
endif()

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The libraries of one package satisfy dependencies of the others in the same build.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_BINARY_DIR}/lib)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS OFF)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME liblumora-config${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
# Loaded at run time for the power events. Without it, everything else works.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS libsystemd0)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "configuration service of the Lumora client
 The service host's library, and the plug-in that answers configuration keys
 through a chain of stores.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME liblumora-config-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "configuration service of the Lumora client, development files
 Headers for services that read and follow configuration keys, or hand in a
 store of their own, and the reference of the headers.")

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME lumora-config)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_DEPENDS "${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_PROGRAM_DESCRIPTION "shows and changes what the Lumora configuration service knows
 Which value is in force, which store it comes from, what the administrator
 set, and a report for support.")

# Optional: without it, the client and the program work as before.
set(CPACK_DEBIAN_FLEET_PACKAGE_NAME lumora-config-fleet)
set(CPACK_DEBIAN_FLEET_PACKAGE_SECTION libs)
# libcurl is loaded at run time, so nothing finds this dependency by itself.
set(CPACK_DEBIAN_FLEET_PACKAGE_DEPENDS
    "${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} (= ${PROJECT_VERSION}), libcurl4 (>= 7.87)")
set(CPACK_COMPONENT_FLEET_DESCRIPTION "configuration service of the Lumora client, settings of a fleet
 A plug-in that follows the settings which administrators keep in an etcd
 cluster for many clients.")

include(CPack)
