# What a user installs: a ZIP for Windows, a .deb for Debian 12.
#   cmake --build --preset windows-x86 && (cd build/windows-x86 && cpack)
set(CPACK_PACKAGE_NAME tx-setup-wizard)
set(CPACK_PACKAGE_VENDOR TavixStudio)
set(CPACK_PACKAGE_CONTACT "TavixStudio <setup-wizard@tavixstudio.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Packs TavixStudio projects into installation disks for Windows")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)

# The conditions of what is linked into the programs, by the name that each has there.
set(licences
    CLI11=/usr/share/doc/libcli11-dev/copyright
    nlohmann-json=/usr/share/doc/nlohmann-json3-dev/copyright)

if(WIN32)
  if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    set(machine x64)
  else()
    set(machine x86)
  endif()
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME TXSetupWizard-${PROJECT_VERSION}-windows-${machine})
  install(TARGETS TXSetupWizard TXSetupTool RUNTIME DESTINATION .)
  # As the editors of Windows want them.
  foreach(text README.txt LIESMICH.txt)
    configure_file(resources/package/${text}.in ${PROJECT_BINARY_DIR}/package/${text} @ONLY
                   NEWLINE_STYLE CRLF)
    install(FILES ${PROJECT_BINARY_DIR}/package/${text} DESTINATION .)
  endforeach()
  list(APPEND licences
       libdeflate=${TXS_WINDOWS_LIBRARIES}/libdeflate/share/copyright
       zlib=/usr/share/doc/libz-mingw-w64-dev/copyright
       mingw-w64=/usr/share/doc/mingw-w64-common/copyright
       gcc-runtime=/usr/share/doc/gcc-mingw-w64-base/copyright)
  if(TXS_WITH_UI)
    list(APPEND licences wxWidgets=${TXS_WINDOWS_LIBRARIES}/wxwidgets/share/copyright)
  endif()
  set(licence_folder licences)
else()
  set(CPACK_GENERATOR DEB)
  set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_SECTION devel)
  set(program_folder lib/tx-setup-wizard)
  install(TARGETS TXSetupWizard TXSetupTool RUNTIME DESTINATION ${program_folder})
  if(TARGET txs_windows)
    # Beside the program, where it looks for it.
    install(TARGETS txs_windows LIBRARY DESTINATION ${program_folder})
    install(FILES resources/package/tx-setup-wizard.desktop DESTINATION share/applications)
  endif()
  install(CODE "
    set(bin \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/bin\")
    file(MAKE_DIRECTORY \"\${bin}\")
    foreach(program TXSetupWizard TXSetupTool)
      file(CREATE_LINK \"../${program_folder}/\${program}\" \"\${bin}/\${program}\" SYMBOLIC)
    endforeach()")
  set(licence_folder share/doc/tx-setup-wizard/licences)
  install(FILES README.md DESTINATION share/doc/tx-setup-wizard)
endif()

foreach(licence ${licences})
  string(REGEX MATCH "^([^=]+)=(.+)$" licence ${licence})
  set(name ${CMAKE_MATCH_1})
  install(FILES ${CMAKE_MATCH_2} DESTINATION ${licence_folder} RENAME ${name}.txt)
endforeach()

include(CPack)
