include("${CMAKE_CURRENT_LIST_DIR}/systemToolsTargets.cmake")
include("${CMAKE_CURRENT_LIST_DIR}/pelkraftTargets.cmake")
