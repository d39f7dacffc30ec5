# Read by cpack, once for each kind of package. The tar.gz has the parts in a top folder of its own,
# the deb in /usr: cpack would put a package's prefix below a part's folder, so the folders hold it.
if(CPACK_GENERATOR STREQUAL "DEB")
  set(CPACK_PACKAGING_INSTALL_PREFIX /)
  list(TRANSFORM CPACK_INSTALL_CMAKE_PROJECTS REPLACE "^(/|/lib/kelvane)$" "/usr\\1")
endif()
