# CPack runs this on the installed files of each package, before it makes the packages: additions for Debian that an
# installation elsewhere does not need.

# The packages of one version are the same octets wherever and whenever they are built.
execute_process(
  COMMAND dpkg-parsechangelog -l ${CMAKE_CURRENT_LIST_DIR}/changelog -S Timestamp
  OUTPUT_VARIABLE timestamp
  OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
set(ENV{SOURCE_DATE_EPOCH} ${timestamp})

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
  # Independent of the builder's umask.
  execute_process(COMMAND chmod -R u=rwX,go=rX ${usr} COMMAND_ERROR_IS_FATAL ANY)
endforeach()

# The version of the compiler is of no use in a package.
file(GLOB libraries ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/Runtime/usr/lib/*/*.so.*.*.*)
file(GLOB programs ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/Tools/usr/bin/*)
execute_process(COMMAND strip --remove-section=.comment ${libraries} ${programs} COMMAND_ERROR_IS_FATAL ANY)

# The symbols that a program of another package may need, and the first version that has them.
# A file of an earlier run would be taken as a template.
file(REMOVE ${CPACK_RUNTIME_SYMBOLS})
list(TRANSFORM libraries PREPEND -e)
get_filename_component(folder ${CPACK_RUNTIME_SYMBOLS} DIRECTORY)
file(MAKE_DIRECTORY ${folder})
execute_process(
  COMMAND dpkg-gensymbols -p${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} -v${CPACK_PACKAGE_VERSION} -c0 -q
          -O${CPACK_RUNTIME_SYMBOLS} ${libraries} COMMAND_ERROR_IS_FATAL ANY)
file(READ ${CPACK_RUNTIME_SYMBOLS} symbols)
string(REPLACE "#MINVER#\n" "#MINVER#\n* Build-Depends-Package: ${CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME}\n" symbols "${symbols}")
file(WRITE ${CPACK_RUNTIME_SYMBOLS} "${symbols}")
