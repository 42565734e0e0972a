# SPDX-License-Identifier: Apache-2.0
set(pelkraft_LICENSE Apache-2.0)
include("${CMAKE_CURRENT_LIST_DIR}/systemToolsTargets.cmake")
include("${CMAKE_CURRENT_LIST_DIR}/pelkraftTargets.cmake")
