# The drawing of a pattern's shares, mean inks and spectra. The page in the browser shows the same.
add_library(pelkraft_pattern_plot STATIC EXCLUDE_FROM_ALL)
foreach(part IN ITEMS
        field_spectra
        pattern_curves
        share_plot
        spectrum
        svg_parts
        value_shades)
    target_sources(pelkraft_pattern_plot PRIVATE ${CMAKE_CURRENT_LIST_DIR}/${part}.cpp)
endforeach()
target_link_libraries(pelkraft_pattern_plot
    PUBLIC pelkraft_pattern_report pelkraft_preview
    PRIVATE pelkraft_warnings)
