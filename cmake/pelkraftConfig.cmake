# The two namespaces live in one export set: each target gets the name that the guide promises.
include("${CMAKE_CURRENT_LIST_DIR}/pelkraftTargets.cmake")
if(NOT TARGET pelkraft::pelkraft)
    add_library(pelkraft::pelkraft ALIAS pelkraft)
    add_library(zvk::system_tools ALIAS system_tools)
endif()
