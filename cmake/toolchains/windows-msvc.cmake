# Windows x64 in Microsoft's binary interface, with Clang under the command line of cl. In the place
# of Microsoft's headers and import libraries are Wine's for C and LLVM's headers for C++; what these
# lack stands in the folder beside this file. There is no C++ library to link with, save for the
# stand-in of tests/platforms/windows_msvc/.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_CXX_COMPILER clang-cl-14)
set(CMAKE_CXX_COMPILER_TARGET x86_64-pc-windows-msvc)
set(CMAKE_LINKER lld-link-14)
set(CMAKE_AR llvm-lib-14)
set(CMAKE_RC_COMPILER llvm-rc-14)
set(CMAKE_MT llvm-mt-14)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

set(targetHeaders /usr/lib/llvm-14/include/c++/v1 ${CMAKE_CURRENT_LIST_DIR}/windows-msvc
    /usr/include/wine/wine/msvcrt /usr/include/wine/wine/windows)
set(targetDefinitions -D_LIBCPP_NO_VCRUNTIME -D_LIBCPP_HAS_NO_THREADS
    -D_LIBCPP_DISABLE_VISIBILITY_ANNOTATIONS -D_LIBCPP_DISABLE_EXTERN_TEMPLATE
    -DUSE_COMPILER_EXCEPTIONS -DWINE_UNICODE_NATIVE)
list(JOIN targetHeaders " -imsvc " headers)
list(JOIN targetDefinitions " " definitions)
# The checks of stacks and the locks of local constants would need Microsoft's library.
set(CMAKE_CXX_FLAGS_INIT "-imsvc ${headers} ${definitions} /GS- /Zc:threadSafeInit-")

find_program(WINE_EXECUTABLE NAMES wine64 wine PATHS /usr/lib/wine)
if(WINE_EXECUTABLE)
    set(CMAKE_CROSSCOMPILING_EMULATOR ${WINE_EXECUTABLE})
endif()
