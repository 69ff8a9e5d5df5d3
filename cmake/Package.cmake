# The Debian package: ./dev package, or cpack -G DEB in a build folder.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ferncase)
set(CPACK_PACKAGE_VENDOR Ferncase)
set(CPACK_PACKAGE_CONTACT "The Ferncase maintainers <maintainers@ferncase.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_DESCRIPTION
  "Reads e-mail messages (.eml, .emlx, Maildir) and prints what they can be found by:
people, subject, dates, attachments and the text of the body. Importer bundles
for other types of files can be added.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION mail)
# What the programs link is found in them; our own library is in no package but this.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}/${FERNCASE_LIB_DIR}")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS shared-mime-info)

include(CPack)
