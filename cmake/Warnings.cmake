# Strict warnings for everything that is ours. The presets make errors of them; who only builds is
# not kept from it by what another compiler finds.
add_library(kelvane_warnings INTERFACE)
target_compile_options(kelvane_warnings INTERFACE
  -Wall -Wextra -Wpedantic
  -Wshadow                # a name that hides another is read wrongly
  -Wconversion -Wsign-conversion -Wdouble-promotion  # numbers that silently change
  -Wold-style-cast -Wcast-align -Wcast-qual          # casts that hide what they do
  -Wnon-virtual-dtor -Woverloaded-virtual            # classes that do not do what they say
  -Wformat=2              # formats that are not literals
  -Wimplicit-fallthrough  # a forgotten break
  -Wundef -Wmissing-declarations)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(kelvane_warnings INTERFACE -Wlogical-op -Wduplicated-cond
                                                    -Wduplicated-branches)
endif()
