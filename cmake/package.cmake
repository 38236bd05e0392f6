# The Debian packages: "cpack -G DEB" in the build folder, or scripts/package.
#   asciiexport      the install component runtime: the program, the plug-in,
#                    the framework and type libraries, the translations, the
#                    man page, the completion, and the documentation (a
#                    sample recording and the recording format);
#   asciiexport-dev  the component dev: the SDK's headers, CMake package and
#                    pkg-config file, the libraries' links for the linker,
#                    and an example plug-in's source.
# Both carry the copyright file and the changelog that Debian asks for. The
# files for Debian's tools (copyright, changelog, trigger, lintian's
# overrides) lie in cmake/debian; the changelog's newest entry carries the
# project's version, a new version a new entry (the test debianpackage
# checks it).
set(DEBIAN_FILES_DIR ${CMAKE_CURRENT_LIST_DIR}/debian)
set(RUNTIME_DOC_DIR ${CMAKE_INSTALL_DATAROOTDIR}/doc/asciiexport)
set(DEV_DOC_DIR ${CMAKE_INSTALL_DATAROOTDIR}/doc/asciiexport-dev)

# Debian wants the changelog of a package without a Debian revision as
# changelog.gz, compressed at the highest level and without a time stamp.
add_custom_command(OUTPUT ${CMAKE_BINARY_DIR}/changelog.gz
    COMMAND gzip -9 -n -c ${DEBIAN_FILES_DIR}/changelog > ${CMAKE_BINARY_DIR}/changelog.gz
    DEPENDS ${DEBIAN_FILES_DIR}/changelog)
add_custom_target(changelog ALL DEPENDS ${CMAKE_BINARY_DIR}/changelog.gz)

install(FILES ${DEBIAN_FILES_DIR}/copyright ${CMAKE_BINARY_DIR}/changelog.gz
    DESTINATION ${RUNTIME_DOC_DIR} COMPONENT runtime)
# The sample recording: the walk's first second (its first line and 100
# samples) holds every kind of data in a hundredth of the walk's size.
add_custom_command(OUTPUT ${CMAKE_BINARY_DIR}/walk-1s.jsonl
    COMMAND head -n 101 ${PROJECT_SOURCE_DIR}/examples/walk.jsonl > ${CMAKE_BINARY_DIR}/walk-1s.jsonl
    DEPENDS ${PROJECT_SOURCE_DIR}/examples/walk.jsonl)
add_custom_target(samplerecording ALL DEPENDS ${CMAKE_BINARY_DIR}/walk-1s.jsonl)
install(FILES ${PROJECT_SOURCE_DIR}/docs/recording-format.md DESTINATION ${RUNTIME_DOC_DIR} COMPONENT runtime)
install(FILES ${CMAKE_BINARY_DIR}/walk-1s.jsonl DESTINATION ${RUNTIME_DOC_DIR}/examples COMPONENT runtime)
# lintian's overrides go into the package only (cpack installs component by
# component), not into a tree installed with cmake --install.
install(FILES ${DEBIAN_FILES_DIR}/asciiexport.lintian-overrides
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/lintian/overrides RENAME asciiexport
    COMPONENT runtime EXCLUDE_FROM_ALL)

install(FILES ${DEBIAN_FILES_DIR}/copyright ${CMAKE_BINARY_DIR}/changelog.gz
    DESTINATION ${DEV_DOC_DIR} COMPONENT dev)
# The plug-in that the tests build against the installed SDK, as a starting
# point for one's own.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/tests/sdk/countexporter
    DESTINATION ${DEV_DOC_DIR}/examples COMPONENT dev)

set(CPACK_PACKAGE_NAME asciiexport)
set(CPACK_PACKAGE_VENDOR "asciiexporter developers")
set(CPACK_PACKAGE_CONTACT "asciiexporter developers <asciiexporter@example.org>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime dev)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# Control files (the trigger) readable by all, as dpkg installs them.
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME asciiexport)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION science)
# A description's lines are at most 79 characters wide; an empty line is a
# paragraph break.
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION
    "Exports motion-tracker recordings as delimited text
asciiexport loads the ASCII exporter plug-in and exports recordings (JSON
Lines, u-blox UBX receiver logs and PX4 flight logs) as delimited text
files, one after another or several at a time. It edits the plug-in's
settings in a settings dialog and writes synthetic recordings.

The package also holds the plug-in framework and type libraries that
exporter plug-ins are loaded with, and a sample recording with a
description of the recording format.")
# Qt's own texts (of the command-line parser, say) in the user's language.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS qttranslations5-l10n)
# dpkg-shlibdeps works out the Qt and C++ libraries the binaries need; the
# package's own libraries it finds in the package itself.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_INSTALL_LIBDIR})
# The shlibs file lets other packages' binaries depend on the libraries;
# the binary interface changes with the major version only, so a binary
# built against this version runs with any later one of the same soname.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
# The libraries lie in the dynamic loader's folder: its cache is renewed
# through libc's trigger.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${DEBIAN_FILES_DIR}/triggers)

set(CPACK_DEBIAN_DEV_PACKAGE_NAME asciiexport-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_DESCRIPTION
    "SDK for exporter plug-ins of asciiexport
The headers, CMake package (AsciiExportSdk) and pkg-config file
(asciiexport-sdk) of the plug-in framework and type libraries, for building
exporter plug-ins that asciiexport loads, with the source of an example
plug-in.")
# The exact version of the libraries the headers describe, and Qt's headers
# and CMake packages that the SDK's own include and look for.
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_COMPONENT_DEV_DEPENDS runtime)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "qtbase5-dev (>= 5.15)")

include(CPack)
