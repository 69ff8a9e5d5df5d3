# Manual pages and completions for shells, which the command writes about itself, so that they can
# never tell anything else than it does.

set(documents "${PROJECT_BINARY_DIR}/documents")
set(shells bash fish zsh)
set(writing)
foreach(shell IN LISTS shells)
  list(APPEND writing COMMAND ferncase completion ${shell} > "${documents}/ferncase.${shell}")
endforeach()
add_custom_command(OUTPUT "${documents}/written"
  COMMAND "${CMAKE_COMMAND}" -E rm -rf "${documents}"
  COMMAND "${CMAKE_COMMAND}" -E make_directory "${documents}/man1"
  COMMAND ferncase manual --into "${documents}/man1"
  ${writing}
  COMMAND "${CMAKE_COMMAND}" -E touch "${documents}/written"
  DEPENDS ferncase
  VERBATIM)
add_custom_target(documents ALL DEPENDS "${documents}/written")

install(DIRECTORY "${documents}/man1" DESTINATION share/man)
install(FILES "${documents}/ferncase.bash" DESTINATION share/bash-completion/completions
  RENAME ferncase)
install(FILES "${documents}/ferncase.fish" DESTINATION share/fish/vendor_completions.d)
# zsh looks in the first below /usr/local, Debian's in the second below /usr.
foreach(folder IN ITEMS site-functions vendor-completions)
  install(FILES "${documents}/ferncase.zsh" DESTINATION share/zsh/${folder} RENAME _ferncase)
endforeach()
install(FILES "${PROJECT_SOURCE_DIR}/share/mime/packages/ferncase.xml"
  DESTINATION share/mime/packages)
