# The inks of a pattern's steps, from its text alone. The package for Python has them too, and is
# built without the rest of the program.
include_guard(GLOBAL)
add_library(pelkraft_step_inks STATIC EXCLUDE_FROM_ALL)
foreach(part IN ITEMS
        ink_colours
        ink_shares
        pattern_outline
        shown_text
        step_inks)
    target_sources(pelkraft_step_inks PRIVATE ${CMAKE_CURRENT_LIST_DIR}/${part}.cpp)
endforeach()
target_include_directories(pelkraft_step_inks PUBLIC ${CMAKE_CURRENT_LIST_DIR}/../..)
target_link_libraries(pelkraft_step_inks
    PUBLIC pelkraft_grammar pelkraft::pelkraft zvk::system_tools
    PRIVATE pelkraft_warnings)
