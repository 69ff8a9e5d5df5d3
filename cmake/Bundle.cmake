# Importer bundles: NAME.mdimporter/Contents/Info.plist and NAME.mdimporter/Contents/Linux/NAME.

# Adds the target NAME, which builds a bundle.
#   NAME        the bundle's name, when it is not the target's
#   DIRECTORY   the folder that holds the bundle, below the build folder and below an install prefix
#   INFO_PLIST  the property list; @BUNDLE_NAME@ and @PROJECT_VERSION@ in it are filled in
#   EXPORTS     a linker version script; what it does not list is invisible from outside
#   SOURCES     the code
#   LIBRARIES   what the code links
#   INSTALL     when given, the bundle is installed
function(ferncase_add_bundle name)
  cmake_parse_arguments(PARSE_ARGV 1 BUNDLE
    "INSTALL" "NAME;DIRECTORY;INFO_PLIST;EXPORTS" "SOURCES;LIBRARIES")
  if(NOT BUNDLE_NAME)
    set(BUNDLE_NAME ${name})
  endif()
  set(contents ${BUNDLE_DIRECTORY}/${BUNDLE_NAME}.mdimporter/Contents)
  cmake_path(ABSOLUTE_PATH BUNDLE_EXPORTS OUTPUT_VARIABLE exports)

  add_library(${name} MODULE ${BUNDLE_SOURCES})
  target_link_libraries(${name} PRIVATE ferncase_settings ${BUNDLE_LIBRARIES})
  target_link_options(${name} PRIVATE "LINKER:--version-script=${exports}")
  set_target_properties(${name} PROPERTIES
    PREFIX ""
    OUTPUT_NAME ${BUNDLE_NAME}
    SUFFIX ""
    LINK_DEPENDS "${exports}"
    FERNCASE_EXPORTS "${exports}"
    LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/${contents}/Linux")
  ferncase_find_platform_from(${name} ${contents}/Linux)
  configure_file("${BUNDLE_INFO_PLIST}" "${PROJECT_BINARY_DIR}/${contents}/Info.plist" @ONLY)

  if(BUNDLE_INSTALL)
    install(TARGETS ${name} LIBRARY DESTINATION ${contents}/Linux)
    install(FILES "${PROJECT_BINARY_DIR}/${contents}/Info.plist" DESTINATION ${contents})
  endif()
endfunction()
