# The vector road exists on x86 alone.
string(TOLOWER "${CMAKE_SYSTEM_PROCESSOR}" processor)
if(processor MATCHES "^(x86_64|amd64|i[3-6]86)$")
    set(PELKRAFT_VECTOR_ROAD ON)
else()
    set(PELKRAFT_VECTOR_ROAD OFF)
endif()

# The flags that an ending stands for. Files of a vector ending are left out where the vector road
# does not exist.
set(PELKRAFT_FLAGS_vector -mssse3)
set(PELKRAFT_FLAGS_avx2 -mavx2)
set(PELKRAFT_FLAGS_avx512 -mavx512f -mavx512bw -mavx512vl -mavx512vbmi)

# Adds the sources of one room to the library. The ending of a file alone sets its flags.
function(pelkraft_room)
    foreach(source IN LISTS ARGN)
        if(source MATCHES "_(vector|avx2|avx512)\\.cpp$")
            if(NOT PELKRAFT_VECTOR_ROAD)
                continue()
            endif()
            set_source_files_properties(${source} TARGET_DIRECTORY pelkraft_objects
                PROPERTIES COMPILE_OPTIONS "${PELKRAFT_FLAGS_${CMAKE_MATCH_1}}")
        endif()
        target_sources(pelkraft_objects PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/${source})
    endforeach()
    if(PELKRAFT_VECTOR_ROAD)
        target_compile_definitions(pelkraft_objects PUBLIC PELKRAFT_VECTOR_ROAD)
    endif()
endfunction()
