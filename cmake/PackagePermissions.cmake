# Run by cpack before it packs: what is in the package is there for all, also where the umask of
# whoever builds it keeps new folders to themselves.
file(CHMOD_RECURSE "${CPACK_TEMPORARY_INSTALL_DIRECTORY}" DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
