# Sources that catch structured exceptions, those of Windows, need __try. Some compilers have it,
# Clang with a flag. GCC doesn't, so Clang makes an object of such a source for it; both have the
# same binary interface.
include(CheckCXXSourceCompiles)

# Sets PELKRAFT_TRY_COMMAND to a compiler with flags that makes an object of the source text for the
# system of the other sources, or to nothing.
function(pelkraft_other_compiler text)
    set(PELKRAFT_TRY_COMMAND "" PARENT_SCOPE)
    if(NOT PELKRAFT_TRY_COMPILER)
        return()
    endif()
    # It brings headers of its own, but for those of system and C++ library.
    set(headers ${CMAKE_CXX_IMPLICIT_INCLUDE_DIRECTORIES})
    list(FILTER headers EXCLUDE REGEX "/gcc/[^+]*/include(-fixed)?$")
    list(TRANSFORM headers PREPEND -isystem)
    # Windows writes the processor in capitals.
    string(TOLOWER "${CMAKE_SYSTEM_PROCESSOR}" processor)
    set(command ${PELKRAFT_TRY_COMPILER} --target=${processor}-w64-windows-gnu
        -std=c++20 -O2 -nostdinc++ -nostdlibinc ${headers})
    set(source ${CMAKE_BINARY_DIR}/CMakeFiles/structured_exception.cpp)
    file(WRITE ${source} "${text}")
    execute_process(COMMAND ${command} ${PELKRAFT_TRY_FLAGS} -c ${source} -o ${source}.obj
        RESULT_VARIABLE result OUTPUT_QUIET ERROR_QUIET)
    if(result EQUAL 0)
        set(PELKRAFT_TRY_COMMAND ${command} PARENT_SCOPE)
    endif()
endfunction()

# Clang's -Wpedantic warns of __try.
set(PELKRAFT_TRY_FLAGS $<$<CXX_COMPILER_ID:Clang>:-Wno-language-extension-token>)
set(PELKRAFT_HAS_STRUCTURED_EXCEPTIONS OFF)
if(WIN32)
    set(trial "
        #include <functional>
        #include <windows.h>
        #undef __try
        int main()
        {
            __try {
                DebugBreak();
            } __except (EXCEPTION_CONTINUE_SEARCH) {
            }
        }")
    check_cxx_source_compiles("${trial}" PELKRAFT_HAS_TRY)
    if(NOT PELKRAFT_HAS_TRY)
        set(PELKRAFT_TRY_FLAGS -fms-extensions -Wno-language-extension-token)
        set(CMAKE_REQUIRED_FLAGS -fms-extensions)
        check_cxx_source_compiles("${trial}" PELKRAFT_HAS_TRY_WITH_FLAG)
        unset(CMAKE_REQUIRED_FLAGS)
    endif()
    if(PELKRAFT_HAS_TRY OR PELKRAFT_HAS_TRY_WITH_FLAG)
        message(STATUS "Structured exceptions: by ${CMAKE_CXX_COMPILER}")
    else()
        if(MINGW)
            find_program(PELKRAFT_TRY_COMPILER clang++)
        endif()
        pelkraft_other_compiler("${trial}")
        if(PELKRAFT_TRY_COMMAND)
            message(STATUS "Structured exceptions: by ${PELKRAFT_TRY_COMPILER}")
        else()
            message(STATUS "Structured exceptions: no compiler has __try, so none is logged")
        endif()
    endif()
    if(PELKRAFT_HAS_TRY OR PELKRAFT_HAS_TRY_WITH_FLAG OR PELKRAFT_TRY_COMMAND)
        set(PELKRAFT_HAS_STRUCTURED_EXCEPTIONS ON)
    endif()
endif()

# What to put among the sources of a target of this folder for a source that uses __try where
# PELKRAFT_HAS_TRY is defined. It is compiled as the sources of the target "like" are.
function(pelkraft_with_try result source like)
    set(${result} ${source} PARENT_SCOPE)
    if(PELKRAFT_HAS_TRY OR PELKRAFT_HAS_TRY_WITH_FLAG)
        set_source_files_properties(${source} PROPERTIES
            COMPILE_OPTIONS "${PELKRAFT_TRY_FLAGS}" COMPILE_DEFINITIONS PELKRAFT_HAS_TRY)
    elseif(PELKRAFT_TRY_COMMAND)
        get_filename_component(name ${source} NAME_WE)
        set(object ${CMAKE_CURRENT_BINARY_DIR}/${name}${CMAKE_CXX_OUTPUT_EXTENSION})
        set(includes $<TARGET_PROPERTY:${like},INCLUDE_DIRECTORIES>)
        set(definitions "PELKRAFT_HAS_TRY;$<TARGET_PROPERTY:${like},COMPILE_DEFINITIONS>")
        set(definitions $<REMOVE_DUPLICATES:$<FILTER:${definitions},INCLUDE,.>>)
        add_custom_command(OUTPUT ${object}
            COMMAND ${PELKRAFT_TRY_COMMAND}
                "-I$<JOIN:${includes},;-I>" "-D$<JOIN:${definitions},;-D>"
                $<TARGET_PROPERTY:pelkraft_warnings,INTERFACE_COMPILE_OPTIONS>
                ${PELKRAFT_TRY_FLAGS} -MD -MF ${object}.d -c ${source} -o ${object}
            DEPENDS ${source} DEPFILE ${object}.d
            COMMAND_EXPAND_LISTS VERBATIM)
        set(${result} ${object} PARENT_SCOPE)
    endif()
endfunction()
