# What both compilers for Windows share: where its libraries lie, and Wine to run its programs. The
# second folder holds what scripts/platforms/windows_libraries.sh builds.
get_filename_component(windowsLibraries
    ${CMAKE_CURRENT_LIST_DIR}/../../build/windows-libraries ABSOLUTE)
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 ${windowsLibraries})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
find_program(WINE_EXECUTABLE NAMES wine64 wine PATHS /usr/lib/wine)
if(WINE_EXECUTABLE)
    set(CMAKE_CROSSCOMPILING_EMULATOR ${WINE_EXECUTABLE})
endif()
