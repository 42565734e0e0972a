# The guards log the structured exceptions of Windows where a compiler knows __try. GCC doesn't, but
# Clang compiles the guards' source for it into an object of the same interface.
include(CheckCXXSourceCompiles)

set(structuredTrial "
#include <windows.h>
int main()
{
    __try {
        DebugBreak();
    } __except (EXCEPTION_CONTINUE_SEARCH) {
    }
}")
check_cxx_source_compiles("${structuredTrial}" PELKRAFT_HAS_TRY)
if(NOT PELKRAFT_HAS_TRY)
    set(CMAKE_REQUIRED_FLAGS -fms-extensions)
    check_cxx_source_compiles("${structuredTrial}" PELKRAFT_HAS_TRY_AS_EXTENSION)
    unset(CMAKE_REQUIRED_FLAGS)
endif()

# Tells the source that it may use __try.
set(PELKRAFT_STRUCTURED_EXCEPTIONS PELKRAFT_STRUCTURED_EXCEPTIONS)

# Adds the source of the guards to the library, in the best form that can be had here.
function(pelkraft_guards source)
    set(path ${CMAKE_CURRENT_SOURCE_DIR}/${source})
    if(PELKRAFT_HAS_TRY OR PELKRAFT_HAS_TRY_AS_EXTENSION)
        target_sources(pelkraft_objects PRIVATE ${path})
    endif()
endfunction()
