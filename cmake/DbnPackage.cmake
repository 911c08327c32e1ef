# The Debian packages (./scripts/package), split as Debian splits a program
# with a public library: the program and its data (dbn-node-editor), the
# shared library (libcvl-dbn-node1, named after its soname) and its
# development files (libcvl-dbn-node-dev). One install component each;
# dpkg-shlibdeps computes what each needs from the system.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME dbn-node-editor)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "The dbn-node-editor developers <maintainers@dbnedit.org>")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/package)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL program library dev)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(library_package "libcvl-dbn-node${PROJECT_VERSION_MAJOR}")
set(library_exact "${library_package} (= ${PROJECT_VERSION})")

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME dbn-node-editor)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_DEPENDS "${library_exact}")
set(CPACK_COMPONENT_PROGRAM_DESCRIPTION "editor of the dial-by-name nodes of a call flow
The configuration-time editor of the dial-by-name nodes of a telephone
answering system's call flow: a node list, the node editor window and a
script player.")

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME ${library_package})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
# The library's shlibs entry, and ldconfig run through a trigger rather than
# from maintainer scripts.
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA
  ${PROJECT_SOURCE_DIR}/data/debian/shlibs ${PROJECT_SOURCE_DIR}/data/debian/triggers)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "dial-by-name node editor as a C library
The node editor of the dial-by-name nodes of a telephone answering system's
call flow, with a C entry point for other hosts.")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME libcvl-dbn-node-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "${library_exact}")
set(CPACK_COMPONENT_DEV_DESCRIPTION "dial-by-name node editor as a C library - development files
The C header, the development link and the pkg-config file of the node
editor library of a telephone answering system's call flow.")
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/DbnPackageNoLdconfig.cmake)
include(CPack)
