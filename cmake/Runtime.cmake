# The C++ runtime, linked into the worker and what it loads: to find and relocate the shared one is
# most of a start. Not where a sanitizer has to see it, nor where there is none to link in (macOS).
include(CheckCXXSourceCompiles)

set(kelvane_runtime_linked_in -static-libstdc++ -static-libgcc)
if(NOT APPLE AND NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  set(CMAKE_REQUIRED_LINK_OPTIONS ${kelvane_runtime_linked_in})
  check_cxx_source_compiles("
    #include <stdexcept>
    int main() { try { throw std::runtime_error(\"\"); } catch (const std::exception&) {} }"
    KELVANE_LINKS_STATIC_RUNTIME)
  unset(CMAKE_REQUIRED_LINK_OPTIONS)
endif()

# None of it shows outside: a library with a runtime of its own goes on with that one.
function(kelvane_link_runtime_in target)
  if(KELVANE_LINKS_STATIC_RUNTIME)
    target_link_options(${target} PRIVATE ${kelvane_runtime_linked_in} -Wl,--exclude-libs,ALL)
  endif()
endfunction()
