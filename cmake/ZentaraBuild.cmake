# Compiler settings shared by every target, and the functions that add plug-ins and tests.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
# Line tables are enough for a stack trace and take a fifth off every compilation.
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O2 -g1 -DNDEBUG")
set(CMAKE_C_FLAGS_RELWITHDEBINFO "-O2 -g1 -DNDEBUG")
set(CMAKE_CXX_FLAGS_SANITIZE "-O1 -g1 -fno-omit-frame-pointer")
set(CMAKE_C_FLAGS_SANITIZE "-O1 -g1 -fno-omit-frame-pointer")

# Paths are taken relative to the tree, so that every clone on a machine shares what another has compiled.
find_program(CCACHE ccache)
if(CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=1 ${CCACHE})
    set(CMAKE_C_COMPILER_LAUNCHER ${CMAKE_CXX_COMPILER_LAUNCHER})
endif()

# Sources compiled in groups read the standard library once a group. The gcc preset groups only the tests and the tool's
# verbs; compiling all else alone proves that each source includes what it uses.
set(CMAKE_UNITY_BUILD_BATCH_SIZE 8)
if(ZENTARA_UNITY)
    set(CMAKE_UNITY_BUILD ON)
endif()
# zentara_compile_alone(TARGET SOURCES...): for sources whose private names are those of a sibling.
function(zentara_compile_alone target)
    set_source_files_properties(${ARGN} TARGET_DIRECTORY ${target} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()

# zentara_tell_fallback_root(TARGET SOURCE): that source alone is compiled anew where another root is chosen.
function(zentara_tell_fallback_root target source)
    set_source_files_properties(${source} TARGET_DIRECTORY ${target} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON
        COMPILE_DEFINITIONS ZENTARA_FALLBACK_ROOT="${ZENTARA_FALLBACK_ROOT}")
endfunction()

set(ZENTARA_SDK_MAJOR ${PROJECT_VERSION_MAJOR})
set(ZENTARA_SDK_MINOR ${PROJECT_VERSION_MINOR})
set(ZENTARA_SDK_PATCH ${PROJECT_VERSION_PATCH})
set(ZENTARA_SDK_BUILD ${PROJECT_VERSION_TWEAK})
configure_file(${PROJECT_SOURCE_DIR}/include/zentara/version.h.in
    ${PROJECT_BINARY_DIR}/include/zentara/version.h @ONLY)

add_library(zentara_settings INTERFACE)
target_include_directories(zentara_settings INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(zentara_settings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wcast-align -Wunused -Wimplicit-fallthrough
    $<$<BOOL:${ZENTARA_WERROR}>:-Werror>
    $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>
    # In a group a sibling's private name would count as shadowed, and a source's private types as those of a header.
    $<$<BOOL:$<TARGET_PROPERTY:UNITY_BUILD>>:-Wno-shadow>
    $<$<AND:$<BOOL:$<TARGET_PROPERTY:UNITY_BUILD>>,$<CXX_COMPILER_ID:GNU>>:-Wno-subobject-linkage>)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # Unique symbols would pin every plug-in in the process for ever.
    target_compile_options(zentara_settings INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-fno-gnu-unique>)
    # At -O3 gcc 12 sees overlaps in the concatenation of strings that are none (its bug 105651), and reads past the end
    # in branches that are not taken for so short an object.
    target_compile_options(zentara_settings INTERFACE
        "$<$<CONFIG:Release>:-Wno-restrict;-Wno-array-bounds;-Wno-stringop-overread>")
endif()
if(ZENTARA_SANITIZE)
    add_compile_options(-fsanitize=${ZENTARA_SANITIZE} -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${ZENTARA_SANITIZE})
    if(ZENTARA_SANITIZE MATCHES "undefined")
        # A type's vtable is not exported from every library that uses it.
        add_compile_options(-fno-sanitize=vptr,function)
        add_link_options(-fno-sanitize=vptr,function)
    endif()
endif()
if(ZENTARA_COVERAGE)
    add_compile_options(-fprofile-instr-generate -fcoverage-mapping)
    add_link_options(-fprofile-instr-generate)
endif()
find_package(Threads REQUIRED)

# Header-only packages of the distribution, reached one by one: for a cross-build the host's whole include
# directory must stay out of the search path.
set(ZENTARA_HOST_HEADERS ${PROJECT_BINARY_DIR}/host-headers)
file(MAKE_DIRECTORY ${ZENTARA_HOST_HEADERS})
foreach(package CLI nlohmann stb)
    if(EXISTS /usr/include/${package})
        file(CREATE_LINK /usr/include/${package} ${ZENTARA_HOST_HEADERS}/${package} SYMBOLIC)
    endif()
endforeach()
add_library(zentara_host_headers INTERFACE)
target_include_directories(zentara_host_headers SYSTEM INTERFACE ${ZENTARA_HOST_HEADERS})

function(zentara_configure_library target)
    target_compile_definitions(${target} PRIVATE ZENTARA_BUILDING_LIBRARY)
    target_include_directories(${target} PUBLIC
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
        $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include>
        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    target_compile_features(${target} PUBLIC cxx_std_20)
    # Clients' plug-ins must be able to leave the process, too.
    target_compile_options(${target} INTERFACE
        $<$<AND:$<CXX_COMPILER_ID:GNU>,$<COMPILE_LANGUAGE:CXX>>:-fno-gnu-unique>)
    target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:zentara_settings> $<BUILD_INTERFACE:zentara_platform>)
    set_target_properties(${target} PROPERTIES OUTPUT_NAME ZentaraPlugins)
    if(WIN32)
        set_target_properties(${target} PROPERTIES PREFIX "")
        zentara_copy_runtime(${target})
    else()
        set_target_properties(${target} PROPERTIES
            VERSION ${ZENTARA_SDK_MAJOR}.${ZENTARA_SDK_MINOR}.${ZENTARA_SDK_PATCH}
            SOVERSION ${ZENTARA_SDK_MAJOR}.${ZENTARA_SDK_MINOR})
        if(NOT ZENTARA_SANITIZE)
            target_link_options(${target} PRIVATE -Wl,--no-undefined)
        endif()
    endif()
endfunction()

# The library, its plug-ins and their host share one C++ runtime, so its DLLs lie beside them.
set(ZENTARA_RUNTIME_DLLS)
if(WIN32)
    foreach(dll libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
        execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${dll}
            OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
        if(NOT IS_ABSOLUTE ${path})
            message(FATAL_ERROR "${dll} of the cross compiler was not found")
        endif()
        list(APPEND ZENTARA_RUNTIME_DLLS ${path})
    endforeach()
endif()
function(zentara_copy_runtime target)
    add_custom_command(TARGET ${target} POST_BUILD
        COMMAND ${CMAKE_COMMAND} -E copy_if_different ${ZENTARA_RUNTIME_DLLS} $<TARGET_FILE_DIR:${target}>
        VERBATIM)
endfunction()

# zentara_add_plugin(NAME SOURCES... [LIBRARIES ...]): a plug-in library in the build tree's "bin/Plugins/".
set(ZENTARA_PLUGIN_DIR ${PROJECT_BINARY_DIR}/bin/Plugins)
function(zentara_add_plugin name)
    cmake_parse_arguments(arg "NO_INSTALL" "DIRECTORY" "SOURCES;LIBRARIES" ${ARGN})
    if(NOT arg_DIRECTORY)
        set(arg_DIRECTORY ${ZENTARA_PLUGIN_DIR})
    endif()
    add_library(${name} MODULE ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE ZentaraPlugins zentara_settings ${arg_LIBRARIES})
    set_target_properties(${name} PROPERTIES PREFIX ""
        LIBRARY_OUTPUT_DIRECTORY ${arg_DIRECTORY} RUNTIME_OUTPUT_DIRECTORY ${arg_DIRECTORY}
        INSTALL_RPATH "$ORIGIN/../../${CMAKE_INSTALL_LIBDIR}")
    if(NOT arg_NO_INSTALL)
        install(TARGETS ${name} LIBRARY DESTINATION ${ZENTARA_INSTALL_ROOT}/bin/Plugins COMPONENT plugins
            RUNTIME DESTINATION ${ZENTARA_INSTALL_ROOT}/bin/Plugins COMPONENT plugins)
    endif()
endfunction()

# zentara_add_replay(TARGET [CORPUS NAME] [SOURCES SOURCE...] [LIBRARIES LIBRARY...]): gives the inputs that a fuzz target
# has gathered, in the corpus of its name unless told, to the same entry point once more.
function(zentara_add_replay target)
    cmake_parse_arguments(arg "" "CORPUS" "SOURCES;LIBRARIES" ${ARGN})
    if(NOT arg_CORPUS)
        set(arg_CORPUS ${target})
    endif()
    add_executable(${target}_replay ${PROJECT_SOURCE_DIR}/fuzz/replay.cpp ${PROJECT_SOURCE_DIR}/fuzz/${target}_target.cpp
        ${arg_SOURCES})
    target_include_directories(${target}_replay PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    target_link_libraries(${target}_replay PRIVATE ZentaraPlugins zentara_settings ${arg_LIBRARIES})
    add_test(NAME ${target}_replay COMMAND ${target}_replay ${PROJECT_SOURCE_DIR}/fuzz/corpus/${arg_CORPUS})
endfunction()

# zentara_add_test(NAME SOURCES ... [SEAMS] [LONG] [LIBRARIES ...] [SHARDS N]): one GoogleTest executable, one test for CTest; N
# tests, NAME_1 and so on, where its cases mostly wait and several may do so at once. With SEAMS it links the copy of
# the library that exports what tests adjust. What is LONG begins first, and others run beside it; so do shards.
function(zentara_add_test name)
    cmake_parse_arguments(arg "SEAMS;LONG" "TIMEOUT;SHARDS" "SOURCES;LIBRARIES;DEPENDS;ENVIRONMENT" ${ARGN})
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 300)
    endif()
    add_executable(${name} ${arg_SOURCES})
    # The tests' own speed is not measured anywhere; their compilation is most of a build, and most of that is reading
    # the test framework. Unoptimised, each inline function has a section of its own: the linker for Windows takes the
    # square of their number, and the plain object format cannot count them.
    set_target_properties(${name} PROPERTIES UNITY_BUILD ON)
    target_compile_options(${name} PRIVATE $<IF:$<BOOL:${WIN32}>,-O1;-Wa$<COMMA>-mbig-obj,-O0>)
    set(stride 1)
    if(ZENTARA_SANITIZE)
        set(stride 13)
    endif()
    target_compile_definitions(${name} PRIVATE ZENTARA_TEST_STRIDE=${stride})
    set(library ZentaraPlugins)
    if(arg_SEAMS)
        set(library zentara_seams)
        if(WIN32)
            # A program's DLLs are looked for in its own directory first.
            set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/seams)
        endif()
    endif()
    target_link_libraries(${name} PRIVATE ${library} zentara_settings zentara_test_main ${arg_LIBRARIES})
    if(arg_DEPENDS)
        add_dependencies(${name} ${arg_DEPENDS})
    endif()
    if(ZENTARA_SANITIZE MATCHES "address")
        # A late write into the frame of a caller that has gone is found only where frames live on the heap.
        list(APPEND arg_ENVIRONMENT "ASAN_OPTIONS=detect_stack_use_after_return=1"
            "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/lsan.supp")
        # The sanitizer's own locks are not made free in a child of fork: one that was held by the parent's other thread
        # stops the child for ever, in an allocation or in the search for leaks at its end.
        list(APPEND arg_ENVIRONMENT "GTEST_FILTER=-*.AChildOfForkEndsWhileItsParentMaps")
    endif()
    if(ZENTARA_SANITIZE MATCHES "thread")
        list(APPEND arg_ENVIRONMENT "TSAN_OPTIONS=detect_deadlocks=1:second_deadlock_stack=1")
    endif()
    # A camera that happens to be plugged into the machine is none of the tests' business.
    list(PREPEND arg_ENVIRONMENT "ZENTARASDK_ROOT=${PROJECT_BINARY_DIR}/" "ZENTARA_SYSFS=${PROJECT_BINARY_DIR}/no-devices")
    if(NOT arg_SHARDS)
        add_test(NAME ${name} COMMAND ${name})
        set_tests_properties(${name} PROPERTIES TIMEOUT ${arg_TIMEOUT} ENVIRONMENT "${arg_ENVIRONMENT}" COST $<BOOL:${arg_LONG}>)
        return()
    endif()
    foreach(shard RANGE 1 ${arg_SHARDS})
        math(EXPR index "${shard} - 1")
        add_test(NAME ${name}_${shard} COMMAND ${name})
        set_tests_properties(${name}_${shard} PROPERTIES TIMEOUT ${arg_TIMEOUT} COST 1
            ENVIRONMENT "${arg_ENVIRONMENT};GTEST_TOTAL_SHARDS=${arg_SHARDS};GTEST_SHARD_INDEX=${index}")
    endforeach()
endfunction()

# zentara_pytest(NAME SUBJECT PATH MODULES ENVIRONMENT ...): what pytest finds at a path below the caller's folder, run by the
# Python that the module is built for. Where that lacks one of the modules, as "pytest, numpy", it says that the subject, as
# "The viewer is", is not tested.
function(zentara_pytest name subject path modules)
    cmake_parse_arguments(arg "" "" "ENVIRONMENT" ${ARGN})
    set(python ${ZENTARA_PYTHON_INTERPRETER})
    if(NOT python)
        find_program(ZENTARA_PYTHON python3 PATHS /usr/bin NO_DEFAULT_PATH DOC "The Python that the module is built for")
        set(python ${ZENTARA_PYTHON})
    endif()
    set(missing TRUE)
    if(python)
        execute_process(COMMAND ${python} -c "import ${modules}" RESULT_VARIABLE missing OUTPUT_QUIET ERROR_QUIET)
    endif()
    if(missing)
        message(STATUS "${subject} not tested: there is no Python with ${modules}")
        return()
    endif()
    add_test(NAME ${name} COMMAND ${python} -m pytest -q -p no:cacheprovider ${CMAKE_CURRENT_SOURCE_DIR}/${path})
    set_tests_properties(${name} PROPERTIES TIMEOUT 600 COST 1 ENVIRONMENT "${arg_ENVIRONMENT};PYTHONDONTWRITEBYTECODE=1")
endfunction()
