# Where things lie. The build tree has the layout of the installed tree, so a program finds its
# library and its bundles by the same relative path in both, and both trees can be moved.

set(FERNCASE_BIN_DIR bin)
set(FERNCASE_LIB_DIR lib/ferncase)
set(FERNCASE_SPOTLIGHT_DIR ${FERNCASE_LIB_DIR}/Library/Spotlight)
set(FERNCASE_SYSTEM_SPOTLIGHT_DIR ${FERNCASE_LIB_DIR}/System/Library/Spotlight)
set(FERNCASE_INCLUDE_DIR include/ferncase)
set(FERNCASE_CMAKE_DIR lib/cmake/ferncase)
set(FERNCASE_DOC_DIR share/doc/ferncase)
set(FERNCASE_USER_UNIT_DIR share/systemd/user)

# Lets what is built into `directory`, a folder below the build folder, find the platform library.
# The build tree's path is the installed one already, so that installing copies bytes only.
function(ferncase_find_platform_from target directory)
  cmake_path(RELATIVE_PATH FERNCASE_LIB_DIR BASE_DIRECTORY ${directory} OUTPUT_VARIABLE way)
  set_target_properties(${target} PROPERTIES
    BUILD_WITH_INSTALL_RPATH ON
    INSTALL_RPATH "\$ORIGIN/${way}")
endfunction()
