# Before a .deb is made of what lies in CPACK_TEMPORARY_DIRECTORY: Debian wants the licence under one name, a list of
# changes of its own, and that one, ours and the manual pages compressed, without names and times. Its zsh looks for the
# completions of packages in a place of its own.
set(share ${CPACK_TEMPORARY_DIRECTORY}/usr/share)
set(changes ${share}/doc/korv/changelog)
file(RENAME ${share}/doc/korv/LICENSE ${share}/doc/korv/copyright)
file(RENAME ${share}/doc/korv/CHANGELOG.md ${changes})
if(EXISTS ${share}/zsh)
  file(RENAME ${share}/zsh/site-functions ${share}/zsh/vendor-completions)
endif()
string(TIMESTAMP now "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(WRITE ${changes}.Debian "korv (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; urgency=medium

  * Release ${CPACK_PACKAGE_VERSION}; changelog.gz says what is new.

 -- ${CPACK_DEBIAN_PACKAGE_MAINTAINER}  ${now}
")
file(GLOB pages ${share}/man/man1/*.1)
execute_process(COMMAND gzip -9n ${pages} ${changes} ${changes}.Debian COMMAND_ERROR_IS_FATAL ANY)
