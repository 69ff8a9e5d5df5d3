# ferncase_sanitizers: what FERNCASE_SANITIZE names. The first finding ends the program.

add_library(ferncase_sanitizers INTERFACE)
if(FERNCASE_SANITIZE)
  target_compile_options(ferncase_sanitizers INTERFACE
    -fsanitize=${FERNCASE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(ferncase_sanitizers INTERFACE -fsanitize=${FERNCASE_SANITIZE})

  # What g++ derives from the flow of values is wrong where code is instrumented, in the standard
  # library's headers too. The builds without sanitizers keep these warnings.
  foreach(warning IN ITEMS
      array-bounds format-truncation maybe-uninitialized nonnull restrict stringop-overflow
      stringop-overread)
    target_compile_options(ferncase_sanitizers INTERFACE
      $<$<CXX_COMPILER_ID:GNU>:-Wno-${warning}>)
  endforeach()
endif()
