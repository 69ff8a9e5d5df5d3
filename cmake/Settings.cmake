# ferncase_settings: how every target of this project is compiled and linked. Targets link it
# PRIVATE, so none of it reaches a project that uses the installed library.

include(Warnings)
include(Sanitizers)

add_library(ferncase_settings INTERFACE)
target_link_libraries(ferncase_settings INTERFACE ferncase_warnings ferncase_sanitizers)
target_compile_definitions(ferncase_settings INTERFACE $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)

# A unique symbol would keep the bundle that defines it in memory for ever.
target_compile_options(ferncase_settings INTERFACE $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)

target_link_options(ferncase_settings INTERFACE LINKER:--as-needed)
if(NOT FERNCASE_SANITIZE)
  # Clang's sanitizers leave their symbols for the program to define.
  target_link_options(ferncase_settings INTERFACE LINKER:-z,defs)
endif()
