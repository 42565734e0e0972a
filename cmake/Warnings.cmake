# Our own targets link these warnings; a consumer of the package never sees them.
add_library(pelkraft_warnings INTERFACE)
target_compile_options(pelkraft_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(PELKRAFT_WARNINGS_AS_ERRORS)
    target_compile_options(pelkraft_warnings INTERFACE -Werror)
endif()
