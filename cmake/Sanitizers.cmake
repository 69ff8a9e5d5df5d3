# ferncase_sanitizers: what FERNCASE_SANITIZE names. The first finding ends the program.

add_library(ferncase_sanitizers INTERFACE)
if(FERNCASE_SANITIZE)
  target_compile_options(ferncase_sanitizers INTERFACE
    -fsanitize=${FERNCASE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(ferncase_sanitizers INTERFACE -fsanitize=${FERNCASE_SANITIZE})
endif()
