# WebAssembly with emscripten, as Debian packages it; its programs run in Node.js.
set(BUILD_SHARED_LIBS OFF CACHE BOOL "WebAssembly has no shared libraries")
# Exceptions are WebAssembly's own: those that JavaScript stands in for make each guarded call slow.
set(CMAKE_CXX_FLAGS_INIT -fwasm-exceptions)
# Programs read files and variables of the system. They load at once: the asynchronous loader takes
# Node.js for a browser, since it has a function called fetch. Their scripts keep their lines, one of
# which Node.js shows where a program fails.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-g1 -fwasm-exceptions -sALLOW_MEMORY_GROWTH=1 -sEXIT_RUNTIME=1 \
-sNODERAWFS=1 -sWASM_ASYNC_COMPILATION=0 --pre-js ${CMAKE_CURRENT_LIST_DIR}/wasm-environment.js")
include(/usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake)
