# What `cpack` makes: a zip of everything for Windows, and for Debian one package a component, named after what it holds.
set(CPACK_PACKAGE_NAME zentara)
set(CPACK_PACKAGE_VENDOR "ZentaraPlugins developers")
set(CPACK_PACKAGE_CONTACT "ZentaraPlugins developers <developers@zentara.invalid>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_SOURCE_DIR}/build/packages)
set(CPACK_VERBATIM_VARIABLES ON)

if(WIN32)
    set(CPACK_GENERATOR ZIP)
    set(CPACK_STRIP_FILES ON)
    set(CPACK_PACKAGE_FILE_NAME zentara-${PROJECT_VERSION}-win64)
    install(FILES ${PROJECT_SOURCE_DIR}/docs/licences.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md DESTINATION . COMPONENT plugins)
    # The notices of what is compiled in, and those of the compiler's DLLs as Debian's packages of it keep them.
    install(FILES ${PROJECT_SOURCE_DIR}/cmake/debian-copyright DESTINATION notices RENAME zentara.txt COMPONENT plugins)
    foreach(package gcc-mingw-w64-x86-64-posix-runtime mingw-w64-x86-64-dev)
        install(FILES /usr/share/doc/${package}/copyright DESTINATION notices RENAME ${package}.txt COMPONENT plugins OPTIONAL)
    endforeach()
    include(CPack)
    return()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# Each package has a summary of its own.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://zentara.invalid/")
set(CPACK_DEBIAN_DEBUGINFO_PACKAGE ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(version "(= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
set(plugins_name libzentaraplugins${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
set(host_name libzentarahost0)

# zentara_package(COMPONENT NAME SECTION DEPENDS DESCRIPTION): the summary is the description's first line.
function(zentara_package component name section depends description)
    string(TOUPPER ${component} key)
    set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${name} PARENT_SCOPE)
    set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${section} PARENT_SCOPE)
    set(CPACK_DEBIAN_${key}_PACKAGE_DEPENDS "${depends}" PARENT_SCOPE)
    set(CPACK_DEBIAN_${key}_DEBUGINFO_PACKAGE ON PARENT_SCOPE)
    set(CPACK_DEBIAN_${key}_DESCRIPTION "${description}" PARENT_SCOPE)
    if(ZENTARA_DEBIAN)
        install(FILES ${PROJECT_SOURCE_DIR}/cmake/debian-copyright DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name}
            RENAME copyright COMPONENT ${component})
        install(FILES ${PROJECT_BINARY_DIR}/changelog.Debian.gz DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name}
            COMPONENT ${component})
    endif()
endfunction()

# zentara_shared_library(COMPONENT NAME LIBRARY SOVERSION): tells Debian of a library without a script of the package's own.
function(zentara_shared_library component name library soversion)
    string(TOUPPER ${component} key)
    set(control ${PROJECT_BINARY_DIR}/control/${name})
    file(WRITE ${control}/shlibs "${library} ${soversion} ${name} ${version}\n")
    file(WRITE ${control}/triggers "activate-noawait ldconfig\n")
    set(CPACK_DEBIAN_${key}_PACKAGE_CONTROL_EXTRA "${control}/shlibs;${control}/triggers" PARENT_SCOPE)
endfunction()

zentara_package(plugins ${plugins_name} libs ""
    "device layer of a time-of-flight depth-camera SDK
The shared library that loads plug-ins, turns calls on a camera into requests
with a bounded wait, speaks the protocols of three camera controllers and
reads and writes a camera's flash; with its plug-ins for USB Video Class
cameras, microphones and simulated cameras.")
zentara_package(host ${host_name} libs "${plugins_name} ${version}"
    "what a program does with depth cameras
Finds and opens cameras, streams, records and plays, looks after calibration
and flash, draws pictures and makes point clouds.")
zentara_package(development libzentara-dev libdevel "${plugins_name} ${version}, ${host_name} ${version}"
    "headers of the depth-camera SDK
What it takes to build programs and plug-ins for depth cameras: headers,
CMake package and pkg-config files.")
zentara_package(tool zentara utils "${plugins_name} ${version}, ${host_name} ${version}"
    "command-line tool for depth cameras
Lists cameras, streams to pictures, point clouds, sound and recordings, sets
parameters, reads and writes calibration, registers and flash.")
zentara_package(python python3-zentara python "${host_name} ${version}, python3 (>= 3.11), python3 (<< 3.12), python3-numpy"
    "depth cameras in Python
Frames as NumPy arrays without a copy, point clouds, recordings, parameters,
calibration and flash of depth cameras.")
set(CPACK_COMPONENTS_ALL plugins host development tool python)
if(TARGET gstzentara)
    zentara_package(gstreamer gstreamer1.0-zentara libs "${host_name} ${version}"
        "depth cameras in GStreamer
A source of depth, colour and sound, an element that colours depth, and a
device provider.")
    list(APPEND CPACK_COMPONENTS_ALL gstreamer)
endif()
if(TARGET zentara_viewer)
    zentara_package(viewer zentara-viewer utils "zentara ${version}, ${plugins_name} ${version}, ${host_name} ${version}"
        "window for depth cameras
Shows depth and colour side by side, values under the pointer and a point
cloud to turn; records, plays recordings and sets parameters.")
    set(CPACK_DEBIAN_TOOL_PACKAGE_SUGGESTS zentara-viewer)
    list(APPEND CPACK_COMPONENTS_ALL viewer)
endif()
zentara_shared_library(plugins ${plugins_name} libZentaraPlugins ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
zentara_shared_library(host ${host_name} libZentaraHost ${ZENTARA_HOST_SOVERSION})

if(ZENTARA_DEBIAN)
    file(WRITE ${PROJECT_BINARY_DIR}/changelog.Debian "zentara (${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; urgency=medium

  * See CHANGELOG.md of the sources.

 -- ${CPACK_PACKAGE_CONTACT}  Sun, 22 Nov 2026 12:00:00 +0000
")
    # It calls nothing of the C library itself.
    file(WRITE ${PROJECT_BINARY_DIR}/lintian-overrides
        "${plugins_name}: library-not-linked-against-libc *generic_descriptions.so*\n")
    install(FILES ${PROJECT_BINARY_DIR}/lintian-overrides DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides
        RENAME ${plugins_name} COMPONENT plugins)
    execute_process(COMMAND gzip -9nf ${PROJECT_BINARY_DIR}/changelog.Debian COMMAND_ERROR_IS_FATAL ANY)
endif()
include(CPack)
