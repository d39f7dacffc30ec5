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
