# A port for vcpkg. Not tried: no vcpkg was at hand where the project is tested.
set(SOURCE_PATH "${CMAKE_CURRENT_LIST_DIR}/../..")
vcpkg_cmake_configure(SOURCE_PATH "${SOURCE_PATH}" OPTIONS -DZENTARA_TESTS=OFF)
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(PACKAGE_NAME ZentaraPlugins CONFIG_PATH lib/cmake/ZentaraPlugins)
vcpkg_fixup_pkgconfig()
vcpkg_copy_tools(TOOL_NAMES zentara AUTO_CLEAN)
vcpkg_install_copyright(FILE_LIST "${SOURCE_PATH}/docs/licences.md")
