# Compares what the library exports with a list kept in the repository: an operation that vanishes, changes its
# arguments or comes new shows as a line, and so does, in a shared object, a class that gains or loses a virtual
# operation, by the size of its table. With -DRENEW=ON the list is written instead.
#
# Left out are symbols of the standard library's templates, which are exported as the compiler likes, and those of the
# private records behind a class's pointer, which are nobody's business. Of a DLL it is the export table that is read,
# which tells names alone.

# The symbols of a shared object, one a line, each with what it is.
function(read_shared_object result)
    execute_process(COMMAND ${NM} -DCS --defined-only ${LIBRARY} OUTPUT_VARIABLE symbols RESULT_VARIABLE code)
    if(NOT code EQUAL 0)
        message(FATAL_ERROR "${NM} cannot read ${LIBRARY}")
    endif()

    string(REPLACE ";" "," symbols "${symbols}")
    string(REGEX REPLACE "[0-9a-f]+ ([0-9a-f]+ )?V typeinfo name for [^\n]*\n" "" symbols "${symbols}")
    string(REGEX REPLACE "[^\n]* V [a-z ]*std::[^\n]*\n" "" symbols "${symbols}")
    string(REGEX REPLACE "\n[0-9a-f]+ [0-9a-f]+ W (Zentara::[^\n]*)" "\nfunction \\1" symbols "\n${symbols}")
    string(REGEX REPLACE "\n[0-9a-f]+ [0-9a-f]+ W [^\n]*" "" symbols "${symbols}")
    string(REGEX REPLACE "\n[0-9a-f]+ [0-9a-f]+ T " "\nfunction " symbols "${symbols}")
    string(REGEX REPLACE "\n[0-9a-f]+ 0*([0-9a-f]+) V vtable for " "\ntable 0x\\1 " symbols "${symbols}")
    string(REGEX REPLACE "\n[0-9a-f]+ [0-9a-f]+ V typeinfo for " "\ntypeinfo " symbols "${symbols}")
    string(REGEX REPLACE "\n[0-9a-f]+ 0*([0-9a-f]+) [BDRGV] " "\nobject 0x\\1 " symbols "${symbols}")
    set(${result} "${symbols}" PARENT_SCOPE)
endfunction()

# The names in the export table of a DLL, one a line.
function(read_dll result)
    execute_process(COMMAND ${OBJDUMP} -p ${LIBRARY} COMMAND ${CXXFILT} OUTPUT_VARIABLE headers RESULTS_VARIABLE codes)
    string(FIND "${headers}" "[Ordinal/Name Pointer] Table" start)
    if(NOT codes STREQUAL "0;0" OR start EQUAL -1)
        message(FATAL_ERROR "${OBJDUMP} finds no export table in ${LIBRARY}")
    endif()
    string(SUBSTRING "${headers}" ${start} -1 names)
    string(FIND "${names}" "\n\n" end)
    string(SUBSTRING "${names}" 0 ${end} names)
    string(REPLACE "[Ordinal/Name Pointer] Table" "" names "${names}")
    string(REPLACE ";" "," names "${names}")
    # Some versions of the program tell the ordinal and the hint as well.
    string(REGEX REPLACE "\n[ \t]*\\[ *[0-9]+\\] (\\+base\\[ *[0-9]+\\] +[0-9a-f]+ )?" "\n" names "${names}")
    set(${result} "${names}" PARENT_SCOPE)
endfunction()

if(NM)
    read_shared_object(symbols)
else()
    read_dll(symbols)
endif()
string(REGEX REPLACE "\n[^\n]*::(Impl::|[A-Za-z0-9]*ImplPrivate)[^\n]*" "" symbols "${symbols}")
string(STRIP "${symbols}" symbols)
# An opening bracket would keep CMake from splitting the list.
string(REPLACE "[" "<" symbols "${symbols}")
string(REPLACE "]" ">" symbols "${symbols}")
string(REPLACE "\n" ";" symbols "${symbols}")
list(SORT symbols)
list(REMOVE_DUPLICATES symbols) # a constructor is exported under two names that read alike
list(LENGTH symbols count)

if(RENEW)
    list(JOIN symbols "\n" text)
    file(WRITE ${BASELINE} "${text}\n")
    message(STATUS "${BASELINE}: ${count} symbols")
    return()
endif()

file(STRINGS ${BASELINE} baseline)
set(missing ${baseline})
list(REMOVE_ITEM missing ${symbols})
set(added ${symbols})
list(REMOVE_ITEM added ${baseline})
if(missing OR added)
    list(JOIN missing "\n  - " missing)
    list(JOIN added "\n  + " added)
    message(FATAL_ERROR "the exported symbols differ from ${BASELINE}\n  - ${missing}\n  + ${added}\n"
        "If that is meant, renew the list with the target abi_baseline and commit it.")
endif()
message(STATUS "${count} symbols as in the baseline")
