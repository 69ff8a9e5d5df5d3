# Fails unless a library shows exactly what its linker version script lists.
# Run as: cmake -DNM=nm -DLIBRARY=file -DEXPORTS=file -P CheckExports.cmake

file(READ "${EXPORTS}" script)
string(REGEX REPLACE "/\\*[^*]*\\*/" "" script "${script}")
string(REGEX REPLACE ".*global:(.*)local:.*" "\\1" listed "${script}")
string(REGEX MATCHALL "[A-Za-z_][A-Za-z0-9_]*" listed "${listed}")

execute_process(COMMAND "${NM}" -D --defined-only --format=posix "${LIBRARY}"
  OUTPUT_VARIABLE table COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]+" rows "${table}")
list(TRANSFORM rows REPLACE " .*" "" OUTPUT_VARIABLE shown)

list(SORT listed)
list(SORT shown)
if(NOT listed STREQUAL shown)
  message(FATAL_ERROR "${LIBRARY}\nshows:  ${shown}\nlisted: ${listed}")
endif()
