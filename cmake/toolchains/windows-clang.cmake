# Windows x64 with Clang and MinGW's headers and libraries, on Linux; its programs run under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER_TARGET x86_64-w64-windows-gnu)
set(CMAKE_CXX_COMPILER_TARGET x86_64-w64-windows-gnu)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
# Or Clang looks for headers in the folders of this machine, too.
set(CMAKE_SYSROOT /usr/x86_64-w64-mingw32)
# Clang 14 does not look where Debian puts MinGW's C++ library with POSIX threads.
set(libraries /usr/lib/gcc/x86_64-w64-mingw32/12-posix)
set(CMAKE_CXX_STANDARD_INCLUDE_DIRECTORIES
    ${libraries}/include/c++ ${libraries}/include/c++/x86_64-w64-mingw32)
# Its threads are in a library of their own, which GCC links without being told.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-B${libraries} -L${libraries} -pthread")
set(CMAKE_SHARED_LINKER_FLAGS_INIT ${CMAKE_EXE_LINKER_FLAGS_INIT})
include(${CMAKE_CURRENT_LIST_DIR}/windows-root.cmake)
