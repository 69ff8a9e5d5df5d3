# What the targets do not install themselves: headers, the package for other projects, documents.

include(CMakePackageConfigHelpers)

install(DIRECTORY "${PROJECT_SOURCE_DIR}/platform" DESTINATION ${FERNCASE_INCLUDE_DIR}
  FILES_MATCHING PATTERN "*.h" PATTERN linux EXCLUDE)

install(EXPORT ferncase NAMESPACE ferncase:: DESTINATION ${FERNCASE_CMAKE_DIR}
  FILE ferncaseConfig.cmake)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/ferncaseConfigVersion.cmake"
  COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/ferncaseConfigVersion.cmake"
  DESTINATION ${FERNCASE_CMAKE_DIR})

install(FILES "${PROJECT_SOURCE_DIR}/README.md" DESTINATION ${FERNCASE_DOC_DIR})
install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs" DESTINATION ${FERNCASE_DOC_DIR})
install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples" DESTINATION ${FERNCASE_DOC_DIR})

# The unit names the program by its place, which is known when the place is.
install(CODE "
  set(prefix \"\${CMAKE_INSTALL_PREFIX}\")
  configure_file(\"${PROJECT_SOURCE_DIR}/share/systemd/user/ferncase-watch.service.in\"
    \"${PROJECT_BINARY_DIR}/ferncase-watch.service\" @ONLY)")
install(FILES "${PROJECT_BINARY_DIR}/ferncase-watch.service" DESTINATION ${FERNCASE_USER_UNIT_DIR})
