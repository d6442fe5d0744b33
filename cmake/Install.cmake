# Installation files beside the programs in the build tree, `cmake --install` into a
# prefix, and the Debian package.
#
# Layout under the prefix (AnalyzerBinaryDir() relies on bin/ and share/ standing side by
# side, so these two are not taken from GNUInstallDirs, whose values may be changed):
#   bin/zdt-analyzer, bin/zdt-cli
#   share/zdt-analyzer/Analyzer/          the installation files (help, sheets, scripts, filters)
#   share/applications/, share/mime/packages/, share/icons/hicolor/   desktop integration
#   share/man/man1/zdt-cli.1.gz

set(ZDT_INSTALL_BINDIR bin)
set(ZDT_INSTALL_ANALYZERDIR share/zdt-analyzer/Analyzer)
set(ZDT_PACKAGING_DIR ${PROJECT_SOURCE_DIR}/packaging)

# Both programs find Analyzer/ beside themselves in the build tree. A target of its own,
# so that the command-line tool has the files without the desktop, and so that an edited
# sheet reaches the build tree without a relink.
add_custom_target(zdt_analyzer_files ALL
    COMMAND ${CMAKE_COMMAND} -E copy_directory ${PROJECT_SOURCE_DIR}/Analyzer ${CMAKE_BINARY_DIR}/Analyzer
    COMMENT "Copying the installation files beside the programs")
add_dependencies(zdt-cli zdt_analyzer_files)
if(TARGET zdt-analyzer)
    add_dependencies(zdt-analyzer zdt_analyzer_files)
endif()

install(TARGETS zdt-cli RUNTIME DESTINATION ${ZDT_INSTALL_BINDIR})
# Modes are set rather than copied, so a checkout made under another umask still gives
# the package its usual modes; the conversion scripts stay executable. Temp/ is made at run
# time (in a build tree it may stand in a copied folder) and never belongs to a package.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/Analyzer/ DESTINATION ${ZDT_INSTALL_ANALYZERDIR}
        FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ
        DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE
        PATTERN Temp EXCLUDE
        PATTERN *.sh PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

# Debian wants compressed manual pages; man reads both forms.
find_program(ZDT_GZIP gzip)
if(ZDT_GZIP)
    set(ZDT_MAN_PAGE ${CMAKE_BINARY_DIR}/packaging/zdt-cli.1.gz)
    add_custom_command(OUTPUT ${ZDT_MAN_PAGE}
        COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/packaging
        COMMAND ${ZDT_GZIP} -9 -n -c ${ZDT_PACKAGING_DIR}/zdt-cli.1 > ${ZDT_MAN_PAGE}
        DEPENDS ${ZDT_PACKAGING_DIR}/zdt-cli.1
        COMMENT "Compressing the manual page of zdt-cli")
    add_custom_target(zdt_man_page ALL DEPENDS ${ZDT_MAN_PAGE})
else()
    set(ZDT_MAN_PAGE ${ZDT_PACKAGING_DIR}/zdt-cli.1)
endif()
install(FILES ${ZDT_MAN_PAGE} DESTINATION share/man/man1)

if(TARGET zdt-analyzer)
    install(TARGETS zdt-analyzer RUNTIME DESTINATION ${ZDT_INSTALL_BINDIR})
    install(FILES ${ZDT_PACKAGING_DIR}/zdt-analyzer.desktop DESTINATION share/applications)
    install(FILES ${ZDT_PACKAGING_DIR}/zdt-analyzer.xml DESTINATION share/mime/packages)
    install(FILES ${ZDT_PACKAGING_DIR}/zdt-analyzer.svg DESTINATION share/icons/hicolor/scalable/apps)
endif()

# cpack -G DEB: zdt-analyzer_<version>_<arch>.deb, installed under /usr.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zdt-analyzer)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "ZDT-Analyzer developers")
set(CPACK_PACKAGE_CONTACT "ZDT-Analyzer developers <zdt-analyzer@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "viewer and analyser for vehicle-diagnostic communication traces")
string(CONCAT CPACK_PACKAGE_DESCRIPTION
    "ZDT-Analyzer reads classic text traces (.trc .trc1 .trc2 .crc .tr0 .trX),\n"
    "snapshot files (.snp) and process value traces (.xpvt) as long lists of\n"
    "rows: it shows, searches, bookmarks, filters, exports and prints them.\n"
    "The package holds the desktop program zdt-analyzer and the command-line\n"
    "tool zdt-cli.")
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
# The Qt and Expat libraries (and the C++ runtime) as dpkg-shlibdeps reads them from the
# binaries, so the versions are those the package was built against.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
find_program(ZDT_DPKG_SHLIBDEPS dpkg-shlibdeps)
if(NOT ZDT_DPKG_SHLIBDEPS)
    message(STATUS "dpkg-shlibdeps not found: cpack -G DEB needs the package dpkg-dev")
endif()
# The XQuery engine (Saxon-HE on a Java runtime), Xalan-C and FOP are the tools behind
# filters and exports. The rest lets a desktop open traces by double-click:
# xdg-open reads the MIME database through mimetype (libfile-mimeinfo-perl), and the
# triggers of shared-mime-info and desktop-file-utils register the types and the entry.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
    "libsaxonhe-java, default-jre-headless, xalan, fop, shared-mime-info, desktop-file-utils, xdg-utils, libfile-mimeinfo-perl, hicolor-icon-theme")
include(CPack)
