# "cmake --install": the program with its documents, examples and completion. For Windows everything
# goes into one folder, elsewhere into the usual places below the prefix.
include(GNUInstallDirs)
if(WIN32)
  set(quillon_program_folder .)
  set(quillon_documents_folder .)
  install(FILES completion/quillon.ps1 DESTINATION completion)
else()
  set(quillon_program_folder ${CMAKE_INSTALL_BINDIR})
  set(quillon_documents_folder ${CMAKE_INSTALL_DOCDIR})
  install(FILES completion/quillon.bash RENAME quillon
          DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
  add_custom_command(OUTPUT quillon.1 COMMAND quillon -help=man >quillon.1 DEPENDS quillon)
  add_custom_target(manual_page ALL DEPENDS quillon.1)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/quillon.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endif()
install(TARGETS quillon RUNTIME DESTINATION ${quillon_program_folder})
install(FILES README.md CHANGELOG.md DESTINATION ${quillon_documents_folder})
install(FILES bench/README.md DESTINATION ${quillon_documents_folder}/bench)
install(DIRECTORY docs examples DESTINATION ${quillon_documents_folder}
        PATTERN .gitignore EXCLUDE PATTERN data.db EXCLUDE)
