# What makes mistakes harder to exploit; included by the rooms whose programs and libraries are
# shipped. Each is asked of the compiler and the linker first, as processors and systems differ.
include_guard(DIRECTORY)
include(CheckCXXCompilerFlag)
include(CheckLinkerFlag)
include(CheckPIESupported)

check_pie_supported()
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
# Nothing shows outside a program or library that is not said to.
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

# The flags that the compiler knows; clang takes those of other processors too.
if(CMAKE_SYSTEM_PROCESSOR MATCHES "aarch64|arm64")
  set(control_flow -mbranch-protection=standard)
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "x86|AMD64|i.86")
  set(control_flow -fcf-protection=full)
endif()
foreach(flag -fstack-protector-strong -fstack-clash-protection ${control_flow})
  string(MAKE_C_IDENTIFIER "KELVANE_HAS${flag}" known)
  check_cxx_compiler_flag(${flag} ${known})
  if(${known})
    add_compile_options(${flag})
  endif()
endforeach()
add_compile_definitions(_GLIBCXX_ASSERTIONS)

# Only an optimising compiler knows the sizes; sanitizers have checks of their own. Some compilers
# define it by themselves, which would be a definition twice.
if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  set(optimised $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
  add_compile_options($<${optimised}:-U_FORTIFY_SOURCE> $<${optimised}:-D_FORTIFY_SOURCE=3>)
endif()

# Tables of addresses are read-only once the program runs; stacks hold no code.
foreach(flag relro now noexecstack)
  check_linker_flag(CXX -Wl,-z,${flag} KELVANE_LINKS_${flag})
  if(KELVANE_LINKS_${flag})
    add_link_options(-Wl,-z,${flag})
  endif()
endforeach()

# The linker drops the mark of protected control flow where one of its inputs lacks it, as the C
# library's start-up code and the static libraries of Debian 12 do. Shadow stacks need nothing of
# them; branch targets are tracked for programs by no system yet, and in these parts are not marked.
if(KELVANE_HAS_fcf_protection_full)
  check_linker_flag(CXX "-Wl,-z,ibt,-z,shstk" KELVANE_LINKS_control_flow)
  if(KELVANE_LINKS_control_flow)
    add_link_options(-Wl,-z,ibt,-z,shstk)
  endif()
endif()
