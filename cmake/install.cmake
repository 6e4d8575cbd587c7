# `cmake --install` and, for a .deb, `cpack` install files in these places. Vim searches share/vim/vimfiles in its own
# prefix (/usr on Debian, Fedora and Arch). No other editor has a folder shared by all its users: files for other
# editors are in share/korv, and the manual explains how to use them. The doc folder contains the manual and example
# programs.
include(GNUInstallDirs)
install(TARGETS korv)
install(FILES docs/man1/korv.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
if(TARGET korv-as)
  install(TARGETS korv-as korv-ls)
  install(FILES docs/man1/korv-as.1 docs/man1/korv-ls.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  # The folders that the shells search for completions; for Debian's zsh, see debian.cmake.
  set(completions ${CMAKE_SOURCE_DIR}/editors/completions)
  install(FILES ${completions}/korv-as.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
          RENAME korv-as)
  install(FILES ${completions}/_korv-as DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
  install(FILES ${completions}/korv-as.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
endif()
install(FILES LICENSE CHANGELOG.md docs/manual.md docs/editor.svg DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} FILES_MATCHING PATTERN *.kor)
install(DIRECTORY editors/vim/ DESTINATION ${CMAKE_INSTALL_DATADIR}/vim/vimfiles)
install(DIRECTORY editors/vscode editors/github DESTINATION ${CMAKE_INSTALL_DATADIR}/korv)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME korv)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "cross-assembler for the Z80")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
                                                WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "the Korv maintainers <maintainers@korv.invalid>" CACHE STRING
    "Name and address in the .deb")
if(NOT KORV_STATIC)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)  # this needs the programs `file` and `dpkg-shlibdeps`
endif()
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "Korv reads a source for the Zilog Z80 once and writes one flat image:
a CP/M .com or a .bin with a load header, and with korv-as also Intel HEX.

korv is for use at a console. korv-as is for make, CI and editors: exit status,
messages with file, line, column and advice, dependencies for make and ninja,
a listing, symbols and source lines for debuggers. korv-ls is the language
server, for any editor that has a client. Files for vim, for Visual Studio Code
and for the checks of GitHub are included.")
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_SOURCE_DIR}/cmake/debian.cmake)
include(CPack)
