# Two Debian packages: `glintar` for terminals and text bars, without a graphical library, and `glintar-desktop`.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/packages)
set(CPACK_PACKAGE_NAME glintar)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "${GLINTAR_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_COMPONENTS_ALL terminal desktop)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "${GLINTAR_WEBSITE}")

set(CPACK_DEBIAN_TERMINAL_PACKAGE_NAME glintar)
set(CPACK_DEBIAN_TERMINAL_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TERMINAL_PACKAGE_RECOMMENDS ca-certificates)
set(CPACK_DEBIAN_TERMINAL_PACKAGE_SUGGESTS glintar-desktop)
set(CPACK_DEBIAN_TERMINAL_DESCRIPTION "live crypto prices in a terminal or a text bar
Glintar shows the prices of up to five coins: price, your own reference
price, change, high, low and a sparkline, and the network fee of Bitcoin or
Ethereum. Fourteen market-data services are built in. None needs an account.
.
This package prints them in a terminal and for text bars.")

set(CPACK_DEBIAN_DESKTOP_PACKAGE_NAME glintar-desktop)
set(CPACK_DEBIAN_DESKTOP_PACKAGE_SECTION x11)
set(CPACK_DEBIAN_DESKTOP_PACKAGE_DEPENDS "glintar (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DESKTOP_PACKAGE_RECOMMENDS "qt6-image-formats-plugins")
set(CPACK_DEBIAN_DESKTOP_DESCRIPTION "live crypto prices in the status bar of the desktop
Glintar shows the prices of up to five coins: price, your own reference
price, change, high, low and a sparkline, and the network fee of Bitcoin or
Ethereum. Fourteen market-data services are built in. None needs an account.
.
This package shows them in a strip in a corner of the screen or in a panel
that follows the mouse pointer.")

# cpack takes the dates of what it packs from this variable too.
if(DEFINED ENV{SOURCE_DATE_EPOCH})
    file(WRITE ${CMAKE_BINARY_DIR}/CPackDates.cmake "set(ENV{SOURCE_DATE_EPOCH} $ENV{SOURCE_DATE_EPOCH})\n")
    set(CPACK_PROJECT_CONFIG_FILE ${CMAKE_BINARY_DIR}/CPackDates.cmake)
endif()
include(CPack)
