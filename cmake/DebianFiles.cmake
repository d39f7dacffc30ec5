# Run by cpack before it packs the Debian package: what Debian wants of every package.
set(root ${CPACK_TEMPORARY_INSTALL_DIRECTORY}${CPACK_PACKAGING_INSTALL_PREFIX})
set(doc ${root}/share/doc/kelvane)
set(debian ${kelvane_scripts}/debian)

function(compress)
  execute_process(COMMAND gzip -9n ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(GLOB pages ${root}/share/man/man*/*)
configure_file(${debian}/copyright ${doc}/copyright COPYONLY)
configure_file(${kelvane_built}/debian/changelog ${doc}/changelog COPYONLY)
compress(${pages} ${doc}/changelog)
if(${kelvane_links_everything_in})
  configure_file(${debian}/lintian-overrides ${root}/share/lintian/overrides/kelvane COPYONLY)
endif()
