# What `make demo` runs: two simulated cameras, one pulled out and put back while both stream. Leaves pictures, a point
# cloud, sound, a recording and a plot in OUTPUT. Started with -DSTEP=hotplug it is the hand that pulls and plugs.
function(plug)
    set(cameras "")
    foreach(camera ${ARGN})
        string(APPEND cameras "{\"model\": \"${camera}\"},")
    endforeach()
    string(REGEX REPLACE ",$" "" cameras "${cameras}")
    # Written beside and renamed, so that nobody reads half of it.
    file(WRITE ${OUTPUT}/cameras.new "{\"format\": 1, \"cameras\": [${cameras}]}\n")
    file(RENAME ${OUTPUT}/cameras.new ${OUTPUT}/cameras.json)
endfunction()

if(STEP STREQUAL "hotplug")
    execute_process(COMMAND ${CMAKE_COMMAND} -E sleep 2)
    plug(ZS570)
    execute_process(COMMAND ${CMAKE_COMMAND} -E sleep 1)
    plug(ZS570 ZS345)
    return()
endif()

function(zentara)
    list(JOIN ARGN " " words)
    message("\n$ zentara ${words}")
    execute_process(COMMAND ${EMULATOR} ${ZENTARA} ${ARGN} WORKING_DIRECTORY ${OUTPUT} RESULT_VARIABLE code)
    if(NOT code EQUAL 0)
        message(FATAL_ERROR "zentara ${words}: exit code ${code}")
    endif()
endfunction()

file(MAKE_DIRECTORY ${OUTPUT})
set(ENV{ZENTARA_SIMULATED_CAMERAS} ${OUTPUT}/cameras.json)
plug(ZS570 ZS345)
zentara(devices)

set(words stream --all --frames 360 --wait 30 --png depth.png --color-png color.png --wav tone.wav)
list(JOIN words " " text)
message("\n$ zentara ${text}\n# ... while the second camera is pulled out and put back")
# The commands of a pipe run side by side; what the first one prints, nothing, goes to the second.
execute_process(
    COMMAND ${CMAKE_COMMAND} -DSTEP=hotplug -DOUTPUT=${OUTPUT} -P ${CMAKE_CURRENT_LIST_FILE}
    COMMAND ${EMULATOR} ${ZENTARA} ${words}
    WORKING_DIRECTORY ${OUTPUT} RESULT_VARIABLE code)
if(NOT code EQUAL 0)
    message(FATAL_ERROR "zentara ${text}: exit code ${code}")
endif()

zentara(stream --camera SIM0570 --frames 30 --color --ply cloud.ply --cloud-png cloud.png)
zentara(stream --camera SIM0345 --frames 30 --audio --record camera.ztrec)
zentara(stream --play camera.ztrec)
zentara(params get 0 2 13)
zentara(params set --camera SIM0570 0=55 2=30 13=40,30,240,180)
zentara(calibration export calibration.json)
zentara(sensors --watch --seconds 5 --interval 250 --png temperatures.png)
file(GLOB files RELATIVE ${OUTPUT} ${OUTPUT}/*)
list(JOIN files " " files)
message("\nIn ${OUTPUT}: ${files}")
