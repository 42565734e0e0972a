# Fails unless the library exports these copy functions, and beside them its two classes alone.
set(expected
    "zvk::Pelkraft::copyByDwords(unsigned char*, unsigned char*, int)"
    "zvk::Pelkraft::copySimulationAlignedFixed(unsigned char*, unsigned char*, int, int)"
    "zvk::Pelkraft::copySimulationAlignedVariable(unsigned char*, unsigned char*, int, int)"
    "zvk::Pelkraft::copySimulationUnaligned(unsigned char*, unsigned char*, int, int)"
    "zvk::Pelkraft::intelMemcopy(unsigned char*, unsigned char*, int)")

execute_process(COMMAND ${NM} -DC --defined-only ${LIBRARY}
    OUTPUT_VARIABLE listing COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE "\n$" "" listing "${listing}")
string(REPLACE "\n" ";" lines "${listing}")
set(exported "")
foreach(line IN LISTS lines)
    string(REGEX REPLACE "^[0-9a-f]* [A-Za-z] " "" name "${line}")
    if(NOT name MATCHES "^((vtable|typeinfo|typeinfo name) for )?zvk::Pelkraft::(ImageRow|DotWeavePattern)(::|$)")
        list(APPEND exported "${name}")
    endif()
endforeach()
list(SORT exported)
list(SORT expected)
if(NOT exported STREQUAL expected)
    list(JOIN exported "\n  " found)
    list(JOIN expected "\n  " wanted)
    message(FATAL_ERROR "Exported:\n  ${found}\nExpected:\n  ${wanted}")
endif()
