# What `cmake --install` lays down: library, headers, plug-ins, tool, CMake package and pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS ZentaraPlugins ZentaraHost EXPORT ZentaraPluginsTargets
    RUNTIME DESTINATION bin LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/zentara DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    FILES_MATCHING PATTERN "*.h")
install(FILES ${PROJECT_BINARY_DIR}/include/zentara/version.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zentara)
if(ZENTARA_RUNTIME_DLLS)
    install(FILES ${ZENTARA_RUNTIME_DLLS} DESTINATION bin)
endif()

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/ZentaraPlugins)
install(EXPORT ZentaraPluginsTargets NAMESPACE Zentara:: DESTINATION ${package_dir})
configure_package_config_file(cmake/ZentaraPluginsConfig.cmake.in ${PROJECT_BINARY_DIR}/ZentaraPluginsConfig.cmake
    INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ZentaraPluginsConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ZentaraPluginsConfig.cmake
    ${PROJECT_BINARY_DIR}/ZentaraPluginsConfigVersion.cmake DESTINATION ${package_dir})
file(RELATIVE_PATH prefix_from_pkgconfig /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/zentara-plugins.pc.in ${PROJECT_BINARY_DIR}/zentara-plugins.pc @ONLY)
configure_file(cmake/zentara-host.pc.in ${PROJECT_BINARY_DIR}/zentara-host.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zentara-plugins.pc ${PROJECT_BINARY_DIR}/zentara-host.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
