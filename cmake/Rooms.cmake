# The vector roads that are built, by the endings of their files, and the flags that an ending
# stands for. The 16-byte one needs a shuffle of bytes: x86 and WebAssembly have it in headers of
# their own, and elsewhere SIMDe's headers make it of what the processor has. Only x86 has the wide
# ones.
string(TOLOWER "${CMAKE_SYSTEM_PROCESSOR}" processor)
if(processor MATCHES "^(x86_64|amd64|i[3-6]86)$")
    set(PELKRAFT_VECTOR_ENDINGS vector avx2 avx512)
    if(NOT MSVC OR CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        set(PELKRAFT_FLAGS_vector -mssse3)
        set(PELKRAFT_FLAGS_avx2 -mavx2)
        set(PELKRAFT_FLAGS_avx512 -mavx512f -mavx512bw -mavx512vl -mavx512vbmi)
    else()
        # The compiler of Microsoft has all intrinsics without a flag, and one for the code around
        # them. Processors with what these stand for have what our levels ask for, and vice versa.
        set(PELKRAFT_FLAGS_vector)
        set(PELKRAFT_FLAGS_avx2 /arch:AVX2)
        set(PELKRAFT_FLAGS_avx512 /arch:AVX512)
    endif()
elseif(EMSCRIPTEN)
    set(PELKRAFT_VECTOR_ENDINGS vector)
    set(PELKRAFT_FLAGS_vector -msimd128 -mssse3)
else()
    find_path(PELKRAFT_SIMDE_INCLUDE simde/x86/ssse3.h DOC "Where SIMDe's headers are")
    if(PELKRAFT_SIMDE_INCLUDE)
        set(PELKRAFT_VECTOR_ENDINGS vector)
        include_directories(SYSTEM ${PELKRAFT_SIMDE_INCLUDE})
    else()
        set(PELKRAFT_VECTOR_ENDINGS)
        message(NOTICE "pelkraft: no SIMDe headers (libsimde-dev), so only the portable road is \
built: it is slower, and it leaves channels out when it unpacks 1 or 2 bits (docs/roads.md)")
    endif()
endif()

# The code asks by these names, and so do other rules of the build.
set(PELKRAFT_ROADS)
set(PELKRAFT_VECTOR_ROAD OFF)
if("vector" IN_LIST PELKRAFT_VECTOR_ENDINGS)
    set(PELKRAFT_VECTOR_ROAD ON)
    list(APPEND PELKRAFT_ROADS PELKRAFT_VECTOR_ROAD)
endif()
if("avx2" IN_LIST PELKRAFT_VECTOR_ENDINGS)
    list(APPEND PELKRAFT_ROADS PELKRAFT_WIDE_ROADS)
endif()

# Adds the sources of one room to the library. The ending of a file alone sets its flags.
function(pelkraft_room)
    foreach(source IN LISTS ARGN)
        if(source MATCHES "_(vector|avx2|avx512)\\.cpp$")
            set(ending ${CMAKE_MATCH_1})
            if(NOT ending IN_LIST PELKRAFT_VECTOR_ENDINGS)
                continue()
            endif()
            set_source_files_properties(${source} TARGET_DIRECTORY pelkraft_objects
                PROPERTIES COMPILE_OPTIONS "${PELKRAFT_FLAGS_${ending}}")
        endif()
        target_sources(pelkraft_objects PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/${source})
    endforeach()
endfunction()
