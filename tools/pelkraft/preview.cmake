# Inks and how they look in print, from samples to the pixels of a screen. The page in the browser
# shows the same, and has no files and no picture libraries.
include(${CMAKE_CURRENT_LIST_DIR}/step_inks.cmake)
add_library(pelkraft_preview STATIC EXCLUDE_FROM_ALL)
foreach(part IN ITEMS
        ink_file
        ink_layers
        preview_picture)
    target_sources(pelkraft_preview PRIVATE ${CMAKE_CURRENT_LIST_DIR}/${part}.cpp)
endforeach()
target_link_libraries(pelkraft_preview PUBLIC pelkraft_step_inks PRIVATE pelkraft_warnings)
