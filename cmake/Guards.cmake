# The guards log the structured exceptions of Windows, for which their source needs __try. Some
# compilers have it, Clang with a flag. GCC doesn't, so Clang makes that one object for it; both
# have the same binary interface.
include(CheckCXXSourceCompiles)

# The object files of the library, for all who link them.
set(PELKRAFT_OBJECTS $<TARGET_OBJECTS:pelkraft_objects>)
set(guards ${PROJECT_SOURCE_DIR}/rows/seh_guard.cpp)
if(NOT WIN32)
    target_sources(pelkraft_objects PRIVATE ${guards})
    return()
endif()

set(trial "
    #include <windows.h>
    int main()
    {
        __try {
            DebugBreak();
        } __except (EXCEPTION_CONTINUE_SEARCH) {
        }
    }")
# Clang's -Wpedantic warns of __try.
set(tryFlags $<$<CXX_COMPILER_ID:Clang>:-Wno-language-extension-token>)
check_cxx_source_compiles("${trial}" PELKRAFT_HAS_TRY)
if(NOT PELKRAFT_HAS_TRY)
    set(tryFlags -fms-extensions -Wno-language-extension-token)
    set(CMAKE_REQUIRED_FLAGS -fms-extensions)
    check_cxx_source_compiles("${trial}" PELKRAFT_HAS_TRY_WITH_FLAG)
    unset(CMAKE_REQUIRED_FLAGS)
endif()
if(PELKRAFT_HAS_TRY OR PELKRAFT_HAS_TRY_WITH_FLAG)
    target_sources(pelkraft_objects PRIVATE ${guards})
    set_source_files_properties(${guards} PROPERTIES
        COMPILE_OPTIONS "${tryFlags}" COMPILE_DEFINITIONS PELKRAFT_HAS_TRY)
    return()
endif()

if(MINGW)
    find_program(PELKRAFT_GUARD_COMPILER clang++)
endif()
if(NOT PELKRAFT_GUARD_COMPILER)
    message(STATUS "Structured exceptions: no compiler here has __try, so they are not logged")
    target_sources(pelkraft_objects PRIVATE ${guards})
    return()
endif()

message(STATUS "Structured exceptions: guards by ${PELKRAFT_GUARD_COMPILER}")
set(object ${PROJECT_BINARY_DIR}/guards${CMAKE_CXX_OUTPUT_EXTENSION})
# The other compiler brings headers of its own, but for those of the C++ library.
set(headers ${CMAKE_CXX_IMPLICIT_INCLUDE_DIRECTORIES})
list(FILTER headers INCLUDE REGEX "/c\\+\\+")
list(TRANSFORM headers PREPEND -isystem)
set(includes $<TARGET_PROPERTY:pelkraft_objects,INCLUDE_DIRECTORIES>)
set(definitions $<REMOVE_DUPLICATES:$<TARGET_PROPERTY:pelkraft_objects,COMPILE_DEFINITIONS>>)
add_custom_command(OUTPUT ${object}
    COMMAND ${PELKRAFT_GUARD_COMPILER} --target=${CMAKE_SYSTEM_PROCESSOR}-w64-windows-gnu
        -std=c++20 -O2 -nostdinc++ ${headers} -DPELKRAFT_HAS_TRY
        "-I$<JOIN:${includes},;-I>" "-D$<JOIN:${definitions},;-D>"
        $<TARGET_PROPERTY:pelkraft_warnings,INTERFACE_COMPILE_OPTIONS> ${tryFlags}
        -MD -MF ${object}.d -c ${guards} -o ${object}
    DEPENDS ${guards} DEPFILE ${object}.d
    COMMAND_EXPAND_LISTS VERBATIM)
# An object library doesn't hand on an object that it didn't compile.
list(APPEND PELKRAFT_OBJECTS ${object})
