# How everything here is compiled. A project that includes this one is not affected.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/lib)

# Shared libraries, unless a static one is asked for (BUILD_SHARED_LIBS=OFF). A project that includes ours keeps its own choice.
if(NOT DEFINED BUILD_SHARED_LIBS)
  set(BUILD_SHARED_LIBS ON)
endif()

# Installed programs and libraries find ours beside them, wherever the tree is put.
file(RELATIVE_PATH bin_to_lib "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
set(CMAKE_INSTALL_RPATH "$ORIGIN;$ORIGIN/${bin_to_lib}")

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Kind of build" FORCE)
endif()

# A library calls its own exported functions directly: nobody replaces one of them alone.
add_compile_options(-fno-semantic-interposition)
add_link_options(-Wl,-Bsymbolic-functions)

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion)
if(ROUTERADVT_WERROR)
  add_compile_options(-Werror)
endif()

# Messages name a source relative to this folder, so that the result does not depend on the place of the tree. A compiler cache
# may make paths relative to the build folder.
set(source_dirs ${PROJECT_SOURCE_DIR}/)
if(NOT PROJECT_SOURCE_DIR STREQUAL CMAKE_BINARY_DIR)
  file(RELATIVE_PATH from_build ${CMAKE_BINARY_DIR} ${PROJECT_SOURCE_DIR}/)
  list(APPEND source_dirs ${from_build})
endif()
foreach(source_dir IN LISTS source_dirs)
  add_compile_options(-fmacro-prefix-map=${source_dir}=)
endforeach()

# The compiler's cache, if it works: its folder may not be writable. It also caches sources with a precompiled header when told
# to ignore the header's time.
find_program(CCACHE ccache)
mark_as_advanced(CCACHE)
if(CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(probe ${CMAKE_CURRENT_BINARY_DIR}/ccache_probe)
  file(CONFIGURE OUTPUT ${probe}.cpp CONTENT "int probe;\n")
  execute_process(
    COMMAND ${CCACHE} ${CMAKE_CXX_COMPILER} -c ${probe}.cpp -o ${probe}.o
    RESULT_VARIABLE failed
    OUTPUT_QUIET ERROR_QUIET)
  if(NOT failed)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE})
    if(CMAKE_CXX_COMPILER_ID STREQUAL Clang)
      add_compile_options("SHELL:-Xclang -fno-pch-timestamp")
    endif()
  endif()
endif()

# The sources below the current folder: found, not listed, because a folder is a layer and every .cpp in it belongs to
# it.
function(find_layer_sources variable)
  # docs/adr/0004
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  set(${variable} ${sources} PARENT_SCOPE)
endfunction()

# Limits the exports of a shared library to those of exports.map, under a version that names the interface.
function(use_exports_map library)
  set(INTERFACE_VERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
  set(map ${CMAKE_CURRENT_BINARY_DIR}/${library}.map)
  configure_file(${CMAKE_CURRENT_SOURCE_DIR}/exports.map ${map} @ONLY)
  target_link_options(${library} PRIVATE -Wl,--version-script=${map})
  set_property(TARGET ${library} APPEND PROPERTY LINK_DEPENDS ${map})
endfunction()

# The headers below the current folder that are installed: all but those that internal-headers.txt names, which only sources
# and tests include.
function(find_public_headers variable)
  file(GLOB_RECURSE headers CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  set(list ${CMAKE_CURRENT_SOURCE_DIR}/internal-headers.txt)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${list})
  file(STRINGS ${list} internal)
  list(TRANSFORM internal PREPEND ${PROJECT_SOURCE_DIR}/)
  list(REMOVE_ITEM headers ${internal})
  set(${variable} ${headers} PARENT_SCOPE)
endfunction()
