# All that the program knows about a pattern text, in JSON too. The page in the browser knows the
# same, and has no files and no picture libraries.
include(${CMAKE_CURRENT_LIST_DIR}/step_inks.cmake)
add_library(pelkraft_pattern_report STATIC EXCLUDE_FROM_ALL)
foreach(part IN ITEMS
        combination_model
        draw_lints
        finding_rules
        findings
        glued_keywords
        keyword_slips
        name_separators
        near_names
        pattern_diff
        pattern_engines
        pattern_fix
        pattern_intention
        pattern_json
        pattern_lints
        pattern_report
        pattern_sarif
        pattern_text
        ratio_blanks
        sarif
        unified_diff
        value_line_lints)
    target_sources(pelkraft_pattern_report PRIVATE ${CMAKE_CURRENT_LIST_DIR}/${part}.cpp)
endforeach()
set_source_files_properties(${CMAKE_CURRENT_LIST_DIR}/sarif.cpp PROPERTIES
    COMPILE_DEFINITIONS PELKRAFT_VERSION="${PROJECT_VERSION}")
target_link_libraries(pelkraft_pattern_report
    PUBLIC pelkraft_step_inks
    PRIVATE nlohmann_json::nlohmann_json pelkraft_warnings)
