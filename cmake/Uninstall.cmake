# Removes the files that the last `cmake --install` of the build in the current folder installed, below DESTDIR if given.
# Folders stay: others may use them.
set(manifest ${CMAKE_CURRENT_BINARY_DIR}/install_manifest.txt)
if(NOT EXISTS ${manifest})
  message(FATAL_ERROR "There is no ${manifest}: nothing was installed from here")
endif()
file(STRINGS ${manifest} files)
foreach(file IN LISTS files)
  file(REMOVE "$ENV{DESTDIR}${file}")
endforeach()
list(LENGTH files count)
message(STATUS "Removed ${count} files")
file(REMOVE ${manifest})
