# Prepares the files in CPACK_TEMPORARY_DIRECTORY for the .deb. Debian requires all licences in one file, a Debian
# changelog, and changelogs and man pages compressed without names and times. Debian's zsh has a separate folder for the
# completions of packages.
set(share ${CPACK_TEMPORARY_DIRECTORY}/usr/share)
set(copyright ${share}/doc/korv/copyright)
set(changes ${share}/doc/korv/changelog)
file(RENAME ${share}/doc/korv/LICENSE ${copyright})
file(RENAME ${share}/doc/korv/CHANGELOG.md ${changes})
if(EXISTS ${share}/zsh)
  file(RENAME ${share}/zsh/site-functions ${share}/zsh/vendor-completions)
endif()
string(TIMESTAMP now "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(WRITE ${changes}.Debian "korv (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; urgency=medium

  * Release ${CPACK_PACKAGE_VERSION}; see changelog.gz for the changes.

 -- ${CPACK_DEBIAN_PACKAGE_MAINTAINER}  ${now}
")
file(GLOB pages ${share}/man/man1/*.1)
execute_process(COMMAND gzip -9n ${pages} ${changes} ${changes}.Debian COMMAND_ERROR_IS_FATAL ANY)

# Static programs contain parts of other works, so the licences of those works are included.
set(overrides ${share}/lintian/overrides/korv)
file(WRITE ${overrides} "# Built from the sources, not an upload that answers a request for a package.
korv: initial-upload-closes-no-bugs [usr/share/doc/korv/changelog.Debian.gz:1]
")
if(NOT CPACK_DEBIAN_PACKAGE_SHLIBDEPS)
  file(APPEND ${overrides} "# Static, so that the installed programs are those that were measured: with shared libraries
# a run of a small source costs 40 times the instructions, nearly all of them in
# the dynamic linker. -DKORV_STATIC=OFF links the usual way.
korv: statically-linked-binary [usr/bin/korv]
korv: statically-linked-binary [usr/bin/korv-as]
korv: statically-linked-binary [usr/bin/korv-ls]
")
  file(APPEND ${copyright} "
The programs contain parts of the GNU C library (LGPL-2.1 or later, see
/usr/share/common-licenses/LGPL-2.1) and of the GNU C++ library (GPL-3 with the
GCC Runtime Library Exception 3.1, see /usr/share/common-licenses/GPL-3).
")
endif()
if(EXISTS ${share}/../bin/korv-as AND EXISTS /usr/share/doc/nlohmann-json3-dev/copyright)
  file(READ /usr/share/doc/nlohmann-json3-dev/copyright json)
  file(APPEND ${copyright} "
korv-as and korv-ls contain nlohmann/json, under these terms:

${json}")
endif()
