# Run at installation: copies the libraries that a program needs, and those that they need, into
# the bundle's Contents/Frameworks. Each becomes one file under the name that the loader asks for,
# which on the machine that builds is mostly a link.
#   kelvane_program            the program, in the build tree
#   kelvane_frameworks         the folder that they are copied into, below the prefix
#   kelvane_not_brought_along  regular expressions of the libraries that are left out
file(GET_RUNTIME_DEPENDENCIES
  EXECUTABLES ${kelvane_program}
  PRE_EXCLUDE_REGEXES ${kelvane_not_brought_along}
  RESOLVED_DEPENDENCIES_VAR libraries)
set(folder "$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}/${kelvane_frameworks}")
foreach(library IN LISTS libraries)
  get_filename_component(name "${library}" NAME)
  set(target "${folder}/${name}")
  message(STATUS "Bringing along: ${target}")
  file(MAKE_DIRECTORY "${folder}")
  file(REAL_PATH "${library}" library)
  file(COPY_FILE "${library}" "${target}" ONLY_IF_DIFFERENT)
endforeach()
