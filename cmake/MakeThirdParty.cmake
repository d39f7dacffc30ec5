# Writes BASE-notices.txt and BASE.cdx.json: what of others' is in the programs of a component.
#   table      the file that cmake/ThirdParty.cmake has written
#   component  its name
#   base       where the files go, without the endings
#   programs   the programs and libraries, each with its linker's map beside it
#
# Versions and notices are those of the Debian packages that the libraries are from. Without dpkg
# the version is the one that CMake has found, if any, and the notices say what is missing.
cmake_policy(VERSION 3.25)
include(${table})
find_program(dpkg_query dpkg-query)

# The C library's and the compiler's own start-up code, of which every program has some.
set(of_the_system "/libc_nonshared\\.a$|/libclang_rt[^/]*\\.a$")

# The archives with a member in the program, ours left out, which the map names relative to the
# build's folder or in it.
function(archives_in map result)
  file(STRINGS ${map} members REGEX "/[^ ]*\\.a\\(")
  list(TRANSFORM members REPLACE "^.*[ \t](/[^ ]*)$" "\\1")
  list(TRANSFORM members REPLACE "\\.a\\(.*$" ".a")
  list(REMOVE_DUPLICATES members)
  list(FILTER members INCLUDE REGEX "^/")
  list(FILTER members EXCLUDE REGEX "/libkelvane_[^/]*$|${of_the_system}")
  set(${result} ${members} PARENT_SCOPE)
endfunction()

# The shared libraries that are brought along with it.
function(libraries_along program result)
  if(program MATCHES "\\.(so|dylib)$")
    set(kind LIBRARIES)
  else()
    set(kind EXECUTABLES)
  endif()
  file(GET_RUNTIME_DEPENDENCIES ${kind} ${program} RESOLVED_DEPENDENCIES_VAR libraries
       PRE_EXCLUDE_REGEXES ${kelvane_not_brought_along})
  set(${result} ${libraries} PARENT_SCOPE)
endfunction()

# Notes that the library is in the program, and a file of it.
macro(note name file)
  list(APPEND found ${name})
  set(file_of_${name} "${file}")
endmacro()

macro(note_paths)
  foreach(path ${ARGN})
    set(known FALSE)
    foreach(name IN LISTS kelvane_library_names)
      if(kelvane_${name}_PATH AND path MATCHES "${kelvane_${name}_PATH}")
        note(${name} ${path})
        set(known TRUE)
      endif()
    endforeach()
    if(NOT known)
      message(WARNING "${program} holds ${path}, which cmake/ThirdParty.cmake does not know")
      get_filename_component(name ${path} NAME_WE)
      set(kelvane_${name}_LICENSE "licence not known")
      note(${name} ${path})
    endif()
  endforeach()
endmacro()

macro(note_symbols map)
  foreach(name IN LISTS kelvane_library_names)
    if(kelvane_${name}_SYMBOL)
      file(STRINGS ${map} symbols REGEX "${kelvane_${name}_SYMBOL}" LIMIT_COUNT 1)
      if(symbols)
        note(${name} "${kelvane_${name}_FILE}")
      endif()
    endif()
  endforeach()
endmacro()

# The Debian package that a file is from; folders of the system have two names.
function(package_of file result)
  set(${result} "" PARENT_SCOPE)
  if(NOT dpkg_query OR NOT file)
    return()
  endif()
  file(REAL_PATH "${file}" real)
  string(REGEX REPLACE "^/usr" "" short "${real}")
  foreach(path ${real} ${short})
    execute_process(COMMAND ${dpkg_query} --search ${path} OUTPUT_VARIABLE line ERROR_QUIET)
    if(line MATCHES "^([^:]+):")
      set(${result} ${CMAKE_MATCH_1} PARENT_SCOPE)
      return()
    endif()
  endforeach()
endfunction()

function(version_of package result)
  execute_process(COMMAND ${dpkg_query} --show --showformat=\${Version}\\n ${package}
                  OUTPUT_VARIABLE versions COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX REPLACE "\n.*" "" version "${versions}")
  set(${result} "${version}" PARENT_SCOPE)
endfunction()

# A JSON object of the bill. A version that nobody knows is left out.
function(entry_of name version package result)
  set(members "\"type\": \"library\"" "\"bom-ref\": \"${name}\"" "\"name\": \"${name}\"")
  if(version)
    list(APPEND members "\"version\": \"${version}\"")
  endif()
  if(NOT kelvane_${name}_LICENSE STREQUAL "licence not known")
    list(APPEND members "\"licenses\": [{\"expression\": \"${kelvane_${name}_LICENSE}\"}]")
  endif()
  if(package)
    string(REPLACE ":" "%3A" purl "${package}@${version}")
    string(REPLACE "+" "%2B" purl "${purl}")
    list(APPEND members "\"purl\": \"pkg:deb/debian/${purl}\"")
  endif()
  list(JOIN members ", " members)
  set(${result} "    {${members}}" PARENT_SCOPE)
endfunction()

# What a package says of its copyright, and which texts of the system's it refers to.
function(notice_of name version package result)
  set(notice "${name} ${version} (${kelvane_${name}_LICENSE})")
  set(text "Its notices were not found where this was built: whoever ships it has to add them.\n")
  if(package AND EXISTS /usr/share/doc/${package}/copyright)
    file(READ /usr/share/doc/${package}/copyright text)
    string(REGEX MATCHALL "common-licenses/[A-Za-z0-9.+-]*[A-Za-z0-9]" named "${text}")
    set(common_licenses ${common_licenses} ${named} PARENT_SCOPE)
    string(PREPEND text "From the package ${package}:\n\n")
  endif()
  set(${result} "${rule}${notice}\n${rule}\n${text}\n" PARENT_SCOPE)
endfunction()

function(quoted_list names result)
  list(TRANSFORM names REPLACE "^(.+)$" "\"\\1\"")
  list(JOIN names ", " names)
  set(${result} "[${names}]" PARENT_SCOPE)
endfunction()

string(REPEAT "=" 78 rule)
string(APPEND rule "\n")
set(all "")
set(parts "")
set(dependencies "")
foreach(program IN LISTS programs)
  set(found "")
  archives_in(${program}.map archives)
  libraries_along(${program} along)
  note_paths(${archives} ${along})
  note_symbols(${program}.map)
  list(REMOVE_DUPLICATES found)
  list(SORT found CASE INSENSITIVE)
  list(APPEND all ${found})
  get_filename_component(program ${program} NAME)
  quoted_list("${found}" names)
  list(APPEND parts "      {\"type\": \"application\", \"bom-ref\": \"${program}\", \
\"name\": \"${program}\", \"version\": \"${kelvane_version}\"}")
  list(APPEND dependencies "    {\"ref\": \"${program}\", \"dependsOn\": ${names}}")
endforeach()
list(REMOVE_DUPLICATES all)
list(SORT all CASE INSENSITIVE)

set(entries "")
set(notices "")
set(common_licenses "")
foreach(name IN LISTS all)
  package_of("${file_of_${name}}" package)
  set(version "${kelvane_${name}_VERSION}")
  if(package)
    version_of(${package} version)
  endif()
  entry_of(${name} "${version}" "${package}" entry)
  list(APPEND entries "${entry}")
  notice_of(${name} "${version}" "${package}" notice)
  string(APPEND notices "${notice}")
endforeach()
list(REMOVE_DUPLICATES common_licenses)
list(SORT common_licenses)
foreach(license IN LISTS common_licenses)
  if(EXISTS /usr/share/${license})
    file(READ /usr/share/${license} text)
    string(REGEX REPLACE ".*/" "" license "${license}")
    string(APPEND notices "${rule}${license}, which is referred to above\n${rule}\n${text}\n")
  endif()
endforeach()

list(JOIN all ", " names)
file(WRITE ${base}-notices.txt "Kelvane ${kelvane_version}, ${component}: the programs hold or bring \
along code of others.\n\n${names}\n\n${notices}")
list(JOIN parts ",\n" parts)
list(JOIN entries ",\n" entries)
list(JOIN dependencies ",\n" dependencies)
file(WRITE ${base}.cdx.json "{
  \"bomFormat\": \"CycloneDX\",
  \"specVersion\": \"1.5\",
  \"version\": 1,
  \"metadata\": {
    \"component\": {\"type\": \"application\", \"bom-ref\": \"kelvane\", \"name\": \"kelvane ${component}\",
    \"version\": \"${kelvane_version}\", \"components\": [
${parts}
    ]}
  },
  \"components\": [
${entries}
  ],
  \"dependencies\": [
${dependencies}
  ]
}
")
