# Run by CPack on what it has installed for each package, before it makes the packages: what Debian wants and an
# installation elsewhere does not.

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  set(usr ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${component}/usr)
  string(TOUPPER ${component} component)
  set(doc ${usr}/share/doc/${CPACK_DEBIAN_${component}_PACKAGE_NAME})
  file(MAKE_DIRECTORY ${doc})
  configure_file(${CMAKE_CURRENT_LIST_DIR}/copyright ${doc}/copyright COPYONLY)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/changelog ${doc}/changelog.Debian COPYONLY)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/../../CHANGELOG.md ${doc}/changelog COPYONLY)
  file(GLOB pages ${usr}/share/man/man?/*)
  execute_process(COMMAND gzip -9nf ${doc}/changelog.Debian ${doc}/changelog ${pages} COMMAND_ERROR_IS_FATAL ANY)
  # Whatever the umask of whoever builds.
  execute_process(COMMAND chmod -R u=rwX,go=rX ${usr} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
