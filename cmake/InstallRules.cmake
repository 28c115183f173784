# Libraries, headers, CMake package, pkg-config files and guide. The programs install themselves, with their manual pages.
include(CMakePackageConfigHelpers)

# Components are what the Debian packages are made of.
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME Runtime)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Ipv6RouterAdvt)
foreach(library IN ITEMS RouterPlatform Ipv6RouterAdvt)
  # What find_package calls the library: Platform, RouterAdvt.
  get_target_property(component ${library} EXPORT_NAME)
  install(
    TARGETS ${library}
    EXPORT ${component}Targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Runtime NAMELINK_COMPONENT Development
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Development
    FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT Development)
  install(
    EXPORT ${component}Targets
    NAMESPACE Ipv6RouterAdvt::
    DESTINATION ${package_dir}
    COMPONENT Development)
endforeach()

configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/Ipv6RouterAdvtConfig.cmake.in ${PROJECT_BINARY_DIR}/cmake/Ipv6RouterAdvtConfig.cmake
  INSTALL_DESTINATION ${package_dir})
configure_file(
  ${PROJECT_SOURCE_DIR}/cmake/Ipv6RouterAdvtConfigVersion.cmake.in
  ${PROJECT_BINARY_DIR}/cmake/Ipv6RouterAdvtConfigVersion.cmake @ONLY)
install(
  FILES ${PROJECT_BINARY_DIR}/cmake/Ipv6RouterAdvtConfig.cmake
        ${PROJECT_BINARY_DIR}/cmake/Ipv6RouterAdvtConfigVersion.cmake
  DESTINATION ${package_dir}
  COMPONENT Development)

# The .pc files give the prefix relative to their own place, so that the tree may be moved.
if(NOT BUILD_SHARED_LIBS)
  set(pc_registration "-Wl,--undefined=RouterAdvt_registration ")
endif()
file(RELATIVE_PATH pc_to_prefix "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
foreach(module IN ITEMS RouterPlatform Ipv6RouterAdvt)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/${module}.pc.in ${PROJECT_BINARY_DIR}/cmake/${module}.pc @ONLY)
  install(
    FILES ${PROJECT_BINARY_DIR}/cmake/${module}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT Development)
endforeach()

# The directory of shared tables, made when the system starts. The file has the name of the Debian package of the libraries:
# two versions of it can stand side by side.
install(
  FILES ${PROJECT_SOURCE_DIR}/cmake/router-shared-tables.conf
  DESTINATION lib/tmpfiles.d
  RENAME libipv6routeradvt${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}.conf
  COMPONENT Runtime)

install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR}
        COMPONENT Development)
# The guide, and what it and the README refer to.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT Development
        FILES_MATCHING PATTERN *.md PATTERN man EXCLUDE)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT Development)

# cmake --build BUILD --target uninstall
if(PROJECT_IS_TOP_LEVEL)
  add_custom_target(uninstall COMMAND ${CMAKE_COMMAND} -P ${PROJECT_SOURCE_DIR}/cmake/Uninstall.cmake VERBATIM)
endif()
