# Strict warnings, all of them errors, for everything that is ours.
add_library(kelvane_warnings INTERFACE)
target_compile_options(kelvane_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Werror
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
