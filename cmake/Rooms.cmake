# The vector road exists on x86 alone.
string(TOLOWER "${CMAKE_SYSTEM_PROCESSOR}" processor)
if(processor MATCHES "^(x86_64|amd64|i[3-6]86)$")
    set(PELKRAFT_VECTOR_ROAD ON)
else()
    set(PELKRAFT_VECTOR_ROAD OFF)
endif()

# Adds the sources of one room to the library. The ending of a file alone sets its flags: files
# of the vector road get SSSE3 and are left out where that road does not exist.
function(pelkraft_room)
    foreach(source IN LISTS ARGN)
        if(source MATCHES "_vector\\.cpp$")
            if(NOT PELKRAFT_VECTOR_ROAD)
                continue()
            endif()
            set_source_files_properties(${source} TARGET_DIRECTORY pelkraft_objects
                PROPERTIES COMPILE_OPTIONS "-mssse3")
        endif()
        target_sources(pelkraft_objects PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/${source})
    endforeach()
    if(PELKRAFT_VECTOR_ROAD)
        target_compile_definitions(pelkraft_objects PUBLIC PELKRAFT_VECTOR_ROAD)
    endif()
endfunction()
