# The clients of docs/integration. Those that have to be compiled are there where a compiler for
# them is: KELVANE_OBJECTIVE_C_CLIENT and KELVANE_SWIFT_CLIENT are their programs, or empty.
set(clients ${PROJECT_SOURCE_DIR}/docs/integration)
set(compiled_clients)  # their targets
find_program(KELVANE_PYTHON python3)
find_program(KELVANE_SWIFT_COMPILER swiftc)
find_program(KELVANE_OBJECTIVE_C_COMPILER NAMES clang clang-16)

# kelvane_compiled_client(VARIABLE SOURCE COMMAND ...)
function(kelvane_compiled_client variable source)
  set(program ${CMAKE_CURRENT_BINARY_DIR}/${source}.client)
  add_custom_command(OUTPUT ${program}
    COMMAND ${ARGN} ${clients}/${source} -o ${program}
    DEPENDS ${clients}/${source} VERBATIM)
  add_custom_target(${source}.client_program DEPENDS ${program})
  set(${variable} ${program} PARENT_SCOPE)
  set(compiled_clients ${compiled_clients} ${source}.client_program PARENT_SCOPE)
endfunction()

# Elsewhere than on macOS, GNUstep's Foundation and the compiler's runtime of gcc are used.
if(APPLE)
  set(objective_c -fobjc-arc -framework Foundation)
else()
  find_path(KELVANE_GNUSTEP_HEADERS Foundation/Foundation.h PATH_SUFFIXES GNUstep)
  find_library(KELVANE_GNUSTEP_BASE gnustep-base)
  file(GLOB objc_folders /usr/lib/gcc/*/*)
  find_path(KELVANE_OBJC_HEADERS objc/objc.h HINTS ${objc_folders} PATH_SUFFIXES include)
  find_library(KELVANE_OBJC_RUNTIME objc HINTS ${objc_folders})
  if(KELVANE_GNUSTEP_HEADERS AND KELVANE_GNUSTEP_BASE AND KELVANE_OBJC_HEADERS
     AND KELVANE_OBJC_RUNTIME)
    set(objective_c
      -fobjc-runtime=gcc -fconstant-string-class=NSConstantString -fexceptions -fobjc-exceptions
      -DGNUSTEP -D_NATIVE_OBJC_EXCEPTIONS -I${KELVANE_GNUSTEP_HEADERS} -I${KELVANE_OBJC_HEADERS}
      ${KELVANE_GNUSTEP_BASE} ${KELVANE_OBJC_RUNTIME})
  endif()
endif()
if(KELVANE_OBJECTIVE_C_COMPILER AND objective_c)
  kelvane_compiled_client(KELVANE_OBJECTIVE_C_CLIENT client.m
                          ${KELVANE_OBJECTIVE_C_COMPILER} -Wall -Wextra -Werror ${objective_c})
endif()
if(KELVANE_SWIFT_COMPILER)
  kelvane_compiled_client(KELVANE_SWIFT_CLIENT client.swift ${KELVANE_SWIFT_COMPILER})
endif()
