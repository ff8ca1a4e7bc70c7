set(work ${BUILD_DIR}/install-test)
set(prefix ${work}/prefix)
file(REMOVE_RECURSE ${work})

function(run what)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE code OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT code EQUAL 0)
        message(FATAL_ERROR "${what} failed (${code}):\n${output}")
    endif()
    set(output "${output}" PARENT_SCOPE)
endfunction()

run("installing" ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})

set(options -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_BUILD_TYPE=Release)
if(TOOLCHAIN)
    list(APPEND options -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN} )
    set(suffix .exe)
else()
    list(APPEND options -DCMAKE_CXX_COMPILER=${CXX_COMPILER})
    set(suffix "")
endif()

# A client makes a point cloud through the host library.
run("configuring the cloud's client" ${CMAKE_COMMAND} -G Ninja -S ${SOURCE_DIR}/examples/point_cloud -B ${work}/cloud
    ${options})
run("building the cloud's client" ${CMAKE_COMMAND} --build ${work}/cloud)
file(COPY ${work}/cloud/point_cloud${suffix} DESTINATION ${prefix}/bin)
run("making a cloud" ${CMAKE_COMMAND} -E env ZENTARASDK_ROOT=${prefix}/ LD_LIBRARY_PATH=${prefix}/${LIBDIR}
    ${EMULATOR} ${prefix}/bin/point_cloud${suffix} ${work}/cloud.ply)
file(SIZE ${work}/cloud.ply cloud_bytes)
if(NOT output MATCHES "[1-9][0-9]* points" OR cloud_bytes LESS 100000)
    message(FATAL_ERROR "the client made no cloud:\n${output}")
endif()

# Where the pages are tested, these examples are built and run there, as the pages say.
if(NOT WITHOUT_EXAMPLES)
    run("configuring the client" ${CMAKE_COMMAND} -G Ninja -S ${SOURCE_DIR}/examples/host -B ${work}/client ${options})
    run("building the client" ${CMAKE_COMMAND} --build ${work}/client)

    # Beside the library, so that Windows finds the DLLs.
    foreach(client host contract)
        file(COPY ${work}/client/${client}${suffix} DESTINATION ${prefix}/bin)
        run("running the client" ${CMAKE_COMMAND} -E env ZENTARASDK_ROOT=${prefix}/ LD_LIBRARY_PATH=${prefix}/${LIBDIR}
            ${EMULATOR} ${prefix}/bin/${client}${suffix})
        if(NOT output MATCHES "[1-9][0-9]* bytes")
            message(FATAL_ERROR "the client read no frame:\n${output}")
        endif()
        message(STATUS "the client: ${output}")
    endforeach()

    # A plug-in from nothing passes the scan.
    run("configuring the plug-in" ${CMAKE_COMMAND} -G Ninja -S ${SOURCE_DIR}/examples/minimal_plugin -B ${work}/plugin
        ${options})
    run("building the plug-in" ${CMAKE_COMMAND} --build ${work}/plugin)
    file(GLOB plugin ${work}/plugin/minimal_plugin.dll ${work}/plugin/minimal_plugin.so)
    file(COPY ${plugin} DESTINATION ${prefix}/bin/Plugins)
    run("listing the plug-ins" ${CMAKE_COMMAND} -E env ZENTARASDK_ROOT=${prefix}/ LD_LIBRARY_PATH=${prefix}/${LIBDIR}
        ${EMULATOR} ${prefix}/bin/zentara${suffix} plugins --json)
    if(NOT output MATCHES "6D0E5C17-3F42-4B8A-9C51-2A77E0148BD3")
        message(FATAL_ERROR "the plug-in is not registered:\n${output}")
    endif()

    # A camera from nothing: two plug-ins and a description. The checker finds no fault with them, and names one that is there.
    run("configuring the wall" ${CMAKE_COMMAND} -G Ninja -S ${SOURCE_DIR}/examples/device_plugin -B ${work}/wall ${options})
    run("building the wall" ${CMAKE_COMMAND} --build ${work}/wall)
    run("installing the wall" ${CMAKE_COMMAND} --install ${work}/wall --prefix ${prefix})
    set(tool ${CMAKE_COMMAND} -E env ZENTARASDK_ROOT=${prefix}/ LD_LIBRARY_PATH=${prefix}/${LIBDIR} ${EMULATOR}
        ${prefix}/bin/zentara${suffix})
    run("streaming the wall" ${tool} stream --camera WALL1 --frames 3 --json)
    file(GLOB walls ${prefix}/bin/Plugins/wall_* ${prefix}/bin/Plugins/minimal_plugin.*)
    list(LENGTH walls count)
    if(NOT count EQUAL 3)
        message(FATAL_ERROR "not three plug-ins to check: ${walls}")
    endif()
    foreach(plugin ${walls})
        run("checking ${plugin}" ${tool} plugins --check ${plugin})
        if(plugin MATCHES "wall_device" AND NOT output MATCHES "passed   a camera whose description names it: WALL depth, WALL1")
            message(FATAL_ERROR "the device was checked without its camera:\n${output}")
        endif()
    endforeach()
endif()

if(NOT TOOLCHAIN)
    # No header may lean on one that is not installed: each is compiled alone from the installed tree.
    file(GLOB_RECURSE headers RELATIVE ${prefix}/include ${prefix}/include/*.h)
    set(sources "")
    foreach(header ${headers})
        string(MAKE_C_IDENTIFIER ${header} name)
        file(WRITE ${work}/headers/${name}.cpp "#include <${header}>\n")
        list(APPEND sources ${name}.cpp)
    endforeach()
    list(JOIN sources " " sources)
    file(WRITE ${work}/headers/CMakeLists.txt "cmake_minimum_required(VERSION 3.25)\nproject(headers CXX)\n"
        "add_library(headers OBJECT ${sources})\n"
        "target_include_directories(headers PRIVATE ${prefix}/include)\n"
        "target_compile_options(headers PRIVATE -std=c++20 -Wall -Wextra -Wpedantic -Werror -fsyntax-only)\n")
    run("configuring the headers" ${CMAKE_COMMAND} -G Ninja -S ${work}/headers -B ${work}/headers/build ${options})
    run("compiling each installed header alone" ${CMAKE_COMMAND} --build ${work}/headers/build)

    find_program(PKG_CONFIG pkg-config REQUIRED)
    run("asking pkg-config" ${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${prefix}/${LIBDIR}/pkgconfig
        ${PKG_CONFIG} --cflags --libs zentara-host)
    separate_arguments(flags UNIX_COMMAND "${output}")
    run("building the client with pkg-config's flags" ${CXX_COMPILER} ${SOURCE_DIR}/examples/host/main.cpp
        ${flags} -o ${work}/host-by-pkg-config)
endif()
message(STATUS "installed, built and ran")
