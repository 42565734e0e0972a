# Our own targets link these warnings; a consumer of the package never sees them.
add_library(pelkraft_warnings INTERFACE)
if(MSVC)
    # Clang takes its own names of warnings under the command line of cl too.
    target_compile_options(pelkraft_warnings INTERFACE
        /W4 $<$<CXX_COMPILER_ID:Clang>:-Wpedantic -Wconversion -Wshadow>)
else()
    target_compile_options(pelkraft_warnings INTERFACE
        -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
endif()
if(PELKRAFT_WARNINGS_AS_ERRORS)
    target_compile_options(pelkraft_warnings INTERFACE $<IF:$<BOOL:${MSVC}>,/WX,-Werror>)
endif()
