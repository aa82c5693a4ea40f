# The Debian package of the programs, the palettes, the demo file, the desktop entry, the icons and
# the MIME type: `cpack -G DEB` in the build folder, or the `package` target.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vossel)
set(CPACK_PACKAGE_CONTACT "Vossel maintainers <vossel@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "viewer for the sprites of Transport Tycoon GRF files")
set(CPACK_PACKAGE_DESCRIPTION "Vossel opens a GRF file, the sprite collection of Transport Tycoon Deluxe
and TTDPatch, decodes every sprite and shows them one at a time through the
game's palettes, with a sortable list of all sprites and a chunk viewer.
vossel-cli prints the same facts and exports every sprite as a PNG file.")
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
