# The Debian package of the programs, the palettes, the demo file, the desktop entry, the icons and
# the MIME type: `cpack -G DEB` in the build folder, or the `package` target. Besides them: the
# manual pages, the bash completion of vossel-cli, the AppStream description and the files Debian
# wants in /usr/share/doc.
set(VOSSEL_PACKAGE_MAINTAINER "Vossel developers <vossel@example.org>"
    CACHE STRING "Maintainer field of the Debian package, and signer of its changelog")
set(VOSSEL_APP_ID org.vossel.Vossel)
set(VOSSEL_PACKAGE_FILES ${CMAKE_BINARY_DIR}/package)

# Manual pages and the changelog compressed as Debian wants them: gzip -9, no name or time inside.
configure_file(${CMAKE_SOURCE_DIR}/data/changelog.in ${VOSSEL_PACKAGE_FILES}/changelog @ONLY)
set(VOSSEL_GZIPPED)
foreach(source IN ITEMS ${CMAKE_SOURCE_DIR}/man/vossel.1 ${CMAKE_SOURCE_DIR}/man/vossel-cli.1
                        ${VOSSEL_PACKAGE_FILES}/changelog)
  get_filename_component(name ${source} NAME)
  set(gzipped ${VOSSEL_PACKAGE_FILES}/${name}.gz)
  add_custom_command(OUTPUT ${gzipped}
                     COMMAND gzip -9nc ${source} > ${gzipped}
                     DEPENDS ${source}
                     VERBATIM)
  list(APPEND VOSSEL_GZIPPED ${gzipped})
endforeach()
add_custom_target(vossel_package_files ALL DEPENDS ${VOSSEL_GZIPPED})

install(FILES ${VOSSEL_PACKAGE_FILES}/vossel.1.gz ${VOSSEL_PACKAGE_FILES}/vossel-cli.1.gz
        DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${CMAKE_SOURCE_DIR}/data/vossel-cli.bash
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME vossel-cli)
install(FILES ${CMAKE_SOURCE_DIR}/data/${VOSSEL_APP_ID}.metainfo.xml
        DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${CMAKE_SOURCE_DIR}/data/copyright ${VOSSEL_PACKAGE_FILES}/changelog.gz
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/vossel)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vossel)
set(CPACK_PACKAGE_CONTACT "${VOSSEL_PACKAGE_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "viewer for the sprites of Transport Tycoon GRF files")
set(CPACK_PACKAGE_DESCRIPTION "Vossel opens a GRF file, the sprite collection of Transport Tycoon Deluxe,
TTDPatch and OpenTTD, in either container version, and shows its sprites one
at a time through the game's palettes and company colours, with a sortable
list of all sprites, a sprite sheet, what each pseudo-sprite's action does and
a chunk viewer.
vossel-cli prints the same facts, writes sprites and sheets as PNG files and
exports a whole file as pictures and an NFO listing.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
# The libraries the programs link, found by dpkg-shlibdeps.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The window's faces: Tahoma stands in as DejaVu Sans Condensed.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS fonts-dejavu-extra)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "openttd-data, openttd-opengfx")
include(CPack)
