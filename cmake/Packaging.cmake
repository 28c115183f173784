# Debian packages by CPack, of a build with the preset deb: the libraries, their development files, and the command line.
# `make deb`
set(CPACK_GENERATOR DEB)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PACKAGE_NAME ipv6routeradvt)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL Runtime Development)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "The Ipv6RouterAdvt authors <authors@ipv6routeradvt.invalid>")
set(CPACK_DEBIAN_PACKAGE_SOURCE ipv6routeradvt)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debian/finish.cmake)

# The interface's version is part of the libraries' names, so of their package's too: two of them can stand side by side.
set(runtime libipv6routeradvt${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
set(same_version "${runtime} (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${runtime})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
# Until the interface's version changes, a program needs the libraries that it was built with, or later ones.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
# The trigger does the work of two scripts that CPack would add. CPack adds neither when their files are listed, and warns that
# the files do not exist.
set(debian_dir ${PROJECT_SOURCE_DIR}/cmake/debian)
set(CPACK_RUNTIME_SYMBOLS ${PROJECT_BINARY_DIR}/debian/symbols)  # finish.cmake makes it
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${debian_dir}/triggers ${CPACK_RUNTIME_SYMBOLS} ${debian_dir}/none/postinst
                                               ${debian_dir}/none/postrm)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION
    "IPv6 router advertisements: shared libraries
The model of what a router's advertisement agent is configured with and hears,
the codec of the ICMPv6 messages (RFC 4861, with RFC 4191 and RFC 8106), a
shared-memory table of the neighbouring routers, and the platform that they
stand on.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libipv6routeradvt-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${same_version}")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
    "IPv6 router advertisements: development files
For those who write a router's advertisement agent, or read its table of
neighbouring routers: headers, CMake package and pkg-config files, and a
guide.")

if(TARGET routeradvt)
  list(APPEND CPACK_COMPONENTS_ALL Tools)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME routeradvt)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION net)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${same_version}")
  set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
  set(CPACK_DEBIAN_TOOLS_DESCRIPTION
      "builds, sends, reads and inspects IPv6 router advertisements
A command line for those who run or test routers: it builds and sends router
advertisements that a configuration file describes, tells what is in those
that a capture has or that arrive on an interface, and shows the table of
neighbouring routers of an agent on this machine.")
endif()

include(CPack)
