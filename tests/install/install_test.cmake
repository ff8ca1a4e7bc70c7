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
if(SANITIZE)
    list(APPEND options "-DCMAKE_CXX_FLAGS=-fsanitize=${SANITIZE}")
endif()
run("configuring the client" ${CMAKE_COMMAND} -G Ninja -S ${SOURCE_DIR}/examples/host -B ${work}/client ${options})
run("building the client" ${CMAKE_COMMAND} --build ${work}/client)

# Beside the library, so that Windows finds the DLLs.
file(COPY ${work}/client/host${suffix} DESTINATION ${prefix}/bin)
run("running the client" ${CMAKE_COMMAND} -E env ZENTARASDK_ROOT=${prefix}/ LD_LIBRARY_PATH=${prefix}/${LIBDIR}
    ${EMULATOR} ${prefix}/bin/host${suffix})
if(NOT output MATCHES "[1-9][0-9]* bytes")
    message(FATAL_ERROR "the client read no frame:\n${output}")
endif()

if(NOT TOOLCHAIN AND NOT SANITIZE)
    # No header may lean on one that is not installed: each is compiled alone from the installed tree.
    file(GLOB_RECURSE headers RELATIVE ${prefix}/include ${prefix}/include/*.h)
    set(all_headers "")
    foreach(header ${headers})
        string(MAKE_C_IDENTIFIER ${header} name)
        file(WRITE ${work}/headers/${name}.cpp "#include <${header}>\n")
        list(APPEND all_headers ${work}/headers/${name}.cpp)
    endforeach()
    run("compiling each installed header alone" ${CXX_COMPILER} -std=c++20 -Wall -Wextra -Wpedantic -Werror
        -fsyntax-only -I${prefix}/include ${all_headers})

    find_program(PKG_CONFIG pkg-config REQUIRED)
    run("asking pkg-config" ${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${prefix}/${LIBDIR}/pkgconfig
        ${PKG_CONFIG} --cflags --libs zentara-plugins)
    separate_arguments(flags UNIX_COMMAND "${output}")
    run("building the client with pkg-config's flags" ${CXX_COMPILER} ${SOURCE_DIR}/examples/host/main.cpp
        ${flags} -o ${work}/host-by-pkg-config)
endif()
message(STATUS "installed, built and ran: ${output}")
