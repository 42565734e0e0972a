# The straight-line vector methods take minutes to compile with every check inlined: calls to the
# checks keep all of them.
if(CMAKE_CXX_FLAGS MATCHES "-fsanitize=address" AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    add_compile_options("$<$<COMPILE_LANGUAGE:CXX>:SHELL:-mllvm -asan-instrumentation-with-call-threshold=0>")
endif()
if(CMAKE_CXX_FLAGS MATCHES "-fsanitize=memory")
    add_compile_options("$<$<COMPILE_LANGUAGE:CXX>:SHELL:-mllvm -msan-instrumentation-with-call-threshold=0>")
endif()
