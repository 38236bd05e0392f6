# The Debian package: "cpack -G DEB" in the build folder, or scripts/package.
# It holds everything that installs (the program, the plug-in, the SDK, the
# translations, the man page and the completion) under /usr.
set(CPACK_PACKAGE_NAME asciiexport)
set(CPACK_PACKAGE_VENDOR "asciiexporter developers")
set(CPACK_PACKAGE_CONTACT "asciiexporter developers <asciiexporter@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Exports motion-tracker recordings as delimited text")
set(CPACK_PACKAGE_DESCRIPTION
    "asciiexport loads the ASCII exporter plug-in and exports recordings (JSON Lines, and u-blox UBX receiver logs) as delimited text files, one after another or several at a time; it edits the plug-in's settings in the host's settings dialog and writes synthetic recordings. The package also holds the plug-in framework and type libraries with their headers, CMake package and pkg-config file, for building further exporter plug-ins.")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
# Qt's own texts (of the command-line parser, say) in the user's language.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS qttranslations5-l10n)
# dpkg-shlibdeps works out the Qt and C++ libraries the binaries need; the
# package's own libraries it finds in the package itself.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_INSTALL_LIBDIR})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)

include(CPack)
