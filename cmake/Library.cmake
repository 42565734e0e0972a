# The library holds the objects of all rooms, and exports the names of one list.
add_library(pelkraft ${PELKRAFT_OBJECTS})
add_library(pelkraft::pelkraft ALIAS pelkraft)
target_compile_features(pelkraft PUBLIC cxx_std_11)
target_include_directories(pelkraft PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_link_libraries(pelkraft PRIVATE zvk::system_tools)
if(WIN32)
    # It has the registry, also for those who link the static library.
    target_link_libraries(pelkraft PRIVATE advapi32)
    set(PELKRAFT_SYSTEM_LIBRARIES " -ladvapi32")
endif()
if(NOT BUILD_SHARED_LIBS)
    target_compile_definitions(pelkraft PUBLIC PELKRAFT_STATIC)
endif()
set_target_properties(pelkraft PROPERTIES
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    LINKER_LANGUAGE CXX)
if(BUILD_SHARED_LIBS AND CMAKE_SYSTEM_NAME STREQUAL "Linux")
    target_link_options(pelkraft PRIVATE
        "LINKER:--version-script=${PROJECT_SOURCE_DIR}/cmake/pelkraft.map" "LINKER:--no-undefined-version"
        "LINKER:-z,relro,-z,now")
    set_target_properties(pelkraft PROPERTIES
        LINK_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/pelkraft.map)
endif()
