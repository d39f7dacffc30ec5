# What keeps the compiler's time short.

# Headers that most sources include are read once for all: the standard library's for the programs
# (platform/CMakeLists.txt), the test library's for the tests (tests/support). tools/lint reads the
# sources without them, which proves that each includes what it needs.
option(KELVANE_PRECOMPILED_HEADERS "Precompile what most sources include" ON)

function(kelvane_precompiled target headers)
  if(KELVANE_PRECOMPILED_HEADERS)
    target_precompile_headers(${target} REUSE_FROM ${headers})
  endif()
endfunction()

# For rooms whose programs wait for people, files or a worker, and never people for them: more would
# cost a third of the compiler's time, and nobody would see the difference.
set(kelvane_little_optimisation $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-O1>)

# The sources of a folder are compiled as one: what they all include, and what they make of the same
# templates, costs once. So the names that each of them has to itself differ within a folder. Whoever
# changes the same source again and again switches it off in their tree. tools/lint reads each source
# alone. A library stays apart (KELVANE_SOURCES_APART) where programs of the tests put their own in the
# place of some of its objects.
option(KELVANE_JOINED_SOURCES "Compile the sources of a folder as one" ON)

function(kelvane_join_sources folder)
  get_property(targets DIRECTORY ${folder} PROPERTY BUILDSYSTEM_TARGETS)
  foreach(target IN LISTS targets)
    get_target_property(type ${target} TYPE)
    get_target_property(is_apart ${target} KELVANE_SOURCES_APART)
    if(NOT type MATCHES "LIBRARY|EXECUTABLE" OR type STREQUAL INTERFACE_LIBRARY OR is_apart)
      continue()
    endif()
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
    get_target_property(sources ${target} SOURCES)
    foreach(source IN LISTS sources)
      if(source MATCHES "\\.cpp$")
        cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY ${folder})
        cmake_path(GET source PARENT_PATH place)
        cmake_path(RELATIVE_PATH place BASE_DIRECTORY ${PROJECT_SOURCE_DIR})
        string(MAKE_C_IDENTIFIER ${place} group)
        set_source_files_properties(${source} TARGET_DIRECTORY ${target}
                                    PROPERTIES UNITY_GROUP ${group})
      endif()
    endforeach()
  endforeach()
  get_property(below DIRECTORY ${folder} PROPERTY SUBDIRECTORIES)
  foreach(one IN LISTS below)
    cmake_path(IS_PREFIX PROJECT_SOURCE_DIR ${one} is_ours)
    if(is_ours)
      kelvane_join_sources(${one})
    endif()
  endforeach()
endfunction()
