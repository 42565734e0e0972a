# Everything is found relative to where the package stands, so that a prefix can be moved.
set(packageDir ${CMAKE_INSTALL_LIBDIR}/cmake/pelkraft)
foreach(pair IN ITEMS "pelkraft;pelkraftTargets" "zvk_system_tools;systemToolsTargets")
    list(GET pair 0 library)
    list(GET pair 1 exportSet)
    install(TARGETS ${library} EXPORT ${exportSet}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime
            NAMELINK_COMPONENT development
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
endforeach()
set_target_properties(pelkraft zvk_system_tools PROPERTIES INSTALL_RPATH "$ORIGIN")
install(DIRECTORY include/pelkraft system_tools/include/zvk
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)

install(EXPORT systemToolsTargets
    DESTINATION ${packageDir} NAMESPACE zvk:: COMPONENT development)
install(EXPORT pelkraftTargets
    DESTINATION ${packageDir} NAMESPACE pelkraft:: COMPONENT development)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/pelkraftConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES cmake/pelkraftConfig.cmake ${PROJECT_BINARY_DIR}/pelkraftConfigVersion.cmake
    DESTINATION ${packageDir} COMPONENT development)

# The way up from the .pc file to the prefix, since pkg-config knows only where the file is.
file(RELATIVE_PATH upToPrefix /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
string(REGEX REPLACE "/$" "" upToPrefix "${upToPrefix}")
configure_file(cmake/pelkraft.pc.in ${PROJECT_BINARY_DIR}/pelkraft.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/pelkraft.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT development)

# A component of its own: Debian's packages say the same in a file of Debian's form.
install(FILES LICENSE NOTICE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT licence)
install(DIRECTORY examples/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples COMPONENT development
    FILES_MATCHING PATTERN "*.c" PATTERN "*.cpp" PATTERN patterns EXCLUDE)
