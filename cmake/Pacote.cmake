# Installation (cmake --install) and the Debian package (cpack -G DEB):
#   bin/lumavox, bin/lumavox-cli
#   share/applications/lumavox.desktop, share/icons/hicolor/{scalable,48x48}/apps/lumavox.{svg,png}
#   lib/systemd/system/lumavox@.service, lumavox-ar@.service
#   share/lumavox/lumavox.liq, lumavox-ar.liq (the player's Liquidsoap scripts)
#   share/doc/lumavox/: README.md and docs/ (with the example records)
include(GNUInstallDirs)

set(LUMAVOX_PROGRAMAS lumavox-cli)
if(TARGET lumavox)
  list(APPEND LUMAVOX_PROGRAMAS lumavox)
endif()
install(TARGETS ${LUMAVOX_PROGRAMAS} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

set(PACOTE_DIR ${PROJECT_SOURCE_DIR}/packaging)
if(TARGET lumavox)
  install(FILES ${PACOTE_DIR}/lumavox.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  install(FILES ${PACOTE_DIR}/lumavox.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
  install(FILES ${PACOTE_DIR}/lumavox-48.png DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/48x48/apps
          RENAME lumavox.png)
endif()
install(FILES ${PACOTE_DIR}/lumavox@.service ${PACOTE_DIR}/lumavox-ar@.service DESTINATION lib/systemd/system)
install(FILES ${PACOTE_DIR}/lumavox.liq ${PACOTE_DIR}/lumavox-ar.liq DESTINATION ${CMAKE_INSTALL_DATADIR}/lumavox)
install(FILES ${PROJECT_SOURCE_DIR}/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}
        FILES_MATCHING PATTERN "*.md" PATTERN "*.png" PATTERN "*.rdb")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME lumavox)
set(CPACK_PACKAGE_VENDOR "Lumavox")
set(CPACK_PACKAGE_CONTACT "Lumavox <lumavox@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "song-selection engine of a radio station's music automation")
string(CONCAT CPACK_PACKAGE_DESCRIPTION
    "Chooses the next song from the station's collection through the station's scheduling rules "
    "and hands it to the player through files in the station folder. lumavox is the engine with "
    "its window, lumavox-cli the engine and its station tools without one; lumavox@.service keeps "
    "the engine running for a station folder, and lumavox-ar@.service plays its queue to Icecast "
    "through Liquidsoap.")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/pacote)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# The libraries the programs link come from dpkg-shlibdeps; Qt loads its platform plugin at run
# time, which no link shows.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# adduser makes the service's user in postinst.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "adduser")
if(TARGET lumavox)
  set(CPACK_DEBIAN_PACKAGE_DEPENDS "adduser, qt6-qpa-plugins")
endif()
# The player on air (lumavox-cli ar, lumavox-ar@.service) runs Liquidsoap; the engine alone does not.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "liquidsoap")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "icecast2")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
    ${PACOTE_DIR}/postinst ${PACOTE_DIR}/postrm)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
