# Lists of sources that grow while the rooms are being filled.

# Takes the files that are not there out of the list variable, and says which.
function(ferncase_drop_missing list)
  set(present "")
  set(missing "")
  foreach(source IN LISTS ${list})
    if(EXISTS "${CMAKE_CURRENT_SOURCE_DIR}/${source}")
      list(APPEND present "${source}")
    else()
      list(APPEND missing "${source}")
    endif()
  endforeach()
  if(missing)
    list(JOIN missing " " missing)
    message(STATUS "Not written yet in ${CMAKE_CURRENT_SOURCE_DIR}: ${missing}")
  endif()
  set(${list} "${present}" PARENT_SCOPE)
endfunction()
