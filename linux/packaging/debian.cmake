# The Debian package: `cmake --build BUILD --target package`, or after a build `cpack -G DEB` in BUILD.
set(debian ${CMAKE_CURRENT_SOURCE_DIR}/debian)
set(changelog ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz)
execute_process(COMMAND ${GZIP} -9nc ${debian}/changelog
  OUTPUT_FILE ${changelog} COMMAND_ERROR_IS_FATAL ANY)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${debian}/changelog)

# dpkg asks before it replaces what somebody has changed there.
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/conffiles "/etc/xdg/autostart/corvana-proxy-reset.desktop\n")
configure_file(${debian}/prerm.in ${CMAKE_CURRENT_BINARY_DIR}/prerm @ONLY)

install(FILES ${changelog} ${debian}/copyright
  DESTINATION share/doc/corvana COMPONENT debian EXCLUDE_FROM_ALL)
install(FILES ${debian}/lintian-overrides RENAME corvana
  DESTINATION share/lintian/overrides COMPONENT debian EXCLUDE_FROM_ALL)

set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME corvana)
set(CPACK_PACKAGE_CONTACT "Corvana Maintainers <maintainers@corvana.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "VPN client that runs a proxy core and sets the desktop's proxy")
set(CPACK_PACKAGE_DESCRIPTION
"Corvana starts and stops a proxy core and points the system proxy of GNOME,
KDE, Xfce and their relatives at it. The proxy is taken back on a disconnect,
when the program ends, and, after a crash, at the next login or start.
.
The core itself is not part of this package: put one into place with
\"${CORVANA_INSTALLED_BUNDLE}/install.sh --core FILE --prefix ${CORVANA_INSTALLED_BUNDLE}\".")
set(CPACK_STRIP_FILES ON)
# The bundle has a folder of its own. Everything else goes to /usr, and the autostart entry to /etc.
set(CPACK_PACKAGING_INSTALL_PREFIX /)
set(CPACK_INSTALL_CMAKE_PROJECTS
  ${CMAKE_BINARY_DIR} ${PROJECT_NAME} bundle ${CORVANA_INSTALLED_BUNDLE}
  ${CMAKE_BINARY_DIR} ${PROJECT_NAME} system /usr
  ${CMAKE_BINARY_DIR} ${PROJECT_NAME} configuration /etc
  ${CMAKE_BINARY_DIR} ${PROJECT_NAME} debian /usr)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
  ${CMAKE_CURRENT_BINARY_DIR}/conffiles ${CMAKE_CURRENT_BINARY_DIR}/prerm)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# The libraries come from what the program is linked with. Here are pkill, which ends the core, and ps,
# which names the desktop.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CORVANA_BUNDLE_DIR}/lib)
set(CPACK_DEBIAN_PACKAGE_DEPENDS procps)
# What most desktops have: the proxy of GNOME and its relatives, the refresh of menus and icons, and
# for the looks icons and Chinese glyphs.
string(JOIN ", " CPACK_DEBIAN_PACKAGE_RECOMMENDS
  libglib2.0-bin gsettings-desktop-schemas dconf-gsettings-backend
  desktop-file-utils gtk-update-icon-cache xdg-utils
  adwaita-icon-theme librsvg2-common "fonts-noto-cjk | fonts-wqy-microhei | fonts-wqy-zenhei")
# What one desktop alone has, and brings along: KDE's proxy, its signal and its menu refresh, and Xfce's
# proxy.
string(JOIN ", " CPACK_DEBIAN_PACKAGE_SUGGESTS dbus-bin "libkf6config-bin | libkf5config-bin" libkf5service-bin xfconf)
include(CPack)
