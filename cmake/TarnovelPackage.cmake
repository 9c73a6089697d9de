# The Debian package, made by ./package from what `cmake --install` puts in place.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
  WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_NAME tarnovel)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${TARNOVEL_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Every frame is set in these families; a missing one would change the picture.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "fonts-comic-neue, fonts-inter, fonts-jetbrains-mono, fonts-lxgw-wenkai, \
fonts-noto-cjk, fonts-noto-color-emoji, fonts-noto-core, fonts-quicksand")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-gtk-platformtheme, qt6-translations-l10n, qt6-wayland, \
qt6-xdgdesktopportal-platformtheme")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "consistent frames for a set of photos")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "Tarnovel gives a set of photos one consistent frame and exports the set:
canvas, whitespace, backdrop, border, instant, film or cinema look, camera
texts, logo and signature. It also makes collages, and draws signatures by
hand.
.
The same binary works on the command line without a display. Everything
happens on the user's own machine; exported files carry no metadata.")
include(CPack)
