# The Debian package, which `make package` writes to build/.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME swiftgate)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "Swift Gate developers")
set(CPACK_PACKAGE_CONTACT "Swift Gate developers <swiftgate@quillon.invalid>" CACHE STRING
    "The maintainer of the package")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "AutoLISP programs for building services, without a CAD seat")
set(CPACK_PACKAGE_DESCRIPTION
"Swift Gate runs the AutoLISP programs of building-services drafting on a
workstation, in a batch or in CI. It holds an AutoLISP interpreter, a drawing
database that reads and writes DWG and DXF files, an engine for .mdb databases
with their SQL, a modeller for duct and tray solids, and dialogs that a person
or a script answers.
.
One program, swiftgate, runs programs, shows and converts drawings, makes
pictures of them, and asks, fills and checks databases.")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_SOURCE_DIR}/build)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_BINARY_DIR}/lib)
# Certificates for mail and downloads, and the program that opens pages and folders.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "ca-certificates, xdg-utils")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "bash-completion")
include(CPack)
