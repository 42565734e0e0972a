# Everything is found relative to where the package stands, so that a prefix can be moved.
set(packageDir ${CMAKE_INSTALL_LIBDIR}/cmake/pelkraft)
install(TARGETS pelkraft zvk_system_tools EXPORT pelkraftTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
set_target_properties(pelkraft zvk_system_tools PROPERTIES INSTALL_RPATH "$ORIGIN")
install(DIRECTORY include/pelkraft DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY system_tools/include/zvk DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

install(EXPORT pelkraftTargets DESTINATION ${packageDir} FILE pelkraftTargets.cmake)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/pelkraftConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES cmake/pelkraftConfig.cmake ${PROJECT_BINARY_DIR}/pelkraftConfigVersion.cmake
    DESTINATION ${packageDir})

# The way up from the .pc file to the prefix, since pkg-config knows only where the file is.
file(RELATIVE_PATH upToPrefix /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
string(REGEX REPLACE "/$" "" upToPrefix "${upToPrefix}")
configure_file(cmake/pelkraft.pc.in ${PROJECT_BINARY_DIR}/pelkraft.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/pelkraft.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
