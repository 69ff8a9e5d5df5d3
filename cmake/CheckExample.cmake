# Fails unless the example importer, built by itself against the installed project, is picked for
# its type.
# Run as: cmake -DBUILD=build-folder -DEXAMPLE=its-source -DCOMPILER=c++ -DWORK=folder -P CheckExample.cmake

function(run)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output ERROR_VARIABLE output RESULT_VARIABLE code)
  if(NOT code EQUAL 0)
    string(JOIN " " command ${ARGN})
    message(FATAL_ERROR "${command}\n${output}")
  endif()
endfunction()

file(REMOVE_RECURSE "${WORK}")
run("${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${WORK}/prefix")
run("${CMAKE_COMMAND}" -S "${EXAMPLE}" -B "${WORK}/build" -G Ninja "-DCMAKE_CXX_COMPILER=${COMPILER}"
  "-DCMAKE_PREFIX_PATH=${WORK}/prefix")
run("${CMAKE_COMMAND}" --build "${WORK}/build")
run("${CMAKE_COMMAND}" --install "${WORK}/build"
  --prefix "${WORK}/data/ferncase/Library/Spotlight")

file(WRITE "${WORK}/ada.vcf" "BEGIN:VCARD\r\nFN:Ada Lovelace\r\nEMAIL;TYPE=work:ada@x.org\r\nEND:VCARD\r\n")
execute_process(
  COMMAND "${CMAKE_COMMAND}" -E env "XDG_DATA_HOME=${WORK}/data"
    "${WORK}/prefix/bin/ferncase" import --no-text ada.vcf
  WORKING_DIRECTORY "${WORK}" OUTPUT_VARIABLE output ERROR_VARIABLE complaints)
set(expected "kMDItemDisplayName    = \"Ada Lovelace\"
kMDItemEmailAddresses = (
    \"ada@x.org\"
)
")
if(NOT output STREQUAL expected OR NOT complaints STREQUAL "")
  message(FATAL_ERROR "${output}${complaints}")
endif()
file(REMOVE_RECURSE "${WORK}")
