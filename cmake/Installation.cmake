# Where the pieces go below the prefix, and what programs bring along there.
#
# Components of a bundle, whose root is then the prefix; installed only by their names:
#   worker, simulators
# What "cmake --install" puts below a prefix such as /usr/local, and the packages below theirs:
#   console, documentation
#   tools      the simulators in a bundle's layout in lib/kelvane, with links in bin to their tools
include(GNUInstallDirs)
if(NOT "$CACHE{CMAKE_INSTALL_DOCDIR}")
  set(CMAKE_INSTALL_DOCDIR ${CMAKE_INSTALL_DATAROOTDIR}/doc/kelvane)
endif()
set(kelvane_tools_folder ${CMAKE_INSTALL_LIBDIR}/kelvane)

# Every machine has these, or the bundle's owner puts them there; all else is brought along.
set(kelvane_not_brought_along
  "^ld-linux" "^libc\\.so" "^libm\\.so" "^libdl\\.so" "^libpthread\\.so" "^librt\\.so"
  "^libgcc_s\\.so" "^libstdc\\+\\+\\.so" "^libc\\+\\+" "^libunwind\\.so"
  "^/usr/lib/" "^/System/Library/"   # macOS
  "ZORAPI")
if(KELVANE_SYSTEM_LIBRARIES)
  set(kelvane_not_brought_along ".")
endif()

# The programs look for libraries by a path relative to themselves, so that the tree can be moved;
# by a RUNPATH, so that LD_LIBRARY_PATH can put another one in their place.
function(kelvane_find_libraries_in_bundle target destination)
  file(RELATIVE_PATH frameworks "/${destination}" "/Contents/Frameworks")
  if(APPLE)
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "@loader_path/${frameworks}")
  else()
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN/${frameworks}")
    target_link_options(${target} PRIVATE -Wl,--enable-new-dtags)
  endif()
  set_target_properties(${target} PROPERTIES BUILD_WITH_INSTALL_RPATH ON)
endfunction()

# Installs a program or library into the bundle at this place below the prefix ("." is the prefix
# itself), and into its Contents/Frameworks the libraries that a program needs. What follows is for
# install(), such as COMPONENT.
function(kelvane_install_in_bundle target bundle destination)
  install(TARGETS ${target} DESTINATION ${bundle}/${destination} ${ARGN})
  get_target_property(type ${target} TYPE)
  if(type STREQUAL EXECUTABLE)
    install(CODE "set(kelvane_program \"$<TARGET_FILE:${target}>\")
  set(kelvane_frameworks [==[${bundle}/Contents/Frameworks]==])
  set(kelvane_not_brought_along [==[${kelvane_not_brought_along}]==])
  include([==[${PROJECT_SOURCE_DIR}/cmake/BringAlong.cmake]==])" ${ARGN})
  endif()
endfunction()

function(kelvane_install_worker target destination)
  kelvane_find_libraries_in_bundle(${target} ${destination})
  kelvane_map(${target})
  kelvane_install_in_bundle(${target} . ${destination} COMPONENT worker EXCLUDE_FROM_ALL)
endfunction()

function(kelvane_install_simulator target destination)
  kelvane_find_libraries_in_bundle(${target} ${destination})
  kelvane_map(${target})
  kelvane_install_in_bundle(${target} . ${destination} COMPONENT simulators EXCLUDE_FROM_ALL)
  kelvane_install_in_bundle(${target} ${kelvane_tools_folder} ${destination} COMPONENT tools)
endfunction()

# A tool of the simulators: a program that people call, with a manual page.
function(kelvane_install_tool target)
  kelvane_install_simulator(${target} bin)
  file(RELATIVE_PATH place ${CMAKE_INSTALL_FULL_BINDIR}
       ${CMAKE_INSTALL_FULL_LIBDIR}/kelvane/bin/${target})
  file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/links)
  file(CREATE_LINK ${place} ${PROJECT_BINARY_DIR}/links/${target} SYMBOLIC)
  install(FILES ${PROJECT_BINARY_DIR}/links/${target}
          DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
endfunction()

install(FILES README.md ARCHITECTURE.md CONTRIBUTING.md CHANGELOG.md
        DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation)
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation
        FILES_MATCHING PATTERN "*.md" PATTERN "*.json" PATTERN "*.svg" PATTERN "*.png"
        PATTERN "integration/client.*"
        PATTERN man EXCLUDE)
