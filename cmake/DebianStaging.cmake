# Run by CPack over what is to be packed, as Debian wants it: each package carries its licences and the lists of changes,
# and modules of Python lie where all its versions look.
file(GLOB sites ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/python${CPACK_PACKAGING_INSTALL_PREFIX}/lib/python3.*)
foreach(site IN LISTS sites)
  get_filename_component(libraries ${site} DIRECTORY)
  file(RENAME ${site} ${libraries}/python3)
endforeach()

string(TIMESTAMP now "%a, %d %b %Y %H:%M:%S +0000" UTC)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} suffix)
  set(documents ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${component}${CPACK_PACKAGING_INSTALL_PREFIX}/share/doc)
  string(APPEND documents /${CPACK_DEBIAN_${suffix}_PACKAGE_NAME})
  file(MAKE_DIRECTORY ${documents})
  file(COPY_FILE ${CPACK_PROJECT_SOURCE_DIR}/THIRD-PARTY.md ${documents}/copyright)
  file(COPY_FILE ${CPACK_PROJECT_SOURCE_DIR}/CHANGELOG.md ${documents}/changelog)
  file(WRITE ${documents}/changelog.Debian
       "${CPACK_PACKAGE_NAME} (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) stable; urgency=medium\n\n"
       "  * Built from version ${CPACK_PACKAGE_VERSION}: see changelog.gz.\n\n -- ${CPACK_PACKAGE_CONTACT}  ${now}\n")
  execute_process(COMMAND gzip -9nf ${documents}/changelog ${documents}/changelog.Debian COMMAND_ERROR_IS_FATAL ANY)
  file(CHMOD ${documents}/copyright ${documents}/changelog.gz ${documents}/changelog.Debian.gz
       PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
endforeach()
