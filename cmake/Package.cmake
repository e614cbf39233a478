# The Debian package, made by `cpack` in the build folder or by `./dev package`. cmake/PackageRoot.cmake, which runs when
# all is staged, adds what only a package has.
if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr" OR NOT ORRINVALE_GUI OR NOT CMARK_GFM OR NOT LRELEASE)
  return()  # the programs know the places of each other, and a package is never half
endif()
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME orrinvale)
set(CPACK_PACKAGE_VENDOR Kelpford)
set(CPACK_PACKAGE_CONTACT "Orrinvale maintainers <maintainers@users.noreply.c-seed-0e71f8e9.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "find what fills a disk, and free the space")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Orrinvale is for people whose disks are full. It finds files that are there
twice, shows what is large and what fills a disk, cleans caches, logs and
trash, uninstalls applications, and keeps the volumes in the tray, on folders
of any size and depth. It removes what you tick and nothing else.

This package has the window program, the terminal command orrinvale-cli for
scripts and servers, and the helper that removes protected files after an
administrator was asked.")
set(CPACK_PACKAGE_HOMEPAGE_URL "https://www.kelpford.com/")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_VERBATIM_VARIABLES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS libsystemd0)  # loaded when it is first wanted, which nobody sees from outside
# Packages are removed by the system's service, signatures looked at and AppImages read by libraries that are loaded when they
# are wanted; what is opened elsewhere goes through xdg-open.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
  "default-dbus-session-bus | dbus-session-bus, fonts-inter, liblzma5, libssl3, libzstd1, packagekit, pkexec, polkitd, qt6-wayland, udisks2, xdg-utils, zlib1g")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "adwaita-icon-theme, gvfs, liblz4-1, qt6-translations-l10n")

set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/PackageRoot.cmake)
set(CPACK_ORRINVALE_SOURCE ${PROJECT_SOURCE_DIR})
set(CPACK_ORRINVALE_STRIP ${CMAKE_STRIP})
set(CPACK_ORRINVALE_DATE ${ORRINVALE_RELEASE_DATE})
include(CPack)
set(ORRINVALE_PACKAGE ON)
