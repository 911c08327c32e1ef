# The Debian package (./scripts/package): everything `cmake --install`
# installs, with the dependencies that dpkg-shlibdeps computes.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME dbn-node-editor)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "The dbn-node-editor developers <maintainers@dbnedit.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "editor of the dial-by-name nodes of a call flow")
set(CPACK_PACKAGE_DESCRIPTION
  "The configuration-time editor of the dial-by-name nodes of a telephone\n\
answering system's call flow: a node list, the node editor window, a script\n\
player, and the editor as a C library for other hosts.")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The library's shlibs entry and the ldconfig trigger, as Debian policy asks.
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
  ${PROJECT_SOURCE_DIR}/data/debian/shlibs ${PROJECT_SOURCE_DIR}/data/debian/triggers)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/package)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
include(CPack)
