# Run at installation: copies the libraries that a program needs, and those that they need, into
# Contents/Frameworks. Each becomes one file under the name that the loader asks for, which on the
# machine that builds is mostly a link.
#   kelvane_program            the program, in the build tree
#   kelvane_not_brought_along  regular expressions of the libraries that are left out
file(GET_RUNTIME_DEPENDENCIES
  EXECUTABLES ${kelvane_program}
  PRE_EXCLUDE_REGEXES ${kelvane_not_brought_along}
  RESOLVED_DEPENDENCIES_VAR libraries)
foreach(library IN LISTS libraries)
  get_filename_component(name "${library}" NAME)
  set(target "$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}/Contents/Frameworks/${name}")
  message(STATUS "Bringing along: ${target}")
  file(MAKE_DIRECTORY "$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}/Contents/Frameworks")
  file(REAL_PATH "${library}" library)
  file(COPY_FILE "${library}" "${target}" ONLY_IF_DIFFERENT)
endforeach()
