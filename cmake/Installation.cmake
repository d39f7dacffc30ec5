# Where the pieces go below the prefix, and what programs bring along there. Components: worker,
# console, simulators, documentation.
#
# The prefix of the worker and the simulators is an application bundle. The console brings its
# pages for man and its completions (share/man, share/bash-completion and so on) in its own folder.

# Every machine has these, or the bundle's owner puts them there; all else is brought along.
set(kelvane_not_brought_along
  "^ld-linux" "^libc\\.so" "^libm\\.so" "^libdl\\.so" "^libpthread\\.so" "^librt\\.so"
  "^libgcc_s\\.so" "^libstdc\\+\\+\\.so" "^libc\\+\\+" "^libunwind\\.so"
  "^lib(asan|ubsan)\\.so"            # the sanitizers' runtime belongs to the compiler
  "^/usr/lib/" "^/System/Library/"   # macOS
  "ZORAPI")

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

# Installs a program, and into Contents/Frameworks the libraries that it needs.
function(kelvane_install_program target destination component)
  kelvane_find_libraries_in_bundle(${target} ${destination})
  install(TARGETS ${target} RUNTIME DESTINATION ${destination} COMPONENT ${component})
  install(CODE "set(kelvane_program \"$<TARGET_FILE:${target}>\")
  set(kelvane_not_brought_along [==[${kelvane_not_brought_along}]==])
  include([==[${PROJECT_SOURCE_DIR}/cmake/BringAlong.cmake]==])" COMPONENT ${component})
endfunction()

install(FILES README.md ARCHITECTURE.md CONTRIBUTING.md
        DESTINATION share/doc/kelvane COMPONENT documentation)
install(DIRECTORY docs DESTINATION share/doc/kelvane COMPONENT documentation
        FILES_MATCHING PATTERN "*.md" PATTERN "*.json" PATTERN "*.svg" PATTERN man EXCLUDE)
