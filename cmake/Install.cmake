# What a lab installs: cmake --install, and the Debian package of scripts/package.sh.
include(GNUInstallDirs)
set(CMAKE_INSTALL_DOCDIR ${CMAKE_INSTALL_DATAROOTDIR}/doc/hylden)

set(programs hylden hylden-run)
if(TARGET hylden-bench)
  list(APPEND programs hylden-bench)
endif()
install(TARGETS ${programs} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

# Found beside the folder of the executables, wherever that is: platform/native/ProgramDirectory.
set(shared ${CMAKE_INSTALL_DATAROOTDIR}/hylden)
install(FILES help/hylden.md DESTINATION ${shared} RENAME hylden.hlp)
install(DIRECTORY examples/station examples/templates DESTINATION ${shared})

install(FILES packaging/hylden.desktop DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/applications)
install(FILES packaging/hylden-mime.xml DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/mime/packages RENAME hylden.xml)
install(FILES packaging/hylden.svg DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/icons/hicolor/scalable/apps)
install(FILES packaging/org.hylden.Hylden.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/metainfo)
foreach(program ${programs})
  install(FILES packaging/completion DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/bash-completion/completions RENAME ${program})
endforeach()
install(FILES packaging/copyright README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs/formats docs/pictures docs/reports DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs)

# Manual pages are what the programs say of themselves; help2man makes them when the package is built.
find_program(HELP2MAN help2man)
if(HELP2MAN)
  foreach(program ${programs})
    set(page ${PROJECT_BINARY_DIR}/man/${program}.1)
    add_custom_command(OUTPUT ${page}
      COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/man
      COMMAND ${HELP2MAN} --no-info --section 1 --name "conducted RF immunity testing" --output ${page}
        --include ${PROJECT_SOURCE_DIR}/packaging/manual.h2m $<TARGET_FILE:${program}>
      DEPENDS ${program} ${PROJECT_SOURCE_DIR}/packaging/manual.h2m VERBATIM)
    list(APPEND pages ${page})
  endforeach()
  find_program(GZIP gzip REQUIRED)
  set(changes ${PROJECT_BINARY_DIR}/man/changelog.gz)
  add_custom_command(OUTPUT ${changes} COMMAND ${GZIP} -9nc ${PROJECT_SOURCE_DIR}/CHANGELOG.md > ${changes}
    DEPENDS CHANGELOG.md ${pages})
  foreach(page ${pages})
    add_custom_command(OUTPUT ${page}.gz COMMAND ${GZIP} -9nkf ${page} DEPENDS ${page})
    list(APPEND packed ${page}.gz)
  endforeach()
  add_custom_target(manuals DEPENDS ${packed} ${changes})
  install(FILES ${packed} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 OPTIONAL)
  install(FILES ${changes} DESTINATION ${CMAKE_INSTALL_DOCDIR} OPTIONAL)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME hylden)
set(CPACK_PACKAGE_VENDOR "The Hylden developers")
set(CPACK_PACKAGE_CONTACT "The Hylden developers <maintainers@hylden.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "conducted RF immunity testing for an EMC lab")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "Hylden drives a signal generator, an RF amplifier, a power
meter and a measuring meter. It finds, frequency by frequency, the generator level that
gives the wanted test level at a coupling device, and replays it onto a
product with modulation and dwell, while the operator marks thresholds.
.
A simulated bench stands for the whole station, so that everything can be
tried without an instrument.")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_INSTALL_DIRECTORY hylden)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The board's library is found at run time; the bench, an adapter and a LAN need none.
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "libgpib0")
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
  WORLD_READ WORLD_EXECUTE)
include(CPack)
