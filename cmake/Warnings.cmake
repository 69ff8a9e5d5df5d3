# ferncase_warnings: the warnings that our code is free of, with g++ and with clang++.

add_library(ferncase_warnings INTERFACE)
target_compile_options(ferncase_warnings INTERFACE
  -Wall
  -Wextra
  -Wpedantic
  -Wcast-align
  -Wconversion
  $<$<COMPILE_LANGUAGE:CXX>:-Wextra-semi>
  -Wformat=2
  -Wimplicit-fallthrough
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor>
  $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast>
  $<$<COMPILE_LANGUAGE:CXX>:-Woverloaded-virtual>
  -Wshadow
  -Wno-sign-conversion
  $<$<CXX_COMPILER_ID:GNU>:-Wduplicated-cond>
  $<$<CXX_COMPILER_ID:GNU>:-Wlogical-op>
  # g++ 12 sees overlapping copies in `"text" + string` where there are none (GCC bug 105651).
  $<$<AND:$<COMPILE_LANG_AND_ID:CXX,GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>,$<CONFIG:Release,RelWithDebInfo>>:-Wno-restrict>)
