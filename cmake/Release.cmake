# The day of the release, as CHANGELOG.md has it: what is built twice is the same twice. The
# environment's SOURCE_DATE_EPOCH goes before it.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/CHANGELOG.md)
file(STRINGS ${PROJECT_SOURCE_DIR}/CHANGELOG.md heading REGEX "^## [0-9]" LIMIT_COUNT 1)
if(NOT heading MATCHES "^## ([0-9.]+) \\(([A-Z][a-z][a-z], ([0-9]+ [A-Z][a-z][a-z] [0-9]+))\\)$")
  message(FATAL_ERROR "CHANGELOG.md: \"${heading}\" is no heading of a version")
endif()
set(KELVANE_DATE ${CMAKE_MATCH_3})
set(KELVANE_DAY ${CMAKE_MATCH_2})
if(NOT CMAKE_MATCH_1 VERSION_EQUAL PROJECT_VERSION)
  message(FATAL_ERROR "CHANGELOG.md is at ${CMAKE_MATCH_1}, the project at ${PROJECT_VERSION}")
endif()
if(DEFINED ENV{SOURCE_DATE_EPOCH})
  string(TIMESTAMP KELVANE_DATE "%d %b %Y" UTC)
  string(TIMESTAMP KELVANE_DAY "%a, %d %b %Y" UTC)
endif()

# For a source that shows the version; the others are not built again for a new one.
function(kelvane_tell_version source)
  set_property(SOURCE ${source} APPEND PROPERTY
               COMPILE_DEFINITIONS "KELVANE_VERSION=\"${PROJECT_VERSION}\"")
endfunction()
