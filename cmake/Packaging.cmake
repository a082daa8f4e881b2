# What `cmake --install` puts where, and the Debian package CPack builds
# from it (cpack -G DEB in the build folder).
#   bin/braxcfg                          the tool
#   lib/libbraxcfg.so, lib/libautocf.so  the plug-in and the auto-configuration
#                                        module beside it (the module search
#                                        looks in the plug-in's own folder, the
#                                        tool looks for the plug-in in ../lib)
#   include/braxcfg/*.h                  the plug-in's and the module's interface
#   share/man/man1/braxcfg.1, the bash completion, the example lab files
install(TARGETS braxcfg_tool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS braxcfg_plugin LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/braxcfg DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        FILES_MATCHING PATTERN "*.h")
install(FILES ${PROJECT_SOURCE_DIR}/dist/braxcfg.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${PROJECT_SOURCE_DIR}/dist/braxcfg.bash-completion
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME braxcfg)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME braxcfg)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "braxcfg maintainers <braxcfg@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "configuration plug-in and tool for VISA instrument I/O interfaces")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
# The libraries' packages (Qt, SQLite, the C++ runtime) from what the
# binaries link, through dpkg-shlibdeps (dpkg-dev).
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS OFF)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS bash-completion)
# The package carries no debug information: it is for users.
set(CPACK_STRIP_FILES ON)
include(CPack)
