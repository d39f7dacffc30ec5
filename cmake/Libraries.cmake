# How the libraries of others come to the programs.
option(KELVANE_SYSTEM_LIBRARIES
       "Link the system's own shared libraries and bring none along (for packagers; in a new tree)"
       OFF)

# Linked in where it can be, so that it does not have to be brought along.
function(kelvane_find_library variable name)
  if(NOT KELVANE_SYSTEM_LIBRARIES)
    set(linked_in lib${name}.a)
  endif()
  find_library(${variable} NAMES ${linked_in} ${name} REQUIRED ${ARGN})
endfunction()
