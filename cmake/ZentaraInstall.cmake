# What `cmake --install` lays down: library, headers, plug-ins, tool, CMake package and pkg-config file. Each thing belongs
# to a component, and each component is a package of its own (ZentaraPackages.cmake).
include(CMakePackageConfigHelpers)

foreach(library plugins:ZentaraPlugins host:ZentaraHost)
    string(REPLACE ":" ";" library ${library})
    list(POP_FRONT library component)
    install(TARGETS ${library} EXPORT ZentaraPluginsTargets
        RUNTIME DESTINATION bin COMPONENT ${component}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${component} NAMELINK_COMPONENT development
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
endforeach()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/zentara DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    COMPONENT development FILES_MATCHING PATTERN "*.h")
install(FILES ${PROJECT_BINARY_DIR}/include/zentara/version.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zentara
    COMPONENT development)
if(ZENTARA_RUNTIME_DLLS)
    install(FILES ${ZENTARA_RUNTIME_DLLS} DESTINATION bin COMPONENT plugins)
    # Three quarters of them are symbols for debuggers.
    foreach(dll ${ZENTARA_RUNTIME_DLLS})
        get_filename_component(name ${dll} NAME)
        install(CODE "if(CMAKE_INSTALL_DO_STRIP)
            execute_process(COMMAND \"${CMAKE_STRIP}\" \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/bin/${name}\")
        endif()" COMPONENT plugins)
    endforeach()
endif()

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/ZentaraPlugins)
install(EXPORT ZentaraPluginsTargets NAMESPACE Zentara:: DESTINATION ${package_dir} COMPONENT development)
set(ZENTARA_INSTALLED_PLUGIN_DIR ${ZENTARA_INSTALL_ROOT}/bin/Plugins)
configure_package_config_file(cmake/ZentaraPluginsConfig.cmake.in ${PROJECT_BINARY_DIR}/ZentaraPluginsConfig.cmake
    INSTALL_DESTINATION ${package_dir} PATH_VARS ZENTARA_INSTALLED_PLUGIN_DIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ZentaraPluginsConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ZentaraPluginsConfig.cmake
    ${PROJECT_BINARY_DIR}/ZentaraPluginsConfigVersion.cmake DESTINATION ${package_dir} COMPONENT development)
file(RELATIVE_PATH prefix_from_pkgconfig /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/zentara-plugins.pc.in ${PROJECT_BINARY_DIR}/zentara-plugins.pc @ONLY)
configure_file(cmake/zentara-host.pc.in ${PROJECT_BINARY_DIR}/zentara-host.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zentara-plugins.pc ${PROJECT_BINARY_DIR}/zentara-host.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
