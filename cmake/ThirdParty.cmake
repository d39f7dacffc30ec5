# Others' libraries in the programs: for each component that is installed, their notices and a bill
# of materials (CycloneDX), made of the linker's maps when the programs are built.

# What may be found: by the path of an archive or shared library, or, where a library is headers
# alone, by its name space in the names of the functions. VERSION and FILE help where the one or the
# other is not known by the path.
set(kelvane_library_names "")
macro(kelvane_library name)
  cmake_parse_arguments(library "" "PATH;SYMBOL;LICENSE;VERSION;FILE" "" ${ARGN})
  list(APPEND kelvane_library_names ${name})
  foreach(field PATH SYMBOL LICENSE VERSION FILE)
    set(kelvane_${name}_${field} "${library_${field}}")
  endforeach()
endmacro()

find_path(KELVANE_FMT_INCLUDE fmt/core.h)
find_path(KELVANE_JSON_INCLUDE nlohmann/json.hpp)
find_path(KELVANE_CLI11_INCLUDE CLI/CLI.hpp)
find_path(KELVANE_EXPAT_INCLUDE expat.h REQUIRED)
file(STRINGS ${KELVANE_EXPAT_INCLUDE}/expat.h kelvane_expat_version
     REGEX "^#define XML_(MAJOR|MINOR|MICRO)_VERSION [0-9]+")
list(TRANSFORM kelvane_expat_version REPLACE "[^0-9]" "")
list(JOIN kelvane_expat_version "." kelvane_expat_version)

kelvane_library(fmt SYMBOL "[^0-9]3fmt[0-9]+v[0-9]" LICENSE MIT
                VERSION ${fmt_VERSION} FILE ${KELVANE_FMT_INCLUDE}/fmt/core.h)
kelvane_library(nlohmann-json SYMBOL "[^0-9]8nlohmann[0-9]" LICENSE MIT
                VERSION ${nlohmann_json_VERSION} FILE ${KELVANE_JSON_INCLUDE}/nlohmann/json.hpp)
kelvane_library(CLI11 SYMBOL "[^0-9]3CLI[0-9]" LICENSE BSD-3-Clause
                VERSION ${CLI11_VERSION} FILE ${KELVANE_CLI11_INCLUDE}/CLI/CLI.hpp)
kelvane_library(pcre2 PATH "/libpcre2-8[-.]" LICENSE BSD-3-Clause)
kelvane_library(expat PATH "/libexpat[-.]" LICENSE MIT VERSION ${kelvane_expat_version})
kelvane_library(libplist PATH "/libplist(-2[.]0)?[.]" LICENSE LGPL-2.1-or-later)
kelvane_library(zlib PATH "/libz[-.]" LICENSE Zlib VERSION ${ZLIB_VERSION_STRING})
kelvane_library(libcrypto PATH "/libcrypto[-.]" LICENSE Apache-2.0 VERSION ${OPENSSL_VERSION})
kelvane_library(libstdc++ PATH "/libstdc[+][+][.]" VERSION ${CMAKE_CXX_COMPILER_VERSION}
                LICENSE "GPL-3.0-or-later WITH GCC-exception-3.1")
kelvane_library(libgcc PATH "/libgcc(_eh)?[.]" VERSION ${CMAKE_CXX_COMPILER_VERSION}
                LICENSE "GPL-3.0-or-later WITH GCC-exception-3.1")
kelvane_library(libc++ PATH "/lib(c[+][+](abi)?|unwind)[.]" LICENSE "Apache-2.0 WITH LLVM-exception"
                VERSION ${CMAKE_CXX_COMPILER_VERSION})

# What the scripts that run later are told of all that.
function(kelvane_write_library_table file)
  set(text "set(kelvane_library_names ${kelvane_library_names})\n")
  foreach(name IN LISTS kelvane_library_names)
    foreach(field PATH SYMBOL LICENSE VERSION FILE)
      string(APPEND text "set(kelvane_${name}_${field} [==[${kelvane_${name}_${field}}]==])\n")
    endforeach()
  endforeach()
  string(APPEND text "set(kelvane_not_brought_along [==[${kelvane_not_brought_along}]==])\n"
                     "set(kelvane_version ${PROJECT_VERSION})\n")
  file(CONFIGURE OUTPUT ${file} CONTENT "${text}" @ONLY)
endfunction()
set(kelvane_library_table ${PROJECT_BINARY_DIR}/third-party/libraries.cmake)
kelvane_write_library_table(${kelvane_library_table})

# Has the linker say what it puts into a program.
function(kelvane_map target)
  if(APPLE)
    target_link_options(${target} PRIVATE -Wl,-map,$<TARGET_FILE:${target}>.map)
  else()
    target_link_options(${target} PRIVATE -Wl,-Map=$<TARGET_FILE:${target}>.map)
  endif()
endfunction()

# Makes the notices and the bill of a component's programs, as part of the target "programs".
function(kelvane_third_party component)
  set(base ${PROJECT_BINARY_DIR}/third-party/${component})
  list(TRANSFORM ARGN REPLACE "^(.+)$" "$<TARGET_FILE:\\1>" OUTPUT_VARIABLE programs)
  set(script ${PROJECT_SOURCE_DIR}/cmake/MakeThirdParty.cmake)
  add_custom_command(OUTPUT ${base}-notices.txt ${base}.cdx.json
    COMMAND ${CMAKE_COMMAND} -Dtable=${kelvane_library_table} -Dcomponent=${component}
            -Dbase=${base} "-Dprograms=${programs}" -P ${script}
    DEPENDS ${ARGN} ${script} ${kelvane_library_table}
    COMMENT "Notices and bill of materials of the ${component}" VERBATIM)
  add_custom_target(kelvane_third_party_${component} ALL
                    DEPENDS ${base}-notices.txt ${base}.cdx.json)
  add_dependencies(programs kelvane_third_party_${component})
endfunction()

function(kelvane_install_third_party component destination)
  install(FILES ${PROJECT_BINARY_DIR}/third-party/${component}-notices.txt
                ${PROJECT_BINARY_DIR}/third-party/${component}.cdx.json
          DESTINATION ${destination} ${ARGN})
endfunction()
