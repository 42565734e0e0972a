# The way from a pattern and the channels of a picture to steps, without files and picture libraries:
# the page in the browser goes the same way.
add_library(pelkraft_simulation_steps STATIC EXCLUDE_FROM_ALL)
foreach(part IN ITEMS
        channel_choice
        loaded_pattern
        step_choice
        step_levels)
    target_sources(pelkraft_simulation_steps PRIVATE ${CMAKE_CURRENT_LIST_DIR}/${part}.cpp)
endforeach()
target_link_libraries(pelkraft_simulation_steps
    PUBLIC pelkraft_pattern_report pelkraft_preview
    PRIVATE pelkraft_warnings)
